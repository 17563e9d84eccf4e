#include "oracle.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "pixkit/pixkit.h"

namespace framesink::oracle {
namespace {

// ---- one sample ----

// Truncates toward zero. NaN and values outside 32 bits give INT32_MIN, as on x86.
std::int32_t truncateToInt32(double value) {
  if (!(value > -2147483649.0 && value < 2147483648.0)) {
    return std::numeric_limits<std::int32_t>::min();
  }
  return static_cast<std::int32_t>(value);
}

std::uint32_t scale(float x, float min, float max) {
  float t = (x - min) / (max - min);
  t = t * 255.0F;
  const std::int32_t rounded = truncateToInt32(static_cast<double>(t) + 0.5);
  return static_cast<std::uint32_t>(std::clamp(rounded, 0, 255));
}

// The cast to Sample is for int8: pixkit declares its ends as plain char, which may be unsigned.
template <class Sample, int N>
std::uint32_t scaleInRange(const void* sample) {
  return scale(static_cast<float>(*static_cast<const Sample*>(sample)),
               static_cast<float>(static_cast<Sample>(videoTraits<N>::min)),
               static_cast<float>(static_cast<Sample>(videoTraits<N>::max)));
}

// A plane of samples of any type, seen as 8-bit values.
class Plane {
 public:
  Plane(std::uint32_t dataType, const void* samples)
      : dataType_(dataType), samples_(static_cast<const std::uint8_t*>(samples)) {}

  std::int32_t operator[](std::int64_t element) const {
    const auto bytes = static_cast<std::int64_t>(sampleBytes(dataType_));
    return static_cast<std::int32_t>(scaleTo8Bit(dataType_, samples_ + element * bytes));
  }

 private:
  std::uint32_t dataType_;
  const std::uint8_t* samples_;
};

// ---- to RGB planes ----

// width * height as a signed 32-bit product.
std::int32_t pixelCount(const Frame& frame) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(frame.width) *
                                   static_cast<std::uint32_t>(frame.height));
}

std::uint8_t lowByte(std::int32_t value) { return static_cast<std::uint8_t>(value & 0xFF); }

std::uint8_t clampToByte(std::int32_t value) { return lowByte(std::clamp(value, 0, 255)); }

void rgbToPlanes(const Plane& red, const Plane& green, const Plane& blue, std::uint8_t* out,
                 const Frame& frame) {
  const std::int64_t n = pixelCount(frame);
  if (frame.layout != 0) {
    for (std::int64_t e = 0; e < n; ++e) {
      out[e] = lowByte(red[e]);
      out[n + e] = lowByte(green[e]);
      out[2 * n + e] = lowByte(blue[e]);
    }
    return;
  }
  // Each column overwrites the one before, so the first output column ends up with the last one.
  for (std::int64_t j = 0; j < frame.width; ++j) {
    for (std::int64_t i = 0; i < frame.height; ++i) {
      const std::int64_t e = j * frame.height + i;
      out[i * frame.width] = lowByte(red[e]);
      out[n + i * frame.width] = lowByte(green[e]);
      out[2 * n + i * frame.width] = lowByte(blue[e]);
    }
  }
}

struct Rgb {
  std::uint8_t red, green, blue;
};

Rgb pixelOf(std::int32_t y, std::int32_t cb, std::int32_t cr) {
  ycbcrToRgb(y, cb, cr);
  return {clampToByte(y), clampToByte(cb), clampToByte(cr)};
}

void ycbcrToPlanes(const Plane& luma, const Plane& cb, const Plane& cr, std::uint8_t* out,
                   const Frame& frame) {
  const std::int64_t n = pixelCount(frame);
  const std::int64_t height = frame.height;
  const auto store = [&](std::int64_t e, const Rgb& pixel) {
    out[e] = pixel.red;
    out[n + e] = pixel.green;
    out[2 * n + e] = pixel.blue;
  };
  // The last column of an odd width belongs to no pair, so its output keeps what it held.
  for (std::int64_t k = 0; k < frame.width / 2; ++k) {
    for (std::int64_t i = 0; i < height; ++i) {
      const std::int64_t first = 2 * k * height + i;
      const std::int64_t second = (2 * k + 1) * height + i;
      const std::int64_t chroma = k * height + i;
      store(first, pixelOf(luma[first], cb[chroma], cr[chroma]));
      store(second, pixelOf(luma[second], cb[chroma], cr[chroma]));
    }
  }
}

