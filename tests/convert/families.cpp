// How many samples each family reads and how many output bytes it needs. The figures are exact, so
// that tests can allocate not one sample more.
#include "oracle.hpp"

namespace framesink::oracle {
namespace {

std::size_t count(std::int64_t value) { return value > 0 ? static_cast<std::size_t>(value) : 0; }

Extents extents(std::int64_t plane0, std::int64_t plane1, std::int64_t plane2,
                std::int64_t outputBytes) {
  return {{count(plane0), count(plane1), count(plane2)}, count(outputBytes)};
}

bool isEmpty(const Frame& frame) { return frame.width < 1 || frame.height < 1; }

// The column-major path looks at the product alone: two negative sizes give a positive count.
std::int64_t rgbSamples(const Frame& frame) {
  if (frame.layout == 0 && isEmpty(frame)) return 0;
  return std::int64_t{frame.width} * frame.height;
}

Extents rgbToRgb(const Frame& frame) {
  const std::int64_t n = rgbSamples(frame);
  return extents(n, n, n, 3 * n);
}

Extents intensityToRgb(const Frame& frame) {
  const std::int64_t n = rgbSamples(frame);
  return extents(n, 0, 0, 3 * n);
}

// The last column of an odd width is not read.
Extents ycbcrToRgb(const Frame& frame) {
  if (isEmpty(frame)) return {};
  const std::int64_t width = frame.width;
  const std::int64_t height = frame.height;
  const std::int64_t pairs = width / 2;
  if (frame.layout != 0) {
    return extents(2 * pairs * height, pairs * height, pairs * height, 3 * width * height);
  }
  if (pairs == 0) return {};
  const std::int64_t lastLine = (height - 1) * width;
  return extents(lastLine + 2 * pairs, pairs * height, pairs * height, lastLine + 6 * pairs);
}

// Row-major pairs overlap: in an even plane the last pair reads one sample past the end.
Extents rgbToYuy2(const Frame& frame) {
  if (isEmpty(frame)) return {};
  const std::int64_t n = std::int64_t{frame.width} * frame.height;
  const std::int64_t odd = frame.width % 2;
  if (frame.layout == 1) return extents(n, n, n, 2 * (n + odd * frame.height));
  const std::int64_t samples = n + 1 - odd;
  return extents(samples, samples, samples, 4 * n);
}

// Row-major frames of odd width are read far past the plane, up to almost twice its size.
Extents intensityToYuy2(const Frame& frame) {
  if (isEmpty(frame)) return {};
  const std::int64_t width = frame.width;
  const std::int64_t height = frame.height;
  const std::int64_t odd = width % 2;
  const std::int64_t outputBytes = 2 * (width + odd) * height;
  if (frame.layout != 0 || odd == 0) return extents(width * height, 0, 0, outputBytes);
  const std::int64_t lastSample = (width - 1) * height + width - 1 + (height - 1) * width;
  return extents(lastSample + 1, 0, 0, outputBytes);
}

// Frames of odd width read one luma column past the end; row-major frames with an odd number of
// pixels read one luma sample past it.
Extents ycbcrToYuy2(const Frame& frame) {
  const std::int64_t n = std::int64_t{frame.width} * frame.height;
  if (frame.layout == 0) {
    const std::int64_t groups = n > 0 ? (n + 1) / 2 : 0;
    return extents(2 * groups, groups, groups, 4 * groups);
  }
  if (isEmpty(frame)) return {};
  const std::int64_t groups = std::int64_t{frame.width / 2 + frame.width % 2} * frame.height;
  return extents(2 * groups, groups, groups, 4 * groups);
}

}  // namespace

constinit const std::array<Family, 6> kFamilies{{{"RgbToRgb", 1, 1, rgbToRgb},
                                                 {"IntensityToRgb", 2, 1, intensityToRgb},
                                                 {"YcbcrToRgb", 3, 1, ycbcrToRgb},
                                                 {"RgbToYuy2", 1, 3, rgbToYuy2},
                                                 {"IntensityToYuy2", 2, 3, intensityToYuy2},
                                                 {"YcbcrToYuy2", 3, 3, ycbcrToYuy2}}};

}  // namespace framesink::oracle
