#include "convert/planes_to_yuy2.hpp"

#include <algorithm>
#include <array>

#include "convert/colour_constants.hpp"
#include "convert/colour_rows.hpp"
#include "convert/sample_rows.hpp"
#include "convert/sample_scaling.hpp"
#include "convert/yuy2_rows.hpp"

namespace framesink {
namespace {

struct Ycbcr {
  std::uint8_t y;
  std::uint8_t cb;
  std::uint8_t cr;
};

// Writes YUY2 groups one after another.
class GroupWriter {
 public:
  explicit GroupWriter(std::uint8_t* out) : out_(out) {}

  void write(Ycbcr first, std::uint8_t secondLuma) {
    out_[0] = first.y;
    out_[1] = first.cb;
    out_[2] = secondLuma;
    out_[3] = first.cr;
    out_ += 4;
  }

 private:
  std::uint8_t* out_;
};

template <std::uint32_t Id>
class RgbReader {
 public:
  RgbReader(const void* red, const void* green, const void* blue)
      : red_(static_cast<const Sample*>(red)),
        green_(static_cast<const Sample*>(green)),
        blue_(static_cast<const Sample*>(blue)) {}

  Ycbcr operator()(std::ptrdiff_t element) const {
    auto y = static_cast<std::int32_t>(scale_(red_[element]));
    auto cb = static_cast<std::int32_t>(scale_(green_[element]));
    auto cr = static_cast<std::int32_t>(scale_(blue_[element]));
    rgbToYcbcr(y, cb, cr);
    return {static_cast<std::uint8_t>(y), static_cast<std::uint8_t>(cb),
            static_cast<std::uint8_t>(cr)};
  }

 private:
  using Sample = SampleOf<Id>;
  const Sample* red_;
  const Sample* green_;
  const Sample* blue_;
  SampleScale<Id> scale_;
};

template <std::uint32_t Id>
class IntensityReader {
 public:
  explicit IntensityReader(const void* intensity)
      : intensity_(static_cast<const Sample*>(intensity)) {}

  Ycbcr operator()(std::ptrdiff_t element) const {
    return {static_cast<std::uint8_t>(intensityToLuma(scale_(intensity_[element]))), 128, 128};
  }

 private:
  using Sample = SampleOf<Id>;
  const Sample* intensity_;
  SampleScale<Id> scale_;
};

// Rows that column-major planes are converted by at a time: many, so that columns are read in long
// runs, and few enough to stay on the stack.
constexpr std::size_t kBlockRows = 1024;

struct YcbcrRuns {
  const std::uint8_t* y;
  const std::uint8_t* cb;
  const std::uint8_t* cr;
};

// Runs of RGB samples as 8-bit YCbCr, until the next call.
template <std::uint32_t Id>
class RgbRuns {
 public:
  RgbRuns(const void* red, const void* green, const void* blue)
      : red_(static_cast<const Sample*>(red)),
        green_(static_cast<const Sample*>(green)),
        blue_(static_cast<const Sample*>(blue)) {}

  YcbcrRuns operator()(std::ptrdiff_t first, std::size_t count) {
    rgbRowToYcbcr({reds_.scaled(red_ + first, count), greens_.scaled(green_ + first, count),
                   blues_.scaled(blue_ + first, count)},
                  {y_.data(), cb_.data(), cr_.data()}, count);
    return {y_.data(), cb_.data(), cr_.data()};
  }

 private:
  using Sample = SampleOf<Id>;
  using Run = std::array<std::uint8_t, kBlockRows>;
  const Sample* red_;
  const Sample* green_;
  const Sample* blue_;
  ByteRun<Id, kBlockRows> reds_, greens_, blues_;
  Run y_, cb_, cr_;
};

// Runs of intensities likewise; chroma is always 128.
template <std::uint32_t Id>
class IntensityRuns {
 public:
  explicit IntensityRuns(const void* intensity)
      : intensity_(static_cast<const Sample*>(intensity)) {
    chroma_.fill(128);
  }