// Row-major planes to packed B, G, R. Lines start only `width` bytes apart, so each line overwrites
// the last two thirds of the one before.
void ycbcrToPackedLines(const Plane& luma, const Plane& cb, const Plane& cr, std::uint8_t* out,
                        const Frame& frame) {
  const std::int64_t width = frame.width;
  const std::int64_t pairs = frame.width / 2;
  const auto store = [](std::uint8_t* bytes, const Rgb& pixel) {
    bytes[0] = pixel.blue;
    bytes[1] = pixel.green;
    bytes[2] = pixel.red;
  };
  for (std::int64_t r = 0; r < frame.height; ++r) {
    for (std::int64_t k = 0; k < pairs; ++k) {
      const std::int64_t first = r * width + 2 * k;
      const std::int64_t chroma = r * pairs + k;
      std::uint8_t* bytes = out + r * width + 6 * k;
      store(bytes, pixelOf(luma[first], cb[chroma], cr[chroma]));
      store(bytes + 3, pixelOf(luma[first + 1], cb[chroma], cr[chroma]));
    }
  }
}

// ---- to packed YUY2 ----

class Yuy2Writer {
 public:
  explicit Yuy2Writer(std::uint8_t* out) : out_(out) {}

  void group(std::int32_t y0, std::int32_t cb, std::int32_t y1, std::int32_t cr) {
    for (const std::int32_t value : {y0, cb, y1, cr}) *out_++ = lowByte(value);
  }

 private:
  std::uint8_t* out_;
};

std::int32_t lumaOf(std::int32_t red, std::int32_t green, std::int32_t blue) {
  return ((65 * red + 129 * green + 25 * blue + 128) >> 8) + 16;
}

std::int32_t cbOf(std::int32_t red, std::int32_t green, std::int32_t blue) {
  return ((-38 * red - 74 * green + 112 * blue + 128) >> 8) + 128;
}

std::int32_t crOf(std::int32_t red, std::int32_t green, std::int32_t blue) {
  return ((112 * red - 94 * green - 18 * blue + 128) >> 8) + 128;
}

std::int32_t lumaOfIntensity(std::int32_t intensity) { return ((219 * intensity + 128) >> 8) + 16; }

// A negative width has no odd pixel: its remainder is -1 or 0.
bool hasOddPixel(const Frame& frame) { return frame.width % 2 == 1; }

void rgbToYuy2(const Plane& red, const Plane& green, const Plane& blue, std::uint8_t* out,
               const Frame& frame) {
  Yuy2Writer writer(out);
  // The second pixel contributes only its luma.
  const auto pair = [&](std::int64_t p, std::int64_t q) {
    writer.group(lumaOf(red[p], green[p], blue[p]), cbOf(red[p], green[p], blue[p]),
                 lumaOf(red[q], green[q], blue[q]), crOf(red[p], green[p], blue[p]));
  };
  const std::int64_t width = frame.width;
  const std::int64_t height = frame.height;
  for (std::int64_t r = 0; r < height; ++r) {
    if (frame.layout == 1) {
      for (std::int64_t k = 0; k < width / 2; ++k) {
        pair(r + 2 * k * height, r + (2 * k + 1) * height);
      }
      if (hasOddPixel(frame)) pair(r + (width - 1) * height, r + (width - 1) * height);
    } else {
      // Pairs overlap: (0,1), (1,2), (2,3), ... There are as many as the even width has pixels.
      for (std::int64_t k = 0; k < width / 2 * 2; ++k) pair(r * width + k, r * width + k + 1);
      if (hasOddPixel(frame)) pair(r * width + width - 1, r * width + width - 1);
    }
  }
}

