#include "convert/planes_to_yuy2.hpp"

#include <algorithm>
#include <array>

#include "convert/sample_rows.hpp"
#include "convert/sample_scaling.hpp"
#include "convert/yuy2_columns.hpp"
#include "simd/colour_constants.hpp"
#include "simd/colour_rows.hpp"
#include "simd/yuy2_rows.hpp"

namespace framesink {
namespace {

// ---- column-major -------------------------------------------------------------------------------

// The runs of pairs of RGB columns. For an odd width, the last pair takes the last column twice.
template <std::uint32_t Id>
class RgbPairRuns {
 public:
  using Planes = std::array<const SampleOf<Id>*, 3>;

  RgbPairRuns(const Planes& planes, std::ptrdiff_t width, std::ptrdiff_t height)
      : planes_(planes), width_(width), height_(height) {}

  Yuy2Runs operator()(std::ptrdiff_t pair, std::ptrdiff_t row, std::size_t count) {
    const std::ptrdiff_t first = 2 * pair;
    const std::ptrdiff_t second = std::min(first + 1, width_ - 1);
    RgbPairSources rgb;
    for (std::size_t i = 0; i < 3; ++i) {
      rgb[i] = bytes_[i].scaled(planes_[i] + row + first * height_, count);
      rgb[3 + i] = bytes_[3 + i].scaled(planes_[i] + row + second * height_, count);
    }
    rgbPairToYcbcr(rgb, {y0_.data(), cb_.data(), y1_.data(), cr_.data()}, count);
    return {y0_.data(), cb_.data(), y1_.data(), cr_.data()};
  }

 private:
  using Run = std::array<std::uint8_t, kYuy2BlockRows>;
  Planes planes_;
  std::ptrdiff_t width_;
  std::ptrdiff_t height_;
  std::array<ByteRun<Id, kYuy2BlockRows>, 6> bytes_;
  Run y0_, cb_, y1_, cr_;
};

// The runs of pairs of intensity columns; chroma is always 128. For an odd width, the last pair
// takes the last column twice.
template <std::uint32_t Id>
class IntensityPairRuns {
 public:
  IntensityPairRuns(const SampleOf<Id>* intensity, std::ptrdiff_t width, std::ptrdiff_t height)
      : intensity_(intensity), width_(width), height_(height) {
    chroma_.fill(128);
  }

  Yuy2Runs operator()(std::ptrdiff_t pair, std::ptrdiff_t row, std::size_t count) {
    luma(2 * pair, row, count, y0_.data());
    luma(std::min(2 * pair + 1, width_ - 1), row, count, y1_.data());
    return {y0_.data(), chroma_.data(), y1_.data(), chroma_.data()};
  }

 private:
  using Run = std::array<std::uint8_t, kYuy2BlockRows>;

  void luma(std::ptrdiff_t column, std::ptrdiff_t row, std::size_t count, std::uint8_t* out) {
    intensityRowToLuma(bytes_.scaled(intensity_ + row + column * height_, count), out, count);
  }

  const SampleOf<Id>* intensity_;
  std::ptrdiff_t width_;
  std::ptrdiff_t height_;
  ByteRun<Id, kYuy2BlockRows> bytes_;
  Run y0_, y1_, chroma_;
};

// ---- row-major ----------------------------------------------------------------------------------

// Groups that are packed at a time. Their bytes fit into the first-level cache.
constexpr std::size_t kBlockGroups = 1024;

// Packs runs of RGB pixels into consecutive groups.
template <std::uint32_t Id>
class RgbRow {
 public:
  explicit RgbRow(const std::array<const SampleOf<Id>*, 3>& planes) : planes_(planes) {}

  // Packs `count` groups. Group i takes the pixels at pixel + i and pixel + i + step.
  void packGroups(std::ptrdiff_t pixel, std::ptrdiff_t step, std::uint8_t* out, std::size_t count) {
    RgbPairSources rgb;
    for (std::size_t i = 0; i < 3; ++i) {
      rgb[i] = bytes_[i].scaled(planes_[i] + pixel, count + static_cast<std::size_t>(step));
      rgb[3 + i] = rgb[i] + step;
    }
    rgbPairToYcbcr(rgb, {y0_.data(), cb_.data(), y1_.data(), cr_.data()}, count);
    framesink::packGroups({y0_.data(), cb_.data(), y1_.data(), cr_.data()}, out, count);
  }

 private:
  using Run = std::array<std::uint8_t, kBlockGroups>;
  std::array<const SampleOf<Id>*, 3> planes_;
  std::array<ByteRun<Id, kBlockGroups + 1>, 3> bytes_;
  Run y0_, cb_, y1_, cr_;
};

// Deliberately, the pairs overlap: reading advances by one pixel per group, not by two. See
// rgbToYuy2Kernels.
template <std::uint32_t Id>
void rgbRowsToGroups(RgbRow<Id> pixels, std::uint8_t* out, std::ptrdiff_t width,
                     std::ptrdiff_t height) {
  const std::ptrdiff_t even = width - width % 2;
  for (std::ptrdiff_t row = 0; row < height; ++row) {
    for (std::ptrdiff_t first = 0; first < even; first += kBlockGroups) {
      const auto count = std::min<std::size_t>(kBlockGroups, even - first);
      pixels.packGroups(row * width + first, 1, out, count);
      out += 4 * count;
    }
    if (even < width) {
      pixels.packGroups(row * width + even, 0, out, 1);
      out += 4;
    }
  }
}

// Packs runs of intensities into consecutive groups with a chroma of 128.
template <std::uint32_t Id>
class IntensityRow {
 public:
  explicit IntensityRow(const SampleOf<Id>* intensity) : intensity_(intensity) {
    chroma_.fill(128);
  }

