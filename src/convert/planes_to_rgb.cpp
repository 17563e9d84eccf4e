#include "convert/planes_to_rgb.hpp"

#include "convert/sample_scaling.hpp"

namespace framesink {
namespace {

template <std::uint32_t Id>
void rgbToRgb(const void* plane0, const void* plane1, const void* plane2, std::uint8_t* out,
              std::int32_t width, std::int32_t height, std::int32_t layout) {
  const auto* red = static_cast<const SampleOf<Id>*>(plane0);
  const auto* green = static_cast<const SampleOf<Id>*>(plane1);
  const auto* blue = static_cast<const SampleOf<Id>*>(plane2);
  const SampleScale<Id> scale;
  const std::ptrdiff_t n = planeSamples(width, height);
  const auto convert = [&](std::ptrdiff_t from, std::ptrdiff_t to) {
    out[to] = static_cast<std::uint8_t>(scale(red[from]));
    out[n + to] = static_cast<std::uint8_t>(scale(green[from]));
    out[2 * n + to] = static_cast<std::uint8_t>(scale(blue[from]));
  };
  if (layout != 0) {
    for (std::ptrdiff_t e = 0; e < n; ++e) convert(e, e);
    return;
  }
  for (std::ptrdiff_t column = 0; column < width; ++column) {
    for (std::ptrdiff_t row = 0; row < height; ++row) {
      convert(column * height + row, row * width);
    }
  }
}

template <std::uint32_t Id>
void intensityToRgb(const void* plane0, const void*, const void*, std::uint8_t* out,
                    std::int32_t width, std::int32_t height, std::int32_t layout) {
  rgbToRgb<Id>(plane0, plane0, plane0, out, width, height, layout);
}

}  // namespace

constinit const KernelTable rgbToRgbKernels =
    kernelTable([]<std::uint32_t Id>() -> ConversionKernel { return rgbToRgb<Id>; });

constinit const KernelTable intensityToRgbKernels =
    kernelTable([]<std::uint32_t Id>() -> ConversionKernel { return intensityToRgb<Id>; });

}  // namespace framesink
