#include "convert/ycbcr_to_rgb.hpp"

#include <algorithm>
#include <array>

#include "convert/sample_rows.hpp"
#include "convert/sample_scaling.hpp"
#include "simd/colour_constants.hpp"
#include "simd/colour_rows.hpp"

namespace framesink {
namespace {

struct Rgb {
  std::uint8_t red;
  std::uint8_t green;
  std::uint8_t blue;
};

std::uint8_t clamped(std::int32_t value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

// Reads one frame's samples as 8-bit YCbCr and yields the pixels' colours.
template <std::uint32_t Id>
class YcbcrReader {
 public:
  YcbcrReader(const void* y, const void* cb, const void* cr)
      : y_(static_cast<const Sample*>(y)),
        cb_(static_cast<const Sample*>(cb)),
        cr_(static_cast<const Sample*>(cr)) {}

  Rgb pixel(std::ptrdiff_t luma, std::ptrdiff_t chroma) const {
    auto red = static_cast<std::int32_t>(scale_(y_[luma]));
    auto green = static_cast<std::int32_t>(scale_(cb_[chroma]));
    auto blue = static_cast<std::int32_t>(scale_(cr_[chroma]));
    ycbcrToRgb(red, green, blue);
    return {clamped(red), clamped(green), clamped(blue)};
  }

 private:
  using Sample = SampleOf<Id>;
  const Sample* y_;
  const Sample* cb_;
  const Sample* cr_;
  SampleScale<Id> scale_;
};

// Pixels that are scaled and converted at a time. Their bytes fit into the first-level cache.
constexpr std::size_t kBlockPixels = 1024;

// Both columns of a pair share the pair's chroma.
template <std::uint32_t Id>
void columnsToPlanes(const std::array<const SampleOf<Id>*, 3>& planes, std::uint8_t* out,
                     std::int32_t width, std::int32_t height) {
  ByteRun<Id, kBlockPixels> y0, y1, cb, cr;
  const std::ptrdiff_t n = planeSamples(width, height);
  for (std::ptrdiff_t pair = 0; pair < width / 2; ++pair) {
    for (std::ptrdiff_t row = 0; row < height; row += kBlockPixels) {
      const auto count = std::min<std::size_t>(kBlockPixels, height - row);
      const std::ptrdiff_t chroma = pair * height + row;
      const std::ptrdiff_t e = 2 * pair * height + row;
      const std::ptrdiff_t f = e + height;
      ycbcrPairToRgb({y0.scaled(planes[0] + e, count), y1.scaled(planes[0] + f, count),
                      cb.scaled(planes[1] + chroma, count), cr.scaled(planes[2] + chroma, count)},
                     {out + e, out + n + e, out + 2 * n + e, out + f, out + n + f, out + 2 * n + f},
                     count);
    }
  }
}

template <std::uint32_t Id>
void rowsToPackedLines(const YcbcrReader<Id>& frame, std::uint8_t* out, std::ptrdiff_t width,
                       std::ptrdiff_t height) {
  const std::ptrdiff_t pairs = width / 2;
  for (std::ptrdiff_t row = 0; row < height; ++row) {
    std::uint8_t* to = out + row * width;
    for (std::ptrdiff_t pair = 0; pair < pairs; ++pair) {
      for (const std::ptrdiff_t second : {0, 1}) {
        const Rgb pixel = frame.pixel(row * width + 2 * pair + second, row * pairs + pair);
        *to++ = pixel.blue;
        *to++ = pixel.green;
        *to++ = pixel.red;
      }
    }
  }
}

template <std::uint32_t Id>
void ycbcrPlanesToRgb(const void* plane0, const void* plane1, const void* plane2, std::uint8_t* out,
                      std::int32_t width, std::int32_t height, std::int32_t layout) {
  using Sample = SampleOf<Id>;
  if (layout != 0) {
    columnsToPlanes<Id>({static_cast<const Sample*>(plane0), static_cast<const Sample*>(plane1),
                         static_cast<const Sample*>(plane2)},
                        out, width, height);
  } else {
    rowsToPackedLines(YcbcrReader<Id>{plane0, plane1, plane2}, out, width, height);
  }
}

}  // namespace

// The shift rounds toward minus infinity; 8192 is one half in 2.14 fixed point.
void ycbcrToRgb(std::int32_t& y, std::int32_t& cb, std::int32_t& cr) {
  const YcbcrToRgbConstants& k = ycbcrToRgbConstants;
  const std::int32_t base = k.luma * (y - k.lumaOffset) + 8192;
  const std::int32_t blueness = cb - k.cbOffset;
  const std::int32_t redness = cr - k.crOffset;
  y = (base + k.redFromCr * redness) >> 14;
  cb = (base + k.greenFromCb * blueness + k.greenFromCr * redness) >> 14;
  cr = (base + k.blueFromCb * blueness) >> 14;
}

constinit const KernelTable ycbcrToRgbKernels =
    kernelTable([]<std::uint32_t Id>() -> ConversionKernel { return ycbcrPlanesToRgb<Id>; });

}  // namespace framesink
