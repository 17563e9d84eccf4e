#include "convert/planes_to_rgb.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include "convert/sample_rows.hpp"
#include "convert/sample_scaling.hpp"

namespace framesink {
namespace {

// Samples of a block, which is scaled once and then copied twice. Its bytes fit into the
// first-level cache.
constexpr std::size_t kBlockSamples = 8192;

// Scales one plane and writes it as all three.
template <std::uint32_t Id>
void greyToPlanes(const SampleOf<Id>* grey, std::uint8_t* out, std::size_t n) {
  const RowScaler scaleRow = rowScalers()[Id];
  for (std::size_t first = 0; first < n; first += kBlockSamples) {
    const std::size_t count = std::min(kBlockSamples, n - first);
    scaleRow(grey + first, out + first, count);
    std::memcpy(out + n + first, out + first, count);
    std::memcpy(out + 2 * n + first, out + first, count);
  }
}

template <std::uint32_t Id>
void coloursToPlanes(const std::array<const SampleOf<Id>*, 3>& planes, std::uint8_t* out,
                     std::size_t n) {
  for (std::size_t i = 0; i < 3; ++i) rowScalers()[Id](planes[i], out + i * n, n);
}

// Deliberately writes every column to the places of the first one; see rgbToRgbKernels.
template <std::uint32_t Id>
void columnsToFirstColumn(const std::array<const SampleOf<Id>*, 3>& planes, std::uint8_t* out,
                          std::int32_t width, std::int32_t height) {
  const SampleScale<Id> scale;
  const std::ptrdiff_t n = planeSamples(width, height);
  for (std::ptrdiff_t column = 0; column < width; ++column) {
    for (std::ptrdiff_t row = 0; row < height; ++row) {
      for (std::ptrdiff_t i = 0; i < 3; ++i) {
        out[i * n + row * width] =
            static_cast<std::uint8_t>(scale(planes[i][column * height + row]));
      }
    }
  }
}

template <std::uint32_t Id>
void rgbToRgb(const void* plane0, const void* plane1, const void* plane2, std::uint8_t* out,
              std::int32_t width, std::int32_t height, std::int32_t layout) {
  using Sample = SampleOf<Id>;
  const std::array planes{static_cast<const Sample*>(plane0), static_cast<const Sample*>(plane1),
                          static_cast<const Sample*>(plane2)};
  if (layout == 0) return columnsToFirstColumn<Id>(planes, out, width, height);
  const std::ptrdiff_t n = planeSamples(width, height);
  if (n < 1) return;
  if (plane0 == plane1 && plane0 == plane2) {
    greyToPlanes<Id>(planes[0], out, static_cast<std::size_t>(n));
  } else {
    coloursToPlanes<Id>(planes, out, static_cast<std::size_t>(n));
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
