#include "convert/colour_constants.hpp"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace framesink