void intensityToYuy2(const Plane& intensity, std::uint8_t* out, const Frame& frame) {
  Yuy2Writer writer(out);
  const auto pair = [&](std::int32_t y0, std::int32_t y1) { writer.group(y0, 128, y1, 128); };
  const std::int64_t width = frame.width;
  const std::int64_t height = frame.height;
  std::int64_t unread = 0;  // Row-major only. Does not advance past the odd sample of a line.
  for (std::int64_t r = 0; r < height; ++r) {
    if (frame.layout != 0) {
      for (std::int64_t k = 0; k < width / 2; ++k) {
        pair(lumaOfIntensity(intensity[r + 2 * k * height]),
             lumaOfIntensity(intensity[r + (2 * k + 1) * height]));
      }
      if (hasOddPixel(frame)) {
        const std::int32_t luma = lumaOfIntensity(intensity[r + (width - 1) * height]);
        pair(luma, luma);
      }
    } else {
      for (std::int64_t k = 0; k < width / 2; ++k) {
        pair(lumaOfIntensity(intensity[unread]),
             lumaOfIntensity(lumaOfIntensity(intensity[unread + 1])));
        unread += 2;
      }
      if (hasOddPixel(frame)) {
        const std::int32_t luma = lumaOfIntensity(intensity[unread + width - 1 + r * width]);
        pair(luma, luma);
      }
    }
  }
}

void ycbcrToYuy2(const Plane& luma, const Plane& cb, const Plane& cr, std::uint8_t* out,
                 const Frame& frame) {
  Yuy2Writer writer(out);
  const std::int64_t height = frame.height;
  if (frame.layout != 0) {
    const std::int64_t groups = ((std::int64_t{frame.width} - 1) >> 1) + 1;
    for (std::int64_t r = 0; r < height; ++r) {
      for (std::int64_t k = 0; k < groups; ++k) {
        writer.group(luma[r + 2 * k * height], cb[r + k * height], luma[r + (2 * k + 1) * height],
                     cr[r + k * height]);
      }
    }
    return;
  }
  const std::int64_t n = pixelCount(frame);
  for (std::int64_t k = 0; k < n / 2 + n % 2; ++k) {
    writer.group(luma[2 * k], cb[k], luma[2 * k + 1], cr[k]);
  }
}

}  // namespace

std::size_t sampleBytes(std::uint32_t dataType) {
  constexpr std::array<std::size_t, kTypeCount> kBytes{8, 4, 1, 1, 2, 2, 4, 4, 1};
  return kBytes.at(dataType);
}

const char* typeName(std::uint32_t dataType) {
  constexpr std::array<const char*, kTypeCount> kNames{
      "Double", "Single", "Int8", "Uint8", "Int16", "Uint16", "Int32", "Uint32", "Boolean"};
  return kNames.at(dataType);
}

std::uint32_t scaleTo8Bit(std::uint32_t dataType, const void* sample) {
  switch (dataType) {
    case 0:
      return scaleInRange<double, 0>(sample);
    case 1:
      return scaleInRange<float, 1>(sample);
    case 2:
      return scaleInRange<std::int8_t, 2>(sample);
    case 3:
      return *static_cast<const std::uint8_t*>(sample);
    case 4:
      return scaleInRange<std::int16_t, 4>(sample);
    case 5:
      return scaleInRange<std::uint16_t, 5>(sample);
    case 6:
      return scaleInRange<std::int32_t, 6>(sample);
    case 7:
      return scaleInRange<std::uint32_t, 7>(sample);
    default:
      return scaleInRange<std::uint8_t, 8>(sample);
  }
}

void ycbcrToRgb(std::int32_t& y, std::int32_t& cb, std::int32_t& cr) {
  const std::int32_t base = 19077 * (y - 16) + 8192;
  const std::int32_t red = (base + 26149 * (cr - 128)) >> 14;
  const std::int32_t green = (base - 6419 * (cb - 128) - 13320 * (cr - 128)) >> 14;
  const std::int32_t blue = (base + 33050 * (cb - 128)) >> 14;
  y = red;
  cb = green;
  cr = blue;
}

void convert(const Family& family, std::uint32_t dataType, const std::array<const void*, 3>& planes,
             std::uint8_t* out, const Frame& frame) {
  const Plane first(dataType, planes[0]);
  const Plane second(dataType, planes[1]);
  const Plane third(dataType, planes[2]);
  const bool toRgb = family.outputFormat == 1;
  switch (family.inputKind) {
    case 1:
      return toRgb ? rgbToPlanes(first, second, third, out, frame)
                   : rgbToYuy2(first, second, third, out, frame);
    case 2:
      return toRgb ? rgbToPlanes(first, first, first, out, frame)
                   : intensityToYuy2(first, out, frame);
    default:
      if (!toRgb) return ycbcrToYuy2(first, second, third, out, frame);
      return frame.layout != 0 ? ycbcrToPlanes(first, second, third, out, frame)
                               : ycbcrToPackedLines(first, second, third, out, frame);
  }
}

}  // namespace framesink::oracle
