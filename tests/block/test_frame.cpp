#include "test_frame.hpp"

#include <algorithm>
#include <cstring>
#include <random>

#include "pixkit/pixkit.h"
#include "sample_pool.hpp"

namespace framesink::test {
namespace {

std::size_t sampleCount(Size size) { return std::size_t{size.width} * size.height; }

oracle::Frame oracleFrame(Size size) {
  return {static_cast<std::int32_t>(size.width), static_cast<std::int32_t>(size.height), 1};
}

std::mt19937& random() {
  static std::mt19937 generator(20230610);
  return generator;
}

HostPlanes randomSamples(std::uint32_t dataType, const std::array<std::size_t, 3>& counts) {
  const oracle::SamplePool pool(dataType);
  HostPlanes planes;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    planes.bytes[i].resize(counts[i] * oracle::sampleBytes(dataType));
    pool.fill(planes.bytes[i].data(), counts[i], random());
  }
  return planes;
}

template <class Sample>
Bytes bytesOf(Sample sample) {
  Bytes bytes(sizeof sample);
  std::memcpy(bytes.data(), &sample, sizeof sample);
  return bytes;
}

}  // namespace

InputDescription describe(const Kind& kind, std::uint32_t dataType, Size size) {
  InputDescription description{};
  const bool intensity = &kind == &kIntensity;
  description.valid = 1;
  std::memcpy(description.fourcc, &kind == &kYcbcr ? "YUY2" : "RGB ", 4);
  description.inputCount = intensity ? 1 : 3;
  description.componentCount = description.inputCount;
  for (std::size_t i = 0; i < description.componentCount; ++i) {
    const bool halved = &kind == &kYcbcr && i > 0;
    description.widths[i] = halved ? size.width / 2 : size.width;
    description.heights[i] = size.height;
  }
  description.dataType = dataType;
  description.layout = 1;
  return description;
}

HostPlanes randomPlanes(const Kind& kind, std::uint32_t dataType, Size size) {
  return randomSamples(dataType, kind.extents(oracleFrame(size)).planeSamples);
}

HostPlanes randomWholePlanes(std::uint32_t dataType, Size size) {
  const std::size_t samples = sampleCount(size);
  return randomSamples(dataType, {samples, samples, samples});
}

HostPlanes randomDoubles(Size size) { return randomWholePlanes(FRAMESINK_DOUBLE, size); }

Bytes joined(const HostPlanes& planes) {
  Bytes all;
  for (const Bytes& plane : planes.bytes) all.insert(all.end(), plane.begin(), plane.end());
  return all;
}

Bytes minimumOf(std::uint32_t dataType) {
  switch (dataType) {
    case FRAMESINK_DOUBLE:
      return bytesOf(videoTraits<0>::min);
    case FRAMESINK_SINGLE:
      return bytesOf(videoTraits<1>::min);
    case FRAMESINK_INT8:
      return bytesOf(videoTraits<2>::min);
    case FRAMESINK_UINT8:
      return bytesOf(videoTraits<3>::min);
    case FRAMESINK_INT16:
      return bytesOf(videoTraits<4>::min);
    case FRAMESINK_UINT16:
      return bytesOf(videoTraits<5>::min);
    case FRAMESINK_INT32:
      return bytesOf(videoTraits<6>::min);
    case FRAMESINK_UINT32:
      return bytesOf(videoTraits<7>::min);
    default:
      return bytesOf(videoTraits<8>::min);
  }
}

Bytes centred(const Bytes& plane, std::uint32_t dataType, Size source, Size frame) {
  const Bytes minimum = minimumOf(dataType);
  const auto left = static_cast<std::uint32_t>((int(frame.width) - int(source.width)) / 2);
  const auto top = static_cast<std::uint32_t>((int(frame.height) - int(source.height)) / 2);
  Bytes result;
  for (std::uint32_t column = 0; column < frame.width; ++column) {
    for (std::uint32_t row = 0; row < frame.height; ++row) {
      const bool inside = column - left < source.width && row - top < source.height;
      const std::size_t sample = std::size_t{column - left} * source.height + (row - top);
      const std::uint8_t* from = inside ? plane.data() + sample * minimum.size() : minimum.data();
      result.insert(result.end(), from, from + minimum.size());
    }
  }
  return result;
}

HostPlanes centred(const HostPlanes& planes, std::uint32_t dataType, Size source, Size frame) {
  HostPlanes result;
  for (std::size_t i = 0; i < planes.bytes.size(); ++i) {
    if (planes[i] != nullptr) result.bytes[i] = centred(planes.bytes[i], dataType, source, frame);
  }
  return result;
}

Bytes converted(const Kind& kind, std::uint32_t dataType, const HostPlanes& planes, Size frame) {
  Bytes result(3 * sampleCount(frame));
  oracle::convert(kind, dataType, {planes[0], planes[1], planes[2]}, result.data(),
                  oracleFrame(frame));
  return result;
}

Image picture(const Bytes& rgbPlanes, Size frame) {
  const std::size_t n = sampleCount(frame);
  Image image{static_cast<int>(frame.width), static_cast<int>(frame.height), {}};
  for (std::size_t row = 0; row < frame.height; ++row) {
    for (std::size_t column = 0; column < frame.width; ++column) {
      const std::size_t e = column * frame.height + row;
      image.pixels.push_back(std::uint32_t{rgbPlanes.at(e)} << 16 |
                             std::uint32_t{rgbPlanes.at(n + e)} << 8 | rgbPlanes.at(2 * n + e));
    }
  }
  return image;
}

HostPlanes plainPlanes(std::uint32_t colour, Size size) {
  HostPlanes planes;
  for (std::size_t i = 0; i < 3; ++i) {
    planes.bytes[i].assign(sampleCount(size), static_cast<std::uint8_t>(colour >> (16 - 8 * i)));
  }
  return planes;
}

Image plainPicture(std::uint32_t colour, Size size) {
  return {static_cast<int>(size.width), static_cast<int>(size.height),
          std::vector(sampleCount(size), colour)};
}

}  // namespace framesink::test
