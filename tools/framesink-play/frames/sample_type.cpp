#include "frames/sample_type.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>

#include "framesink/framesink.h"

namespace framesink::play {
namespace {

// `bool` represents the boolean type, which has one byte.
static_assert(sizeof(bool) == 1);

template <class Sample>
Sample toSample(double unit) {
  if constexpr (std::is_floating_point_v<Sample>) {
    return static_cast<Sample>(unit);
  } else if constexpr (std::is_same_v<Sample, bool>) {
    return unit >= 0.5;
  } else {
    constexpr double kMin = std::numeric_limits<Sample>::min();
    constexpr double kMax = std::numeric_limits<Sample>::max();
    return static_cast<Sample>(std::floor(kMin + std::clamp(unit, 0.0, 1.0) * (kMax - kMin) + 0.5));
  }
}

// Returns the sample of every 8-bit code.
template <class Sample>
std::array<Sample, 256> samplesOfBytes(double one) {
  std::array<Sample, 256> samples;
  for (int code = 0; code < 256; ++code) samples[code] = toSample<Sample>(code / one);
  return samples;
}

template <class Code, class Sample, class Convert>
void storeGrid(const Grid<Code>& grid, Layout layout, Sample* plane, Convert convert) {
  const bool columns = layout == Layout::kColumn;
  const std::ptrdiff_t rowStep = columns ? 1 : grid.width;
  const std::ptrdiff_t columnStep = columns ? grid.height : 1;
  constexpr int kRows = 16;  // walked together, so that column-major writes come in runs
  for (int top = 0; top < grid.height; top += kRows) {
    const int bottom = std::min(top + kRows, grid.height);
    for (int column = 0; column < grid.width; ++column) {
      Sample* out = plane + column * columnStep;
      for (int row = top; row < bottom; ++row) out[row * rowStep] = convert(grid.at(row, column));
    }
  }
}

template <class Sample>
void store(const Component& component, Layout layout, void* plane) {
  auto* samples = static_cast<Sample*>(plane);
  if (const auto* bytes = std::get_if<Grid<std::uint8_t>>(&component)) {
    const auto table = samplesOfBytes<Sample>(bytes->one);
    storeGrid(*bytes, layout, samples, [&](std::uint8_t code) { return table[code]; });
  } else if (const auto* words = std::get_if<Grid<std::uint16_t>>(&component)) {
    storeGrid(*words, layout, samples,
              [one = words->one](std::uint16_t code) { return toSample<Sample>(code / one); });
  } else {
    storeGrid(std::get<Grid<double>>(component), layout, samples, toSample<Sample>);
  }
}

// `Bits` is an integer of the sample's size.
template <class Bits>
void copy(const SampleGrid& samples, Layout layout, void* plane) {
  const Grid<Bits> grid{reinterpret_cast<const Bits*>(samples.first),
                        samples.rowStep,
                        samples.columnStep,
                        samples.width,
                        samples.height,
                        1};
  storeGrid(grid, layout, static_cast<Bits*>(plane), [](Bits bits) { return bits; });
}

template <std::size_t kBytes>
using BitsOf = std::conditional_t<
    kBytes == 1, std::uint8_t,
    std::conditional_t<kBytes == 2, std::uint16_t,
                       std::conditional_t<kBytes == 4, std::uint32_t, std::uint64_t>>>;

// Prints a boolean as its byte, because a range may hold any byte.
template <class Sample>
void print(std::ostream& out, const void* sample) {
  using Number = std::conditional_t<std::is_same_v<Sample, bool>, std::uint8_t, Sample>;
  out << +*static_cast<const Number*>(sample);
}

template <class Sample>
constexpr SampleType sampleType(const char* name, std::uint32_t id) {
  return {name, id, sizeof(Sample), store<Sample>, copy<BitsOf<sizeof(Sample)>>, print<Sample>};
}

constexpr std::array kSampleTypes{
    sampleType<double>("double", FRAMESINK_DOUBLE),
    sampleType<float>("single", FRAMESINK_SINGLE),
    sampleType<std::int8_t>("int8", FRAMESINK_INT8),
    sampleType<std::uint8_t>("uint8", FRAMESINK_UINT8),
    sampleType<std::int16_t>("int16", FRAMESINK_INT16),
    sampleType<std::uint16_t>("uint16", FRAMESINK_UINT16),
    sampleType<std::int32_t>("int32", FRAMESINK_INT32),
    sampleType<std::uint32_t>("uint32", FRAMESINK_UINT32),
    sampleType<bool>("boolean", FRAMESINK_BOOLEAN),
};

}  // namespace

std::span<const SampleType> sampleTypes() { return kSampleTypes; }

const SampleType* findSampleType(std::string_view name) {
  const auto found = std::ranges::find(kSampleTypes, name, &SampleType::name);
  return found == kSampleTypes.end() ? nullptr : &*found;
}

}  // namespace framesink::play
