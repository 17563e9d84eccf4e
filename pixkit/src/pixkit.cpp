#include "pixkit/pixkit.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

// The samples that stand for 0..255 in the range min..max. For integers, (2 v span + 255) / 510 is
// v span / 255 rounded to nearest; all terms fit into 64 bits.
template <class Sample>
constexpr std::array<Sample, 256> eightBitSamples(Sample min, Sample max) {
  std::array<Sample, 256> samples{};
  for (int v = 0; v < 256; ++v) {
    if constexpr (std::numeric_limits<Sample>::is_integer) {
      const std::int64_t span = std::int64_t{max} - std::int64_t{min};
      samples[v] =
          static_cast<Sample>(std::int64_t{min} + (std::int64_t{2} * v * span + 255) / 510);
    } else {
      samples[v] = static_cast<Sample>(min + v / 255.0 * (max - min));
    }
  }
  return samples;
}

template <class Sample>
void convertDoubles(const double* source, void* destination, std::size_t count) {
  constexpr double min = std::numeric_limits<Sample>::min();
  constexpr double max = std::numeric_limits<Sample>::max();
  const auto* from = reinterpret_cast<const unsigned char*>(source);
  auto* to = static_cast<unsigned char*>(destination);
  for (std::size_t i = 0; i < count; ++i) {
    // Copied as bytes, because `source` and `destination` may be the same address.
    double x;
    std::memcpy(&x, from + i * sizeof x, sizeof x);
    const double value = std::nearbyint(min + x * (max - min));
    Sample sample = std::numeric_limits<Sample>::min();
    if (value >= max) {
      sample = std::numeric_limits<Sample>::max();
    } else if (value > min) {
      sample = static_cast<Sample>(value);
    }
    std::memcpy(to + i * sizeof sample, &sample, sizeof sample);
  }
}

}  // namespace

#define DEFINE_TRAITS(N, Sample, lowest, highest)                       \
  const Sample videoTraits<N>::min = lowest;                            \
  const Sample videoTraits<N>::max = highest;                           \
  constinit const std::array<Sample, 256> videoTraits<N>::EightBitLUT = \
      eightBitSamples<Sample>(lowest, highest)

DEFINE_TRAITS(0, double, 0.0, 1.0);
DEFINE_TRAITS(1, float, 0.0F, 1.0F);
DEFINE_TRAITS(3, std::uint8_t, 0, 255);
DEFINE_TRAITS(4, std::int16_t, -32768, 32767);
DEFINE_TRAITS(5, std::uint16_t, 0, 65535);
DEFINE_TRAITS(6, std::int32_t, INT32_MIN, INT32_MAX);
DEFINE_TRAITS(7, std::uint32_t, 0, UINT32_MAX);
DEFINE_TRAITS(8, unsigned char, 0, 1);
#undef DEFINE_TRAITS

// Int8 is computed as signed char and stored as the bytes of plain char.
const char videoTraits<2>::min = static_cast<char>(-128);
const char videoTraits<2>::max = 127;
constinit const std::array<char, 256> videoTraits<2>::EightBitLUT =
    std::bit_cast<std::array<char, 256>>(eightBitSamples<signed char>(-128, 127));

extern "C" PK_DoubleToFixFcn PK_GetDoubleToFixFcn(ScaledDoubleFunctionIndex index) {
  switch (index) {
    case PK_DOUBLE_TO_INT8:
      return convertDoubles<std::int8_t>;
    case PK_DOUBLE_TO_UINT8:
      return convertDoubles<std::uint8_t>;
    case PK_DOUBLE_TO_INT16:
      return convertDoubles<std::int16_t>;
    case PK_DOUBLE_TO_UINT16:
      return convertDoubles<std::uint16_t>;
    case PK_DOUBLE_TO_INT32:
      return convertDoubles<std::int32_t>;
    case PK_DOUBLE_TO_UINT32:
      return convertDoubles<std::uint32_t>;
    default:
      return nullptr;
  }
}
