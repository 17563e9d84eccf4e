// What the kernel families share: the form of their tables and the sizes of a frame.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "convert/kernel_selection.hpp"
#include "convert/sample_types.hpp"

namespace framesink {

// One kernel per DataTypeId, then a null entry that closes the table and is never read.
using KernelTable = std::array<ConversionKernel, kDataTypeCount + 1>;

// The table of make.operator()<Id>(), one kernel per sample type.
template <class Make>
constexpr KernelTable kernelTable(Make make) {
  KernelTable table{};
  const auto kernels = tableOfSampleTypes(make);
  for (std::size_t id = 0; id < kernels.size(); ++id) table[id] = kernels[id];
  return table;
}

// Samples of a plane: the product as 32-bit hardware forms it, wrapping, so that two negative sizes
// count as a positive number of samples.
inline std::ptrdiff_t planeSamples(std::int32_t width, std::int32_t height) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(width) *
                                   static_cast<std::uint32_t>(height));
}

}  // namespace framesink
