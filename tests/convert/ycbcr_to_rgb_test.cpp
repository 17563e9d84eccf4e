#include "convert/ycbcr_to_rgb.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include "convert/kernel_selection.hpp"
#include "convert/sample_types.hpp"
#include "oracle.hpp"
#include "run_kernel.hpp"

namespace framesink {
namespace {

Bytes runUint8(const Planes<kUint8>& planes, const Bytes& before, FrameShape shape) {
  return runToRgb<kUint8>(kInputYcbcr422, planes, before, shape);
}

// Red, green and blue that the kernel gives for two equal pixels.
Bytes pixelOf(std::uint8_t y, std::uint8_t cb, std::uint8_t cr) {
  const Bytes out = runUint8({{{y, y}, {cb}, {cr}}}, Bytes(6, 99), {2, 1});
  EXPECT_EQ(out[0], out[1]);
  EXPECT_EQ(out[2], out[3]);
  EXPECT_EQ(out[4], out[5]);
  return {out[0], out[2], out[4]};
}

using Triple = std::array<std::int32_t, 3>;

Triple tripleOf(std::int32_t y, std::int32_t cb, std::int32_t cr) {
  ycbcrToRgb(y, cb, cr);
  return {y, cb, cr};
}

TEST(YcbcrToRgb, StudioBlackGivesBlack) { EXPECT_EQ(pixelOf(16, 128, 128), (Bytes{0, 0, 0})); }

TEST(YcbcrToRgb, StudioWhiteGivesWhite) {
  EXPECT_EQ(pixelOf(235, 128, 128), (Bytes{255, 255, 255}));
}

TEST(YcbcrToRgb, LumaBelowBlackIsClampedTo0) { EXPECT_EQ(pixelOf(0, 128, 128), (Bytes{0, 0, 0})); }

TEST(YcbcrToRgb, Bt601RedGivesRed) { EXPECT_EQ(pixelOf(81, 90, 240), (Bytes{254, 0, 0})); }

TEST(YcbcrToRgb, AllSamples255GiveClampedRedAndBlue) {
  EXPECT_EQ(pixelOf(255, 255, 255), (Bytes{255, 125, 255}));
}

// The chroma terms of green: -6419 × 32 and -13320 × 32, in 2.14 fixed point.
TEST(YcbcrToRgb, CbAndCrBothTakeFromGreen) {
  EXPECT_EQ(pixelOf(126, 160, 128)[1], 116);
  EXPECT_EQ(pixelOf(126, 128, 160)[1], 102);
}

TEST(YcbcrTriple, OfBytesIsTheOraclesForAll) {
  for (std::uint32_t bits = 0; bits < 1U << 24; ++bits) {
    Triple triple{static_cast<std::int32_t>(bits >> 16), static_cast<std::int32_t>(bits >> 8 & 255),
                  static_cast<std::int32_t>(bits & 255)};
    Triple expected = triple;
    oracle::ycbcrToRgb(expected[0], expected[1], expected[2]);
    ycbcrToRgb(triple[0], triple[1], triple[2]);
    ASSERT_TRUE(triple == expected) << bits;
  }
}

TEST(YcbcrTriple, IsConvertedInPlaceWithoutAClamp) {
  EXPECT_EQ(tripleOf(16, 128, 128), (Triple{0, 0, 0}));
  EXPECT_EQ(tripleOf(235, 128, 128), (Triple{255, 255, 255}));
  EXPECT_EQ(tripleOf(81, 90, 240), (Triple{254, 0, -1}));
  EXPECT_EQ(tripleOf(255, 255, 255), (Triple{481, 125, 534}));
}

TEST(YcbcrTriple, ShiftRoundsTowardMinusInfinity) {
  EXPECT_EQ(tripleOf(0, 128, 128), (Triple{-19, -19, -19}));
  EXPECT_EQ(tripleOf(15, 128, 128), (Triple{-1, -1, -1}));
}

TEST(YcbcrTriple, GivesTheOraclesTripleAlsoBeyondBytes) {
  for (std::int32_t cb = -255; cb < 512; cb += 7) {
    for (std::int32_t cr = -255; cr < 512; cr += 5) {
      for (std::int32_t y = -255; y < 512; y += 3) {
        Triple expected{y, cb, cr};
        oracle::ycbcrToRgb(expected[0], expected[1], expected[2]);
        ASSERT_EQ(tripleOf(y, cb, cr), expected) << y << ", " << cb << ", " << cr;
      }
    }
  }
}

TEST(YcbcrToRgb, AnyLayoutButZeroIsColumnMajor) {
  const Planes<kUint8> planes{{{126, 81, 126, 81}, {128, 90}, {128, 240}}};
  for (const std::int32_t layout : {1, 2, -1, 256, std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(runUint8(planes, Bytes(12, 99), {2, 2, layout}),
              (Bytes{128, 254, 128, 254, 128, 0, 128, 0, 128, 0, 128, 0}))
        << "layout " << layout;
  }
}

TEST(YcbcrToRgb, BothPixelsOfAPairShareTheChromaOfTheirPair) {
  // One line, two pairs: the first without chroma, the second red.
  const Bytes out = runUint8({{{126, 126, 81, 81}, {128, 90}, {128, 240}}}, Bytes(12, 99), {4, 1});
  EXPECT_EQ(out, (Bytes{128, 128, 254, 254, 128, 128, 0, 0, 128, 128, 0, 0}));
}

TEST(YcbcrToRgb, EachLineHasItsOwnChroma) {
  // Two columns of three lines; the middle line is red.
  const Bytes out = runUint8({{{126, 81, 16, 126, 81, 235}, {128, 90, 128}, {128, 240, 128}}},
                             Bytes(18, 99), {2, 3});
  EXPECT_EQ(out,
            (Bytes{128, 254, 0, 128, 254, 255, 128, 0, 0, 128, 0, 255, 128, 0, 0, 128, 0, 255}));
}

TEST(YcbcrToRgb, LastColumnOfAnOddWidthIsLeftUntouched) {
  const Planes<kUint8> planes{{{16, 235, 235, 16, 126, 126}, {128, 128}, {128, 128}}};
  EXPECT_EQ(runUint8(planes, Bytes(18, 99), {3, 2}),
            (Bytes{0, 255, 255, 0, 99, 99, 0, 255, 255, 0, 99, 99, 0, 255, 255, 0, 99, 99}));
}

TEST(YcbcrToRgb, WidthOneWritesNothingInEitherLayout) {
  const Planes<kUint8> planes{{{235, 235}, {128, 128}, {128, 128}}};
  EXPECT_EQ(runUint8(planes, Bytes(6, 99), {1, 2, 1}), Bytes(6, 99));
  EXPECT_EQ(runUint8(planes, Bytes(6, 99), {1, 2, 0}), Bytes(6, 99));
}

TEST(YcbcrToRgb, NonPositiveSizesWriteNothingInEitherLayout) {
  const Planes<kUint8> planes{
      {Samples<kUint8>(8, 235), Samples<kUint8>(4, 128), Samples<kUint8>(4, 128)}};
  for (const std::int32_t layout : {1, 0}) {
    for (const FrameShape shape :
         {FrameShape{0, 2, layout}, FrameShape{4, 0, layout}, FrameShape{4, -2, layout},
          FrameShape{-4, 2, layout}, FrameShape{-4, -2, layout}}) {
      EXPECT_EQ(runUint8(planes, Bytes(24, 99), shape), Bytes(24, 99))
          << shape.width << " x " << shape.height << ", layout " << layout;
    }
  }
}

TEST(YcbcrToRgb, SecondPathPacksBlueGreenRed) {
  const Planes<kUint8> planes{{{81, 235}, {90}, {240}}};
  EXPECT_EQ(runUint8(planes, Bytes(8, 99), {2, 1, 0}), (Bytes{0, 0, 254, 178, 179, 255, 99, 99}));
}

// Two lines of two pairs: the first pair of the first line and the last of the second are coloured.
TEST(YcbcrToRgb, SecondPathTakesTheChromaOfEachPairOfItsLine) {
  const Planes<kUint8> planes{{Samples<kUint8>(8, 126), {90, 128, 128, 90}, {240, 128, 128, 240}}};
  EXPECT_EQ(runUint8(planes, Bytes(16, 99), {4, 2, 0}),
            (Bytes{51, 52, 255, 51, 128, 128, 128, 128, 128, 128, 51, 52, 255, 51, 52, 255}));
}

// Lines start two bytes apart, so the second line leaves only the first two bytes of the first.
TEST(YcbcrToRgb, LinesOfTheSecondPathOverlap) {
  const Planes<kUint8> planes{{{235, 235, 126, 126}, {128, 128}, {128, 128}}};
  EXPECT_EQ(runUint8(planes, Bytes(12, 99), {2, 2, 0}),
            (Bytes{255, 255, 128, 128, 128, 128, 128, 128, 99, 99, 99, 99}));
}

// The odd pixel of a line is skipped; the next line still starts at its own first sample.
TEST(YcbcrToRgb, SecondPathSkipsTheLastPixelOfAnOddWidth) {
  const Planes<kUint8> planes{{{235, 235, 16, 126, 126, 16}, {128, 128}, {128, 128}}};
  EXPECT_EQ(
      runUint8(planes, Bytes(18, 99), {3, 2, 0}),
      (Bytes{255, 255, 255, 128, 128, 128, 128, 128, 128, 99, 99, 99, 99, 99, 99, 99, 99, 99}));
}

TEST(NaturalYcbcrToRgb, BooleanSamplesAreScaled) {
  const Planes<kBoolean> planes{{{1, 0}, {1}, {1}}};
  const Bytes scaled = runUint8({{{255, 0}, {255}, {255}}}, Bytes(6, 99), {2, 1});
  EXPECT_EQ(runToRgb<kBoolean>(kInputYcbcr422, planes, Bytes(6, 99), {2, 1}), scaled);
}

TEST(NaturalYcbcrToRgb, DoubleSamplesAreScaledBeforeTheMatrix) {
  const Planes<kDouble> planes{{{81 / 255.0, 16 / 255.0}, {90 / 255.0}, {240 / 255.0}}};
  const Bytes scaled = runUint8({{{81, 16}, {90}, {240}}}, Bytes(6, 99), {2, 1});
  EXPECT_EQ(runToRgb<kDouble>(kInputYcbcr422, planes, Bytes(6, 99), {2, 1}), scaled);
}

}  // namespace
}  // namespace framesink
