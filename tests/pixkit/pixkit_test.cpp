#include "pixkit/pixkit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "oracle.hpp"

namespace {

// Ranges of plain char are meant for signed 8-bit samples.
template <int N>
using SampleOf =
    std::conditional_t<N == 2, std::int8_t, std::remove_const_t<decltype(videoTraits<N>::min)>>;

template <int N>
SampleOf<N> eightBitSample(std::size_t value) {
  return static_cast<SampleOf<N>>(videoTraits<N>::EightBitLUT[value]);
}

template <int N>
void expectRange(SampleOf<N> min, SampleOf<N> max) {
  EXPECT_EQ(static_cast<SampleOf<N>>(videoTraits<N>::min), min) << "type " << N;
  EXPECT_EQ(static_cast<SampleOf<N>>(videoTraits<N>::max), max) << "type " << N;
}

TEST(PixkitRanges, FloatingPointAndBooleanGoFrom0To1) {
  expectRange<0>(0.0, 1.0);
  expectRange<1>(0.0F, 1.0F);
  expectRange<8>(0, 1);
}

TEST(PixkitRanges, IntegersCoverTheirWholeType) {
  expectRange<2>(-128, 127);
  expectRange<3>(0, 255);
  expectRange<4>(-32768, 32767);
  expectRange<5>(0, 65535);
  expectRange<6>(std::numeric_limits<std::int32_t>::min(), 2147483647);
  expectRange<7>(0, 4294967295U);
}

// Calls expect<N>() for each type listed.
template <int... N, class Expect>
void forTypes(const Expect& expect) {
  (expect.template operator()<N>(), ...);
}

template <class Expect>
void forAllTypes(const Expect& expect) {
  forTypes<0, 1, 2, 3, 4, 5, 6, 7, 8>(expect);
}

TEST(EightBitTable, BeginsWithTheMinimumAndEndsWithTheMaximum) {
  forAllTypes([]<int N>() {
    EXPECT_EQ(eightBitSample<N>(0), static_cast<SampleOf<N>>(videoTraits<N>::min)) << N;
    EXPECT_EQ(eightBitSample<N>(255), static_cast<SampleOf<N>>(videoTraits<N>::max)) << N;
  });
}

TEST(EightBitTable, NeverFalls) {
  forAllTypes([]<int N>() {
    for (std::size_t v = 1; v < 256; ++v) {
      EXPECT_GE(eightBitSample<N>(v), eightBitSample<N>(v - 1)) << "type " << N << ", value " << v;
    }
  });
}

TEST(EightBitTable, HoldsTheNearestSampleOfEachValue) {
  forAllTypes([]<int N>() {
    const long double min = static_cast<SampleOf<N>>(videoTraits<N>::min);
    const long double max = static_cast<SampleOf<N>>(videoTraits<N>::max);
    for (std::size_t v = 0; v < 256; ++v) {
      const long double exact = min + static_cast<long double>(v) / 255 * (max - min);
      const long double nearest = std::is_integral_v<SampleOf<N>> ? std::round(exact) : exact;
      EXPECT_EQ(eightBitSample<N>(v), static_cast<SampleOf<N>>(nearest))
          << "type " << N << ", value " << v;
    }
  });
}

// Without booleans, which have two samples for 256 values.
TEST(EightBitTable, IsScaledBackToItsIndex) {
  forTypes<0, 1, 2, 3, 4, 5, 6, 7>([]<int N>() {
    for (std::size_t v = 0; v < 256; ++v) {
      const SampleOf<N> sample = eightBitSample<N>(v);
      EXPECT_EQ(framesink::oracle::scaleTo8Bit(N, &sample), v) << "type " << N;
    }
  });
}

TEST(EightBitTable, OfBooleanChangesAtTheMiddle) {
  EXPECT_EQ(eightBitSample<8>(127), 0);
  EXPECT_EQ(eightBitSample<8>(128), 1);
}

// ---- conversion of doubles ----

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(DoubleToFix, NoConversionIsNull) {
  EXPECT_EQ(PK_GetDoubleToFixFcn(PK_NO_CONVERSION), nullptr);
}

TEST(DoubleToFix, IndexOutOfRangeIsNull) {
  for (const std::uint32_t index : {7U, 8U, 255U, 256U, 2147483648U, 4294967295U}) {
    EXPECT_EQ(PK_GetDoubleToFixFcn(static_cast<ScaledDoubleFunctionIndex>(index)), nullptr)
        << index;
  }
}

template <class T>
ScaledDoubleFunctionIndex indexOf() {
  if (std::is_same_v<T, std::int8_t>) return PK_DOUBLE_TO_INT8;
  if (std::is_same_v<T, std::uint8_t>) return PK_DOUBLE_TO_UINT8;
  if (std::is_same_v<T, std::int16_t>) return PK_DOUBLE_TO_INT16;
  if (std::is_same_v<T, std::uint16_t>) return PK_DOUBLE_TO_UINT16;
  if (std::is_same_v<T, std::int32_t>) return PK_DOUBLE_TO_INT32;
  return PK_DOUBLE_TO_UINT32;
}

template <class T>
std::vector<T> converted(const std::vector<double>& source) {
  std::vector<T> samples(source.size());
  PK_GetDoubleToFixFcn(indexOf<T>())(source.data(), samples.data(), source.size());
  return samples;
}

template <class T>
class DoubleToFixOf : public testing::Test {
 public:
  // The double that converts to `value`.
  static double doubleOf(double value) {
    constexpr double kMin = std::numeric_limits<T>::min();
    constexpr double kMax = std::numeric_limits<T>::max();
    return (value - kMin) / (kMax - kMin);
  }
};

using FixTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t,
                                std::int32_t, std::uint32_t>;

TYPED_TEST_SUITE(DoubleToFixOf, FixTypes);

TYPED_TEST(DoubleToFixOf, UnitRangeBecomesTheWholeType) {
  using Limits = std::numeric_limits<TypeParam>;
  EXPECT_EQ(converted<TypeParam>({0.0, -0.0, 1.0}),
            (std::vector<TypeParam>{Limits::min(), Limits::min(), Limits::max()}));
}

TYPED_TEST(DoubleToFixOf, WholeNumbersComeOutExactly) {
  for (const TypeParam value : {TypeParam{1}, TypeParam{2}, TypeParam{77}, TypeParam{126}}) {
    EXPECT_EQ(converted<TypeParam>({this->doubleOf(value)})[0], value);
  }
}

TYPED_TEST(DoubleToFixOf, HalvesGoToTheEvenSample) {
  EXPECT_EQ(converted<TypeParam>({this->doubleOf(0.5), this->doubleOf(1.5), this->doubleOf(2.5),
                                  this->doubleOf(3.5)}),
            (std::vector<TypeParam>{0, 2, 2, 4}));
}

TYPED_TEST(DoubleToFixOf, BeyondTheUnitRangeSaturates) {
  using Limits = std::numeric_limits<TypeParam>;
  EXPECT_EQ(converted<TypeParam>({-1e-3, -5.0, -1e300, -kInfinity}),
            std::vector<TypeParam>(4, Limits::min()));
  EXPECT_EQ(converted<TypeParam>({1.001, 5.0, 1e300, kInfinity}),
            std::vector<TypeParam>(4, Limits::max()));
}

TYPED_TEST(DoubleToFixOf, NanGivesTheMinimum) {
  EXPECT_EQ(converted<TypeParam>({kNan, -kNan}),
            std::vector<TypeParam>(2, std::numeric_limits<TypeParam>::min()));
}

TYPED_TEST(DoubleToFixOf, ConvertsInPlace) {
  std::vector<double> doubles;
  for (int i = -5; i <= 105; ++i) doubles.push_back(i / 100.0);
  const std::vector<TypeParam> expected = converted<TypeParam>(doubles);
  PK_GetDoubleToFixFcn(indexOf<TypeParam>())(doubles.data(), doubles.data(), doubles.size());
  std::vector<TypeParam> samples(doubles.size());
  std::memcpy(samples.data(), doubles.data(), samples.size() * sizeof(TypeParam));
  EXPECT_EQ(samples, expected);
}

TYPED_TEST(DoubleToFixOf, WritesAsManySamplesAsItIsAskedFor) {
  const std::vector<double> source(4, 1.0);
  const auto routine = PK_GetDoubleToFixFcn(indexOf<TypeParam>());
  for (std::size_t count = 0; count <= 4; ++count) {
    std::vector<TypeParam> samples(5, TypeParam{7});
    routine(source.data(), samples.data(), count);
    EXPECT_EQ(static_cast<std::size_t>(
                  std::ranges::count(samples, std::numeric_limits<TypeParam>::max())),
              count);
    EXPECT_EQ(samples[count], TypeParam{7}) << "count " << count;
  }
}

TEST(DoubleToFix, MiddleOfTheUnitRange) {
  EXPECT_EQ(converted<std::int8_t>({0.5})[0], 0);
  EXPECT_EQ(converted<std::uint8_t>({0.5})[0], 128);
  EXPECT_EQ(converted<std::int16_t>({0.5})[0], 0);
  EXPECT_EQ(converted<std::uint16_t>({0.5})[0], 32768);
  EXPECT_EQ(converted<std::int32_t>({0.5})[0], 0);
  EXPECT_EQ(converted<std::uint32_t>({0.5})[0], 2147483648U);
}

}  // namespace
