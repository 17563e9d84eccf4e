#include "convert/sample_scaling.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "convert/sample_types.hpp"
#include "oracle.hpp"
#include "sample_pool.hpp"

namespace framesink {
namespace {

constexpr float kSingleInfinity = std::numeric_limits<float>::infinity();
constexpr double kDoubleInfinity = std::numeric_limits<double>::infinity();
constexpr float kSingleNan = std::numeric_limits<float>::quiet_NaN();
constexpr double kDoubleNan = std::numeric_limits<double>::quiet_NaN();

// The largest single below `value`.
float justBelow(float value) { return std::nextafter(value, -kSingleInfinity); }

// ---- natural ranges ----

TEST(NaturalSampleScaling, MinimumOfADoubleRangeGives0) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(0.0), 0U);
}
TEST(NaturalSampleScaling, MaximumOfADoubleRangeGives255) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(1.0), 255U);
}
TEST(NaturalSampleScaling, HalfOfADoubleRangeGives128) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(0.5), 128U);
}

TEST(NaturalSampleScaling, EndsOfASingleRangeGive0And255) {
  EXPECT_EQ(scaleTo8Bit<kSingle>(0.0F), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(1.0F), 255U);
}

TEST(NaturalSampleScaling, EndsOfAnInt8RangeGive0And255) {
  EXPECT_EQ(scaleTo8Bit<kInt8>(-128), 0U);
  EXPECT_EQ(scaleTo8Bit<kInt8>(0), 128U);
  EXPECT_EQ(scaleTo8Bit<kInt8>(127), 255U);
}

TEST(NaturalSampleScaling, EndsOfAnInt16RangeGive0And255) {
  EXPECT_EQ(scaleTo8Bit<kInt16>(-32768), 0U);
  EXPECT_EQ(scaleTo8Bit<kInt16>(0), 128U);
  EXPECT_EQ(scaleTo8Bit<kInt16>(32767), 255U);
}

TEST(NaturalSampleScaling, EndsOfAUint16RangeGive0And255) {
  EXPECT_EQ(scaleTo8Bit<kUint16>(0), 0U);
  EXPECT_EQ(scaleTo8Bit<kUint16>(32768), 128U);
  EXPECT_EQ(scaleTo8Bit<kUint16>(65535), 255U);
}

TEST(NaturalSampleScaling, EndsOfAnInt32RangeGive0And255) {
  EXPECT_EQ(scaleTo8Bit<kInt32>(std::numeric_limits<std::int32_t>::min()), 0U);
  EXPECT_EQ(scaleTo8Bit<kInt32>(0), 128U);
  EXPECT_EQ(scaleTo8Bit<kInt32>(std::numeric_limits<std::int32_t>::max()), 255U);
}

TEST(NaturalSampleScaling, LargestUint32IsNotReadAsMinusOne) {
  EXPECT_EQ(scaleTo8Bit<kUint32>(4294967295U), 255U);
}

TEST(NaturalSampleScaling, EndsOfAUint32RangeGive0And255) {
  EXPECT_EQ(scaleTo8Bit<kUint32>(0), 0U);
  EXPECT_EQ(scaleTo8Bit<kUint32>(2147483648U), 128U);
}

TEST(NaturalSampleScaling, BooleanOneGives255) {
  EXPECT_EQ(scaleTo8Bit<kBoolean>(0), 0U);
  EXPECT_EQ(scaleTo8Bit<kBoolean>(1), 255U);
}

TEST(NaturalSampleScaling, BooleanAboveOneGives255) {
  EXPECT_EQ(scaleTo8Bit<kBoolean>(2), 255U);
  EXPECT_EQ(scaleTo8Bit<kBoolean>(255), 255U);
}

TEST(NaturalSampleScaling, BelowTheRangeGives0) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(-0.75), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(-1000.0F), 0U);
}

TEST(NaturalSampleScaling, LessThanHalfAStepBelowTheRangeGives0) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(-0.4 / 255), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(-0.4F / 255), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(-0.0F), 0U);
}

TEST(NaturalSampleScaling, AboveTheRangeGives255) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(1.01), 255U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(8000000.0F), 255U);
}