  // Deliberately maps the luma of each pair's second sample twice.
  void packPairs(std::ptrdiff_t first, std::uint8_t* out, std::size_t count) {
    intensityPairsToLuma(bytes_.scaled(intensity_ + first, 2 * count), luma_.data(), count);
    framesink::packPairs(luma_.data(), chroma_.data(), chroma_.data(), out, count);
  }

  void packOne(std::ptrdiff_t sample, std::uint8_t* out) {
    intensityRowToLuma(bytes_.scaled(intensity_ + sample, 1), luma_.data(), 1);
    packGroups({luma_.data(), chroma_.data(), luma_.data(), chroma_.data()}, out, 1);
  }

 private:
  const SampleOf<Id>* intensity_;
  ByteRun<Id, 2 * kBlockGroups> bytes_;
  std::array<std::uint8_t, 2 * kBlockGroups> luma_;
  std::array<std::uint8_t, kBlockGroups> chroma_;
};

// Deliberately, the position of the pairs runs on across lines. The last sample of an odd width is
// read far from its line, and the position does not advance past it. See intensityToYuy2Kernels.
template <std::uint32_t Id>
void intensityRowsToGroups(IntensityRow<Id> samples, std::uint8_t* out, std::ptrdiff_t width,
                           std::ptrdiff_t height) {
  std::ptrdiff_t position = 0;
  for (std::ptrdiff_t row = 0; row < height; ++row) {
    for (std::ptrdiff_t left = width / 2; left > 0; left -= kBlockGroups) {
      const auto count = std::min<std::size_t>(kBlockGroups, left);
      samples.packPairs(position, out, count);
      position += 2 * static_cast<std::ptrdiff_t>(count);
      out += 4 * count;
    }
    if (width > 0 && width % 2 != 0) {
      samples.packOne(position + width - 1 + row * width, out);
      out += 4;
    }
  }
}

template <std::uint32_t Id>
void rgbToYuy2(const void* plane0, const void* plane1, const void* plane2, std::uint8_t* out,
               std::int32_t width, std::int32_t height, std::int32_t layout) {
  using Sample = SampleOf<Id>;
  const std::array planes{static_cast<const Sample*>(plane0), static_cast<const Sample*>(plane1),
                          static_cast<const Sample*>(plane2)};
  if (layout == 1) {
    columnsToYuy2(RgbPairRuns<Id>(planes, width, height), out, (std::ptrdiff_t{width} + 1) / 2,
                  height);
  } else {
    rgbRowsToGroups(RgbRow<Id>(planes), out, width, height);
  }
}

template <std::uint32_t Id>
void intensityToYuy2(const void* plane0, const void*, const void*, std::uint8_t* out,
                     std::int32_t width, std::int32_t height, std::int32_t layout) {
  const auto* const intensity = static_cast<const SampleOf<Id>*>(plane0);
  if (layout != 0) {
    columnsToYuy2(IntensityPairRuns<Id>(intensity, width, height), out,
                  (std::ptrdiff_t{width} + 1) / 2, height);
  } else {
    intensityRowsToGroups(IntensityRow<Id>(intensity), out, width, height);
  }
}

}  // namespace

// The shifts round toward minus infinity; 128 is one half in 1/256 steps.
void rgbToYcbcr(std::int32_t& red, std::int32_t& green, std::int32_t& blue) {
  const RgbToYcbcrConstants& k = rgbToYcbcrConstants;
  const std::int32_t y = k.lumaFromRed * red + k.lumaFromGreen * green + k.lumaFromBlue * blue;
  const std::int32_t cb = k.cbFromRed * red + k.cbFromGreen * green + k.cbFromBlue * blue;
  const std::int32_t cr = k.crFromRed * red + k.crFromGreen * green + k.crFromBlue * blue;
  red = ((y + 128) >> 8) + k.lumaOffset;
  green = ((cb + 128) >> 8) + k.cbOffset;
  blue = ((cr + 128) >> 8) + k.crOffset;
}

std::uint32_t intensityToLuma(std::uint32_t intensity) {
  const RgbToYcbcrConstants& k = rgbToYcbcrConstants;
  const auto gain = static_cast<std::uint32_t>(k.lumaFromRed + k.lumaFromGreen + k.lumaFromBlue);
  return ((gain * intensity + 128) >> 8) + static_cast<std::uint32_t>(k.lumaOffset);
}

constinit const KernelTable rgbToYuy2Kernels =
    kernelTable([]<std::uint32_t Id>() -> ConversionKernel { return rgbToYuy2<Id>; });

constinit const KernelTable intensityToYuy2Kernels =
    kernelTable([]<std::uint32_t Id>() -> ConversionKernel { return intensityToYuy2<Id>; });

}  // namespace framesink
