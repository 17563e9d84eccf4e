// The one rule that reduces a sample of any type to 0..255.
#pragma once

#include <cstdint>
#include <limits>

#include "convert/sample_types.hpp"
#include "pixkit/pixkit.h"

namespace framesink {

// Truncates toward zero to 32 bits. NaN, infinities and values out of range become INT32_MIN on
// every machine, as in x86's own conversion.
inline std::int32_t truncateToInt32(double value) {
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

// Pixkit's range of one type in single precision.
template <std::uint32_t Id>
class SampleRange {
 public:
  SampleRange()
      : min_(toSingle(videoTraits<Id>::min)), span_(toSingle(videoTraits<Id>::max) - min_) {}

  float min() const { return min_; }
  float span() const { return span_; }

  // Converts to the sample's own type first, because pixkit declares int8 ranges as plain char,
  // which is unsigned on some machines.
  template <class Value>
  static float toSingle(Value value) {
    return static_cast<float>(static_cast<SampleOf<Id>>(value));
  }

 private:
  float min_;
  float span_;
};

// Scales samples of one type. Made once per plane, so that the range is read once.
template <std::uint32_t Id>
class SampleScale {
 public:
  using Sample = SampleOf<Id>;

  // Single precision except for the last step, which rounds to nearest, halves up. Values below the
  // range give 0, values above it 255. NaN, infinities and values that leave 32 bits on the way
  // give 0, so a much too large sample is black, not white. That is the library's own decision.
  std::uint32_t operator()(Sample sample) const {
    const float t = (range_.toSingle(sample) - range_.min()) / range_.span() * 255.0F;
    const std::int32_t rounded = truncateToInt32(static_cast<double>(t) + 0.5);
    return static_cast<std::uint32_t>(rounded < 0 ? 0 : rounded > 255 ? 255 : rounded);
  }

 private:
  SampleRange<Id> range_;
};

// Uint8 samples pass unchanged, whatever range pixkit declares for them. Booleans, which are bytes
// too, are scaled like every other type.
template <>
class SampleScale<kUint8> {
 public:
  std::uint32_t operator()(std::uint8_t sample) const { return sample; }
};

// Scales a single sample as SampleScale does.
template <std::uint32_t Id>
std::uint32_t scaleTo8Bit(SampleOf<Id> sample);

}  // namespace framesink
