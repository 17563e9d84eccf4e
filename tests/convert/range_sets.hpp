// The ranges that the tests' pixkits declare. The stand-in declares the natural ones. The other
// sets differ from those in every type, so that a range that is hard-coded instead of read is
// noticed.
#pragma once

#include <cstdint>
#include <limits>

namespace framesink {

template <class Sample>
struct Range {
  Sample min;
  Sample max;
};

struct RangeSet {
  const char* name;
  Range<double> doubles;
  Range<float> singles;
  Range<std::int8_t> int8s;
  Range<std::uint8_t> uint8s;
  Range<std::int16_t> int16s;
  Range<std::uint16_t> uint16s;
  Range<std::int32_t> int32s;
  Range<std::uint32_t> uint32s;
  Range<std::uint8_t> booleans;
};

template <class Sample>
constexpr Range<Sample> wholeType() {
  return {std::numeric_limits<Sample>::lowest(), std::numeric_limits<Sample>::max()};
}

inline constexpr RangeSet kNaturalRanges{.name = "natural",
                                         .doubles = {0.0, 1.0},
                                         .singles = {0.0F, 1.0F},
                                         .int8s = wholeType<std::int8_t>(),
                                         .uint8s = wholeType<std::uint8_t>(),
                                         .int16s = wholeType<std::int16_t>(),
                                         .uint16s = wholeType<std::uint16_t>(),
                                         .int32s = wholeType<std::int32_t>(),
                                         .uint32s = wholeType<std::uint32_t>(),
                                         .booleans = {0, 1}};

// Ends that single precision cannot represent, a reversed range, and only one span that is a power
// of two.
inline constexpr RangeSet kOtherRanges{.name = "other",
                                       .doubles = {-2.1, 3.3},
                                       .singles = {10.0F, 20.0F},
                                       .int8s = {-100, 100},
                                       .uint8s = {5, 6},
                                       .int16s = {-1000, 31000},
                                       .uint16s = {60000, 100},
                                       .int32s = {-2000000001, 1999999999},
                                       .uint32s = {1000, 4000000001U},
                                       .booleans = {0, 4}};

// Equal ends, ends that are equal in single precision, a span whose reciprocal is infinite, and
// spans that are powers of two and do not begin at zero.
inline constexpr RangeSet kNarrowRanges{.name = "narrow",
                                        .doubles = {1.0, 1.0 + 1e-12},
                                        .singles = {0.0F, 0x1p-140F},
                                        .int8s = {-64, 64},
                                        .uint8s = {7, 7},
                                        .int16s = {1000, 1000},
                                        .uint16s = {100, 32868},
                                        .int32s = {2147483646, 2147483647},
                                        .uint32s = {4294967295U, 4294967295U},
                                        .booleans = {1, 1}};

// A range wide enough to show how samples too large for single precision are scaled, an infinite
// span, and reversed ranges.
inline constexpr RangeSet kWideRanges{.name = "wide",
                                      .doubles = {0.0, 1e38},
                                      .singles = {-3e38F, 3e38F},
                                      .int8s = {127, -128},
                                      .uint8s = {255, 0},
                                      .int16s = {32767, -32768},
                                      .uint16s = {0, 65534},
                                      .int32s = {2147483647, -2147483647 - 1},
                                      .uint32s = {0, 2147483648U},
                                      .booleans = {1, 0}};

}  // namespace framesink