// 8421504 × 255 is the last such product below 2^31; 8421505 × 255 rounds to 2^31.
TEST(NaturalSampleScaling, SingleTooFarAboveTheRangeGives0) {
  EXPECT_EQ(scaleTo8Bit<kSingle>(8421504.0F), 255U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(8421505.0F), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(std::numeric_limits<float>::max()), 0U);
}

TEST(NaturalSampleScaling, DoubleTooFarAboveTheRangeGives0) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(8421504.5), 255U);  // a tie, which narrowing rounds to 8421504
  EXPECT_EQ(scaleTo8Bit<kDouble>(8421504.6), 0U);
  EXPECT_EQ(scaleTo8Bit<kDouble>(1e300), 0U);  // infinite in single precision
}

TEST(NaturalSampleScaling, HalvesRoundUp) {
  EXPECT_EQ(scaleTo8Bit<kSingle>(0.5F), 128U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(justBelow(0.5F)), 127U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(2.5F / 255), 3U);  // × 255 is 2.5 again: rounds up, not to even
}

TEST(NaturalSampleScaling, DoubleIsNarrowedToSingleBeforeItIsScaled) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(0.5 - 1e-12), 128U);
  EXPECT_EQ(scaleTo8Bit<kDouble>(0.5 - 1e-6), 127U);
}

// ---- any ranges ----

TEST(SampleScaling, NanGives0) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(kDoubleNan), 0U);
  EXPECT_EQ(scaleTo8Bit<kDouble>(-kDoubleNan), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(kSingleNan), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(-kSingleNan), 0U);
}

TEST(SampleScaling, InfinityOfEitherSignGives0) {
  EXPECT_EQ(scaleTo8Bit<kDouble>(kDoubleInfinity), 0U);
  EXPECT_EQ(scaleTo8Bit<kDouble>(-kDoubleInfinity), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(kSingleInfinity), 0U);
  EXPECT_EQ(scaleTo8Bit<kSingle>(-kSingleInfinity), 0U);
}

TEST(SampleScaling, Uint8IsReturnedUnchanged) {
  for (std::uint32_t value = 0; value <= 255; ++value) {
    EXPECT_EQ(scaleTo8Bit<kUint8>(static_cast<std::uint8_t>(value)), value);
  }
}

template <std::uint32_t Id>
void expectOracleResult(SampleOf<Id> sample) {
  ASSERT_EQ(scaleTo8Bit<Id>(sample), oracle::scaleTo8Bit(Id, &sample))
      << oracle::typeName(Id) << " sample " << +sample;
}

template <std::uint32_t... Id>
void expectOracleResultsForPool() {
  const auto expectType = []<std::uint32_t Type>() {
    const oracle::SamplePool pool(Type);
    for (std::size_t i = 0; i < pool.size() && !testing::Test::HasFatalFailure(); ++i) {
      SampleOf<Type> sample;
      std::memcpy(&sample, pool.sample(i), sizeof sample);
      expectOracleResult<Type>(sample);
    }
  };
  (expectType.template operator()<Id>(), ...);
}

TEST(SampleScaling, GivesTheOraclesResult) {
  expectOracleResultsForPool<kDouble, kSingle, kInt8, kUint8, kInt16, kUint16, kInt32, kUint32,
                             kBoolean>();
}

template <std::uint32_t... Id>
void expectOracleResultsForEverySample() {
  const auto expectType = []<std::uint32_t Type>() {
    using Limits = std::numeric_limits<SampleOf<Type>>;
    for (std::int32_t sample = Limits::min(); sample <= Limits::max(); ++sample) {
      if (testing::Test::HasFatalFailure()) return;
      expectOracleResult<Type>(static_cast<SampleOf<Type>>(sample));
    }
  };
  (expectType.template operator()<Id>(), ...);
}

TEST(SampleScaling, GivesTheOraclesResultForEverySampleOfTheSmallTypes) {
  expectOracleResultsForEverySample<kInt8, kUint8, kInt16, kUint16, kBoolean>();
}

}  // namespace
}  // namespace framesink
