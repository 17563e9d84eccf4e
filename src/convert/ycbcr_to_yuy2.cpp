#include "convert/ycbcr_to_yuy2.hpp"

#include "convert/sample_scaling.hpp"

namespace framesink {
namespace {

template <std::uint32_t Id>
void ycbcrToYuy2(const void* plane0, const void* plane1, const void* plane2, std::uint8_t* out,
                 std::int32_t width, std::int32_t height, std::int32_t layout) {
  const auto* y = static_cast<const SampleOf<Id>*>(plane0);
  const auto* cb = static_cast<const SampleOf<Id>*>(plane1);
  const auto* cr = static_cast<const SampleOf<Id>*>(plane2);
  const SampleScale<Id> scale;
  const auto write = [&](std::ptrdiff_t luma0, std::ptrdiff_t luma1, std::ptrdiff_t chroma) {
    *out++ = static_cast<std::uint8_t>(scale(y[luma0]));
    *out++ = static_cast<std::uint8_t>(scale(cb[chroma]));
    *out++ = static_cast<std::uint8_t>(scale(y[luma1]));
    *out++ = static_cast<std::uint8_t>(scale(cr[chroma]));
  };
  if (layout == 0) {
    const std::ptrdiff_t n = planeSamples(width, height);
    for (std::ptrdiff_t pair = 0; 2 * pair < n; ++pair) write(2 * pair, 2 * pair + 1, pair);
    return;
  }
  const std::ptrdiff_t rows = height;
  for (std::ptrdiff_t row = 0; row < rows; ++row) {
    for (std::ptrdiff_t pair = 0; 2 * pair < width; ++pair) {
      const std::ptrdiff_t first = row + 2 * pair * rows;
      write(first, first + rows, row + pair * rows);
    }
  }
}

}  // namespace

constinit const KernelTable ycbcrToYuy2Kernels =
    kernelTable([]<std::uint32_t Id>() -> ConversionKernel { return ycbcrToYuy2<Id>; });

}  // namespace framesink
