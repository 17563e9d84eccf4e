// Runs kernels on small frames that a test writes out.
#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "convert/kernel_selection.hpp"
#include "convert/sample_types.hpp"

namespace framesink {

using Bytes = std::vector<std::uint8_t>;

template <std::uint32_t Id>
using Samples = std::vector<SampleOf<Id>>;

template <std::uint32_t Id>
using Planes = std::array<Samples<Id>, 3>;

struct FrameShape {
  std::int32_t width;
  std::int32_t height;
  std::int32_t layout = 1;
};

// Runs the kernel on an output buffer that holds `before`; returns what the buffer holds then.
template <std::uint32_t Id>
Bytes runKernel(std::int32_t inputKind, std::int32_t outputFormat, const Planes<Id>& planes,
                Bytes before, FrameShape shape) {
  const ConversionKernel kernel = selectConversionKernel(inputKind, outputFormat, Id);
  kernel(planes[0].data(), planes[1].data(), planes[2].data(), before.data(), shape.width,
         shape.height, shape.layout);
  return before;
}

template <std::uint32_t Id>
Bytes runToRgb(std::int32_t inputKind, const Planes<Id>& planes, Bytes before, FrameShape shape) {
  return runKernel<Id>(inputKind, kOutputRgbPlanes, planes, std::move(before), shape);
}

template <std::uint32_t Id>
Bytes runToYuy2(std::int32_t inputKind, const Planes<Id>& planes, Bytes before, FrameShape shape) {
  return runKernel<Id>(inputKind, kOutputYuy2, planes, std::move(before), shape);
}

}  // namespace framesink
