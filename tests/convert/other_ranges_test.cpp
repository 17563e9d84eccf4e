// Sample scaling with ranges other than the natural ones. Each suite runs only with the pixkit that
// declares its ranges: see CMakeLists.txt.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "convert/kernel_selection.hpp"
#include "convert/sample_scaling.hpp"
#include "convert/sample_types.hpp"
#include "range_sets.hpp"
#include "run_kernel.hpp"

namespace framesink {
namespace {

template <std::uint32_t Id, class Sample>
void expectEnds(const Range<Sample>& range) {
  EXPECT_EQ(scaleTo8Bit<Id>(range.min), 0U) << "minimum of type " << Id;
  EXPECT_EQ(scaleTo8Bit<Id>(range.max), 255U) << "maximum of type " << Id;
}

TEST(OtherRanges, MinimumGives0AndMaximumGives255) {
  expectEnds<kDouble>(kOtherRanges.doubles);
  expectEnds<kSingle>(kOtherRanges.singles);
  expectEnds<kInt8>(kOtherRanges.int8s);
  expectEnds<kInt16>(kOtherRanges.int16s);
  expectEnds<kUint16>(kOtherRanges.uint16s);
  expectEnds<kInt32>(kOtherRanges.int32s);
  expectEnds<kUint32>(kOtherRanges.uint32s);
  expectEnds<kBoolean>(kOtherRanges.booleans);
}

TEST(OtherRanges, MiddleGives128) {
  EXPECT_EQ(scaleTo8Bit<kSingle>(15.0F), 128U);
  EXPECT_EQ(scaleTo8Bit<kInt8>(0), 128U);
  EXPECT_EQ(scaleTo8Bit<kInt16>(15000), 128U);
  EXPECT_EQ(scaleTo8Bit<kUint16>(30050), 128U);
}

TEST(OtherRanges, BeyondTheRangeIsClamped) {
  EXPECT_EQ(scaleTo8Bit<kSingle>(9.0F), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(21.0F), 255U);
  EXPECT_EQ(scaleTo8Bit<kInt8>(-128), 0U);
  EXPECT_EQ(scaleTo8Bit<kInt8>(127), 255U);
  EXPECT_EQ(scaleTo8Bit<kUint32>(0), 0U);
  EXPECT_EQ(scaleTo8Bit<kUint32>(std::numeric_limits<std::uint32_t>::max()), 255U);
}

TEST(OtherRanges, RangeUpsideDownIsScaledUpsideDown) {
  EXPECT_EQ(scaleTo8Bit<kUint16>(65535), 0U);
  EXPECT_EQ(scaleTo8Bit<kUint16>(0), 255U);
}

TEST(OtherRanges, Uint8IsReturnedUnchanged) {
  EXPECT_EQ(scaleTo8Bit<kUint8>(0), 0U);
  EXPECT_EQ(scaleTo8Bit<kUint8>(5), 5U);
  EXPECT_EQ(scaleTo8Bit<kUint8>(6), 6U);
  EXPECT_EQ(scaleTo8Bit<kUint8>(255), 255U);
}

TEST(OtherRanges, BooleanOneOfARangeUpToFourGives64) { EXPECT_EQ(scaleTo8Bit<kBoolean>(1), 64U); }

// -1.91999997 lies at 8.5000014 of 255 steps. With sample and ends narrowed to single precision it
// lies below 8.5 and rounds down.
TEST(OtherRanges, DoubleSampleAndEndsAreNarrowedBeforeTheyAreSubtracted) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(-1.91999997), 8U);
  EXPECT_EQ(scaleTo8Bit<kDouble>(-1.9199), 9U);
}

TEST(OtherRanges, KernelsScaleByThem) {
  const Planes<kSingle> planes{{{10.0F}, {15.0F}, {20.0F}}};
  EXPECT_EQ(runToRgb<kSingle>(kInputRgb, planes, Bytes(3, 9), {1, 1}), (Bytes{0, 128, 255}));
}

TEST(NarrowRanges, EqualEndsGive0ForEverySample) {
  using Limits = std::numeric_limits<std::int16_t>;
  for (std::int32_t sample = Limits::min(); sample <= Limits::max(); ++sample) {
    ASSERT_EQ(scaleTo8Bit<kInt16>(static_cast<std::int16_t>(sample)), 0U) << sample;
  }
  for (const std::uint32_t sample : {0U, 1U, 4294967294U, 4294967295U}) {
    EXPECT_EQ(scaleTo8Bit<kUint32>(sample), 0U) << sample;
  }
  for (const int sample : {0, 1, 2, 255}) {
    EXPECT_EQ(scaleTo8Bit<kBoolean>(static_cast<std::uint8_t>(sample)), 0U) << sample;
  }
}

TEST(NarrowRanges, EndsThatAreEqualInSinglePrecisionGive0ForEverySample) {
  for (const double sample : {-1e300, 0.0, 1.0, 1.0 + 1e-12, 2.0, 1e300}) {
    EXPECT_EQ(scaleTo8Bit<kDouble>(sample), 0U) << sample;
  }
  for (const std::int32_t sample : {std::numeric_limits<std::int32_t>::min(), 0, 2147483646,
                                    std::numeric_limits<std::int32_t>::max()}) {
    EXPECT_EQ(scaleTo8Bit<kInt32>(sample), 0U) << sample;
  }
}

TEST(NarrowRanges, SpanWithoutAFiniteReciprocalIsStillDividedBy) {
  EXPECT_EQ(scaleTo8Bit<kSingle>(0.0F), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(0x1p-141F), 128U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(0x1p-140F), 255U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(1.0F), 0U);  // the division gives infinity
}

TEST(NarrowRanges, EndsOfSpansThatArePowersOfTwoGive0And255) {
  expectEnds<kInt8>(kNarrowRanges.int8s);
  expectEnds<kUint16>(kNarrowRanges.uint16s);
}

TEST(WideRanges, SamplesThatAreInfiniteInSinglePrecisionGive0) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(1e38), 255U);
  EXPECT_EQ(scaleTo8Bit<kDouble>(3e38), 255U);
  for (const double sample : {3.5e38, 1e300, -1e300, HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(scaleTo8Bit<kDouble>(sample), 0U) << sample;
  }
}

TEST(WideRanges, AnInfiniteSpanGives0ForEverySample) {
  for (const float sample : {-3e38F, 0.0F, 3e38F}) EXPECT_EQ(scaleTo8Bit<kSingle>(sample), 0U);
}

TEST(WideRanges, WholeTypesUpsideDownAreScaledUpsideDown) {
  EXPECT_EQ(scaleTo8Bit<kInt8>(-128), 255U);
  EXPECT_EQ(scaleTo8Bit<kInt16>(32767), 0U);
  EXPECT_EQ(scaleTo8Bit<kBoolean>(0), 255U);
}

}  // namespace
}  // namespace framesink
