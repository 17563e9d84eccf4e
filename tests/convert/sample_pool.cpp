#include "sample_pool.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "oracle.hpp"
#include "pixkit/pixkit.h"

namespace framesink::oracle {
namespace {

// From this position on (0 to 1 is the range), 255 times the position plus 0.5 exceeds 32 bits.
constexpr double kPositionPastInt32 = 2147483648.0 / 255.0;

template <class Sample>
Sample nearestSample(double value) {
  if constexpr (std::is_floating_point_v<Sample>) {
    return static_cast<Sample>(value);
  } else {
    using Limits = std::numeric_limits<Sample>;
    return static_cast<Sample>(
        std::clamp<double>(std::nearbyint(value), Limits::lowest(), Limits::max()));
  }
}

// Doubles near `value`: its neighbours in single precision, and those around the ties between them.
void addNeighbours(std::vector<double>& samples, double value) {
  const double infinity = std::numeric_limits<double>::infinity();
  const auto nearest = static_cast<float>(value);
  for (const float side : {-HUGE_VALF, HUGE_VALF}) {
    const float next = std::nextafter(nearest, side);
    const double tie = (double{nearest} + double{next}) / 2;
    const double after = std::nextafter(next, side);
    samples.insert(samples.end(), {next, after, tie, std::nextafter(tie, -infinity),
                                   std::nextafter(tie, infinity), std::nextafter(value, side)});
  }
  samples.insert(samples.end(), {value, nearest, value * (1 + 1e-12), value * (1 - 1e-12)});
}

void addNeighbours(std::vector<float>& samples, double value) {
  const auto nearest = static_cast<float>(value);
  samples.push_back(nearest);
  for (const float side : {-HUGE_VALF, HUGE_VALF}) {
    float next = nearest;
    for (int step = 0; step < 3; ++step) samples.push_back(next = std::nextafter(next, side));
  }
}

// The wide steps are for large 32-bit samples, which single precision rounds to multiples of up to
// 256.
template <class Sample>
void addNeighbours(std::vector<Sample>& samples, double value) {
  for (const double step : {0, 1, 2, 63, 64, 65, 127, 128, 129, 255, 256, 257}) {
    samples.push_back(nearestSample<Sample>(value - step));
    samples.push_back(nearestSample<Sample>(value + step));
  }
}

// Quiet and signalling NaNs with payloads, and denormals.
void addBitPatterns(std::vector<double>& samples) {
  for (const std::uint64_t bits : std::initializer_list<std::uint64_t>{
           0x7FF0000000000001U, 0x7FF8DEADBEEF0001U, 0x7FFFFFFFFFFFFFFFU, 0x000FFFFFFFFFFFFFU,
           0x0000000000000001U, 0x36A0000000000000U, 0x369FFFFFFFFFFFFFU, 0x47EFFFFFF0000000U}) {
    samples.push_back(std::bit_cast<double>(bits));
    samples.push_back(std::bit_cast<double>(bits | std::uint64_t{1} << 63));
  }
}

void addBitPatterns(std::vector<float>& samples) {
  for (const std::uint32_t bits :
       {0x7F800001U, 0x7FBEEF01U, 0x7FFFFFFFU, 0x007FFFFFU, 0x00000001U}) {
    samples.push_back(std::bit_cast<float>(bits));
    samples.push_back(std::bit_cast<float>(bits | std::uint32_t{1} << 31));
  }
}

template <class Sample>
void addLimits(std::vector<Sample>& samples) {
  using Limits = std::numeric_limits<Sample>;
  samples.insert(samples.end(), {Limits::lowest(), Limits::max(), Sample{0}, Sample{1}});
  if constexpr (std::is_floating_point_v<Sample>) {
    for (const Sample special : {Limits::infinity(), Limits::quiet_NaN(), Limits::denorm_min(),
                                 Limits::min(), Sample{0}, Limits::epsilon()}) {
      samples.push_back(special);
      samples.push_back(-special);
    }
    addBitPatterns(samples);
  } else {
    for (const double power : {127.0, 128.0, 32767.0, 32768.0, 16777217.0, 2147483648.0}) {
      addNeighbours(samples, power);
      addNeighbours(samples, -power);
    }
  }
}

template <class Sample>
void addRandomBits(std::vector<Sample>& samples, std::mt19937& random) {
  for (int i = 0; i < 1000; ++i) {
    const std::uint64_t bits = std::uint64_t{random()} << 32 | random();
    Sample sample;
    std::memcpy(&sample, &bits, sizeof sample);
    samples.push_back(sample);
  }
}

template <class Sample>
std::vector<Sample> samplesOfRange(double min, double max) {
  std::vector<Sample> samples;
  const auto add = [&](double position) { addNeighbours(samples, min + position * (max - min)); };
  for (int v = -1; v <= 255; ++v) {
    add(v / 255.0);
    add((v + 0.5) / 255.0);
  }
  for (const double position : {kPositionPastInt32, -kPositionPastInt32, 1e7, 1e10, -1e10}) {
    add(position);
  }
  addLimits(samples);
  std::mt19937 random(1);
  addRandomBits(samples, random);
  std::uniform_real_distribution<double> position(-0.1, 1.1);
  for (int i = 0; i < 4000; ++i) {
    samples.push_back(nearestSample<Sample>(min + position(random) * (max - min)));
  }
  return samples;
}

template <class Sample, int N>
std::vector<std::uint8_t> poolBytes() {
  const std::vector<Sample> samples =
      samplesOfRange<Sample>(static_cast<double>(static_cast<Sample>(videoTraits<N>::min)),
                             static_cast<double>(static_cast<Sample>(videoTraits<N>::max)));
  std::vector<std::uint8_t> bytes(samples.size() * sizeof(Sample));
  std::memcpy(bytes.data(), samples.data(), bytes.size());
  return bytes;
}

std::vector<std::uint8_t> poolBytesOf(std::uint32_t dataType) {
  using Maker = std::vector<std::uint8_t> (*)();
  constexpr std::array<Maker, kTypeCount> kMakers{
      poolBytes<double, 0>,       poolBytes<float, 1>,         poolBytes<std::int8_t, 2>,
      poolBytes<std::uint8_t, 3>, poolBytes<std::int16_t, 4>,  poolBytes<std::uint16_t, 5>,
      poolBytes<std::int32_t, 6>, poolBytes<std::uint32_t, 7>, poolBytes<std::uint8_t, 8>};
  return kMakers.at(dataType)();
}

}  // namespace

SamplePool::SamplePool(std::uint32_t dataType)
    : sampleBytes_(sampleBytes(dataType)), samples_(poolBytesOf(dataType)) {}

void SamplePool::fill(std::uint8_t* plane, std::size_t count, std::mt19937& random) const {
  for (std::size_t i = 0; i < count; ++i) {
    std::memcpy(plane + i * sampleBytes_, sample(random() % size()), sampleBytes_);
  }
}

}  // namespace framesink::oracle