  YcbcrRuns operator()(std::ptrdiff_t first, std::size_t count) {
    intensityRowToLuma(bytes_.scaled(intensity_ + first, count), y_.data(), count);
    return {y_.data(), chroma_.data(), chroma_.data()};
  }

 private:
  using Sample = SampleOf<Id>;
  using Run = std::array<std::uint8_t, kBlockRows>;
  const Sample* intensity_;
  ByteRun<Id, kBlockRows> bytes_;
  Run y_, chroma_;
};

// Column-major planes of either kind: disjoint pairs, the last pixel of an odd width alone.
template <class Runs, class... Planes>
void columnsToGroups(std::uint8_t* out, std::ptrdiff_t width, std::ptrdiff_t height,
                     Planes... planes) {
  Runs firstColumn(planes...);
  Runs secondColumn(planes...);
  const std::ptrdiff_t lineBytes = 4 * ((width + 1) / 2);
  for (std::ptrdiff_t row = 0; row < height; row += kBlockRows) {
    const auto count = std::min<std::size_t>(kBlockRows, height - row);
    for (std::ptrdiff_t column = 0; column < width; column += 2) {
      const YcbcrRuns first = firstColumn(row + column * height, count);
      const bool alone = column + 1 == width;
      const std::uint8_t* const y1 =
          alone ? first.y : secondColumn(row + (column + 1) * height, count).y;
      packGroupsDown({first.y, first.cb, y1, first.cr}, out + row * lineBytes + 2 * column,
                     lineBytes, count);
    }
  }
}

// Overlapping pairs: the reading moves on by one pixel a group, not by two.
template <class Reader>
void rgbRowsToGroups(const Reader& pixel, GroupWriter out, std::ptrdiff_t width,
                     std::ptrdiff_t height) {
  const std::ptrdiff_t even = width - width % 2;
  for (std::ptrdiff_t row = 0; row < height; ++row) {
    const std::ptrdiff_t line = row * width;
    for (std::ptrdiff_t column = 0; column < even; ++column) {
      out.write(pixel(line + column), pixel(line + column + 1).y);
    }
    if (even < width) {
      const Ycbcr last = pixel(line + even);
      out.write(last, last.y);
    }
  }
}

// The second pixel's luma is mapped twice, and an odd width's last sample is read far from its line
// without moving on past it.
template <class Reader>
void intensityRowsToGroups(const Reader& pixel, GroupWriter out, std::ptrdiff_t width,
                           std::ptrdiff_t height) {
  std::ptrdiff_t position = 0;
  for (std::ptrdiff_t row = 0; row < height; ++row) {
    for (std::ptrdiff_t pair = 0; pair < width / 2; ++pair, position += 2) {
      const std::uint32_t second = pixel(position + 1).y;
      out.write(pixel(position), static_cast<std::uint8_t>(intensityToLuma(second)));
    }
    if (width > 0 && width % 2 != 0) {
      const Ycbcr last = pixel(position + width - 1 + row * width);
      out.write(last, last.y);
    }
  }
}

template <std::uint32_t Id>
void rgbToYuy2(const void* plane0, const void* plane1, const void* plane2, std::uint8_t* out,
               std::int32_t width, std::int32_t height, std::int32_t layout) {
  if (layout == 1) {
    columnsToGroups<RgbRuns<Id>>(out, width, height, plane0, plane1, plane2);
  } else {
    rgbRowsToGroups(RgbReader<Id>{plane0, plane1, plane2}, GroupWriter(out), width, height);
  }
}

template <std::uint32_t Id>
void intensityToYuy2(const void* plane0, const void*, const void*, std::uint8_t* out,
                     std::int32_t width, std::int32_t height, std::int32_t layout) {
  if (layout != 0) {
    columnsToGroups<IntensityRuns<Id>>(out, width, height, plane0);
  } else {
    intensityRowsToGroups(IntensityReader<Id>{plane0}, GroupWriter(out), width, height);
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
