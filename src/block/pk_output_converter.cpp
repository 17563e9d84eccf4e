#include "block/pk_output_converter.hpp"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "convert/sample_types.hpp"

namespace framesink {
namespace {

PK_DoubleToFixFcn conversionRoutine(std::uint32_t index) {
  return PK_GetDoubleToFixFcn(static_cast<ScaledDoubleFunctionIndex>(index));
}

std::size_t bytesOf(std::uint64_t samples, std::size_t bytesPerSample) {
  if (samples > std::numeric_limits<std::size_t>::max() / sizeof(double)) throw std::bad_alloc();
  return static_cast<std::size_t>(samples) * bytesPerSample;
}

}  // namespace

PKOutputConverter::PKOutputConverter(std::uint32_t outputConversion, bool allocatePacked,
                                     const OutputDescription* output, std::uint32_t inputConversion,
                                     bool allocatePlanes, const InputDescription* input)
    : output_(output != nullptr ? *output : OutputDescription{}),
      input_(input != nullptr ? *input : InputDescription{}),
      inputConversion_(conversionRoutine(inputConversion)),
      outputConversion_(conversionRoutine(outputConversion)) {
  if (allocatePacked || outputConversion != 0) allocatePackedBuffer();
  if (allocatePlanes || inputConversion != 0) allocatePlaneBuffers();
}

PKOutputConverter::~PKOutputConverter() = default;

void PKOutputConverter::outputFrame(const void*, const void*, const void*) {}

void PKOutputConverter::finishOutput() {}

bool PKOutputConverter::isInputYuy2() const { return std::memcmp(input_.fourcc, "YUY2", 4) == 0; }

std::size_t PKOutputConverter::planeBytes(std::size_t plane) const {
  const std::uint64_t samples = std::uint64_t{input_.widths[plane]} * input_.heights[plane];
  return bytesOf(samples, sampleBytes(input_.dataType));
}

std::int32_t PKOutputConverter::packedBytes() const {
  const std::uint32_t bits =
      output_.bitsPerPixel * output_.secondDimension * output_.firstDimension;
  return static_cast<std::int32_t>(bits) / 8;
}

void PKOutputConverter::allocatePackedBuffer() {
  if (packedBuffer_ != nullptr) return;
  packedBuffer_ =
      std::make_unique<std::byte[]>(static_cast<std::size_t>(std::max(packedBytes(), 0)));
}

// Each buffer is large enough for both uses. Centring fills as many samples as the first plane has,
// even for a smaller plane. Conversion reads doubles and writes samples in place.
void PKOutputConverter::allocatePlaneBuffers() {
  if (sampleBytes(input_.dataType) == 0) return;
  const std::size_t bytesPerSample =
      inputConversion_ != nullptr ? sizeof(double) : sampleBytes(input_.dataType);
  const std::uint64_t frameSamples = std::uint64_t{input_.widths[0]} * input_.heights[0];
  const std::size_t planes = input_.componentCount > 1 ? planeBuffers_.size() : 1;
  for (std::size_t i = 0; i < planes; ++i) {
    const std::uint64_t planeSamples = std::uint64_t{input_.widths[i]} * input_.heights[i];
    planeBuffers_[i] = std::make_unique<std::byte[]>(
        bytesOf(std::max(planeSamples, frameSamples), bytesPerSample));
  }
}

}  // namespace framesink
