#include "simd/colour_constants.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>

namespace framesink {
namespace {

// 2.14 fixed point, halves away from zero.
std::int32_t fixed214(double value) {
  return static_cast<std::int32_t>(std::round(value * 16384.0));
}

TEST(ColourConstants, OffsetsAreThoseOfStudioRange) {
  EXPECT_EQ(ycbcrToRgbConstants.lumaOffset, 16);
  EXPECT_EQ(ycbcrToRgbConstants.cbOffset, 128);
  EXPECT_EQ(ycbcrToRgbConstants.crOffset, 128);
}

TEST(ColourConstants, MatrixHasTheBt601Integers) {
  EXPECT_EQ(ycbcrToRgbConstants.luma, 19077);
  EXPECT_EQ(ycbcrToRgbConstants.redFromCr, 26149);
  EXPECT_EQ(ycbcrToRgbConstants.greenFromCb, -6419);
  EXPECT_EQ(ycbcrToRgbConstants.greenFromCr, -13320);
  EXPECT_EQ(ycbcrToRgbConstants.blueFromCb, 33050);
}

TEST(ColourConstants, MatrixIsTheRoundedFixedPointOfItsDoubles) {
  EXPECT_EQ(ycbcrToRgbConstants.luma, fixed214(1.16438356164384));
  EXPECT_EQ(ycbcrToRgbConstants.redFromCr, fixed214(1.59602678571429));
  EXPECT_EQ(ycbcrToRgbConstants.greenFromCb, fixed214(-0.39176229009491));
  EXPECT_EQ(ycbcrToRgbConstants.greenFromCr, fixed214(-0.81296764723777));
  EXPECT_EQ(ycbcrToRgbConstants.blueFromCb, fixed214(2.01723214285714));
}

TEST(ColourConstants, ForwardOffsetsAreThoseOfStudioRange) {
  EXPECT_EQ(rgbToYcbcrConstants.lumaOffset, 16);
  EXPECT_EQ(rgbToYcbcrConstants.cbOffset, 128);
  EXPECT_EQ(rgbToYcbcrConstants.crOffset, 128);
}

// Derives every factor as the standard does, from the weights of red, green and blue in luma.
TEST(ColourConstants, ForwardMatrixIsTheRoundedBt601Matrix) {
  constexpr double kRed = 0.299, kGreen = 0.587, kBlue = 0.114;
  const auto rounded = [](double value) { return static_cast<std::int32_t>(std::round(value)); };
  EXPECT_EQ(rgbToYcbcrConstants.lumaFromRed, rounded(219 * kRed));
  EXPECT_EQ(rgbToYcbcrConstants.lumaFromGreen, rounded(219 * kGreen));
  EXPECT_EQ(rgbToYcbcrConstants.lumaFromBlue, rounded(219 * kBlue));
  EXPECT_EQ(rgbToYcbcrConstants.cbFromRed, rounded(-112 * kRed / (1 - kBlue)));
  EXPECT_EQ(rgbToYcbcrConstants.cbFromGreen, rounded(-112 * kGreen / (1 - kBlue)));
  EXPECT_EQ(rgbToYcbcrConstants.cbFromBlue, 112);
  EXPECT_EQ(rgbToYcbcrConstants.crFromRed, 112);
  EXPECT_EQ(rgbToYcbcrConstants.crFromGreen, rounded(-112 * kGreen / (1 - kRed)));
  EXPECT_EQ(rgbToYcbcrConstants.crFromBlue, rounded(-112 * kBlue / (1 - kRed)));
}

TEST(ColourConstants, InverseMatrixIsTheFixedPointOfTheBt601Matrix) {
  constexpr double kRed = 0.299, kGreen = 0.587, kBlue = 0.114, kChroma = 255.0 / 224;
  EXPECT_EQ(ycbcrToRgbConstants.luma, fixed214(255.0 / 219));
  EXPECT_EQ(ycbcrToRgbConstants.redFromCr, fixed214(kChroma * 2 * (1 - kRed)));
  EXPECT_EQ(ycbcrToRgbConstants.greenFromCb, fixed214(-kChroma * 2 * (1 - kBlue) * kBlue / kGreen));
  EXPECT_EQ(ycbcrToRgbConstants.greenFromCr, fixed214(-kChroma * 2 * (1 - kRed) * kRed / kGreen));
  EXPECT_EQ(ycbcrToRgbConstants.blueFromCb, fixed214(kChroma * 2 * (1 - kBlue)));
}

TEST(ColourConstants, ForwardMatrixHasTheBt601Integers) {
  const RgbToYcbcrConstants& k = rgbToYcbcrConstants;
  EXPECT_EQ((std::array{k.lumaFromRed, k.lumaFromGreen, k.lumaFromBlue}),
            (std::array{65, 129, 25}));
  EXPECT_EQ((std::array{k.cbFromRed, k.cbFromGreen, k.cbFromBlue}), (std::array{-38, -74, 112}));
  EXPECT_EQ((std::array{k.crFromRed, k.crFromGreen, k.crFromBlue}), (std::array{112, -94, -18}));
}

}  // namespace
}  // namespace framesink
