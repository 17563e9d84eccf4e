#include "convert/planes_to_yuy2.hpp"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <utility>

#include "oracle.hpp"
#include "run_kernel.hpp"

namespace framesink {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

Bytes rgb(const Planes<kUint8>& planes, std::size_t room, FrameShape shape) {
  return runToYuy2<kUint8>(kInputRgb, planes, Bytes(room, 99), shape);
}

Bytes intensity(const Samples<kUint8>& plane, std::size_t room, FrameShape shape) {
  return runToYuy2<kUint8>(kInputIntensity, {{plane, {}, {}}}, Bytes(room, 99), shape);
}

// Sizes for which no layout produces output.
constexpr std::pair<std::int32_t, std::int32_t> kEmptySizes[]{
    {2, 0}, {2, -1}, {0, 2}, {-2, 2}, {-3, 2}, {-1, -1}, {kLowest, 1}, {1, kLowest}};

// ---- RGB ----------------------------------------------------------------------------------------

TEST(RgbToYuy2, WhiteHasLuma234AndBlackLuma16) {
  EXPECT_EQ(rgb({{{255, 0}, {255, 0}, {255, 0}}}, 4, {2, 1}), (Bytes{234, 128, 16, 128}));
  EXPECT_EQ(rgb({{{0, 255}, {0, 255}, {0, 255}}}, 4, {2, 1}), (Bytes{16, 128, 234, 128}));
}

TEST(RgbToYuy2, APairTakesItsChromaFromTheFirstPixelAlone) {
  const Bytes redThenBlue = rgb({{{255, 0}, {0, 0}, {0, 255}}}, 4, {2, 1});
  const Bytes redThenWhite = rgb({{{255, 255}, {0, 255}, {0, 255}}}, 4, {2, 1});
  EXPECT_EQ(redThenBlue, (Bytes{81, 90, 41, 240}));
  EXPECT_EQ(redThenWhite, (Bytes{81, 90, 234, 240}));
}

TEST(RgbToYuy2, LinesFollowOneAnotherFromColumnMajorPlanes) {
  // Two lines: black, white; red, blue.
  EXPECT_EQ(rgb({{{0, 255, 255, 0}, {0, 0, 255, 0}, {0, 0, 255, 255}}}, 8, {2, 2}),
            (Bytes{16, 128, 234, 128, 81, 90, 41, 240}));
}

TEST(RgbToYuy2, TheLastColumnOfAnOddWidthIsAGroupOfItsOwn) {
  // Columns red, white, blue.
  EXPECT_EQ(rgb({{{255, 255, 0}, {0, 255, 0}, {0, 255, 255}}}, 8, {3, 1}),
            (Bytes{81, 90, 234, 240, 41, 240, 41, 110}));
}

TEST(RgbToYuy2, WidthOneGivesOneGroupALine) {
  EXPECT_EQ(rgb({{{255, 0}, {0, 0}, {0, 255}}}, 8, {1, 2}),
            (Bytes{81, 90, 81, 240, 41, 240, 41, 110}));
}

TEST(RgbToYuy2, PairsOfTheSecondPathOverlap) {
  // Black, red, blue, white. The last group takes its second pixel from one sample past the planes.
  const Planes<kUint8> planes{{{0, 255, 0, 255, 0}, {0, 0, 0, 255, 0}, {0, 0, 255, 255, 255}}};
  EXPECT_EQ(rgb(planes, 16, {4, 1, 0}),
            (Bytes{16, 128, 81, 128, 81, 90, 41, 240, 41, 240, 234, 110, 234, 128, 41, 128}));
}

TEST(RgbToYuy2, EachLineOfTheSecondPathStartsAtItsOwnFirstPixel) {
  // Two lines: black, red, blue; then white, red, black.
  const Planes<kUint8> planes{
      {{0, 255, 0, 255, 255, 0}, {0, 0, 0, 255, 0, 0}, {0, 0, 255, 255, 0, 0}}};
  EXPECT_EQ(rgb(planes, 24, {3, 2, 0}),
            (Bytes{16,  128, 81, 128, 81, 90, 41, 240, 41, 240, 41, 110,
                   234, 128, 81, 128, 81, 90, 16, 240, 16, 128, 16, 128}));
}

TEST(RgbToYuy2, IsColumnMajorForLayoutOneOnly) {
  const Planes<kUint8> planes{{{0, 255, 255, 0, 0}, {0, 0, 255, 0, 0}, {0, 0, 255, 255, 0}}};
  const Bytes second = rgb(planes, 16, {2, 2, 0});
  EXPECT_NE(rgb(planes, 16, {2, 2, 1}), second);
  for (const std::int32_t layout : {2, -1, 256, kLowest}) {
    EXPECT_EQ(rgb(planes, 16, {2, 2, layout}), second) << layout;
  }
}

TEST(RgbToYuy2, NonPositiveSizesWriteNothing) {
  for (const std::int32_t layout : {0, 1}) {
    for (const auto& [width, height] : kEmptySizes) {
      EXPECT_EQ(rgb({{{1}, {1}, {1}}}, 4, {width, height, layout}), Bytes(4, 99))
          << width << " x " << height << ", layout " << layout;
    }
  }
}

TEST(NaturalRgbToYuy2, DoublesAreScaledFirst) {
  const Planes<kDouble> planes{{{1.0, -0.5}, {1.0, 0.0}, {2.0, 0.0}}};
  EXPECT_EQ(runToYuy2<kDouble>(kInputRgb, planes, Bytes(4), {2, 1}), (Bytes{234, 128, 16, 128}));
}

TEST(NaturalRgbToYuy2, BooleansAreScaledFirst) {
  const Planes<kBoolean> planes{{{1, 0}, {1, 0}, {1, 0}}};
  EXPECT_EQ(runToYuy2<kBoolean>(kInputRgb, planes, Bytes(4), {2, 1}), (Bytes{234, 128, 16, 128}));
}

// ---- intensity ----------------------------------------------------------------------------------

TEST(IntensityToYuy2, HasConstantChroma) {
  EXPECT_EQ(intensity({255, 0, 100, 200}, 8, {4, 1}),
            (Bytes{234, 128, 16, 128, 102, 128, 187, 128}));
}

TEST(IntensityToYuy2, TheLastColumnOfAnOddWidthIsAGroupOfItsOwn) {
  // Two lines of three columns.
  EXPECT_EQ(intensity({255, 0, 0, 255, 100, 200}, 16, {3, 2}),
            (Bytes{234, 128, 16, 128, 102, 128, 102, 128, 16, 128, 234, 128, 187, 128, 187, 128}));
}

TEST(IntensityToYuy2, TheSecondPathMapsTheSecondLumaTwice) {
  EXPECT_EQ(intensity({255, 255, 0, 0}, 8, {2, 2, 0}),
            (Bytes{234, 128, 216, 128, 16, 128, 30, 128}));
}

// Line 0 reads samples 0 and 1, and 2 + 2 = 4 for its last group. Line 1 continues with 2 and 3,
// and reads 4 + 2 + 3 = 9.
TEST(IntensityToYuy2, TheSecondPathReadsTheLastSampleOfAnOddWidthFarAhead) {
  EXPECT_EQ(intensity({0, 0, 255, 255, 100, 9, 9, 9, 9, 200}, 16, {3, 2, 0}),
            (Bytes{16, 128, 30, 128, 102, 128, 102, 128, 234, 128, 216, 128, 187, 128, 187, 128}));
}

TEST(IntensityToYuy2, AnyLayoutButZeroIsColumnMajor) {
  const Samples<kUint8> plane{255, 0, 100, 200};
  for (const std::int32_t layout : {1, 2, -1, 256, kLowest}) {
    EXPECT_EQ(intensity(plane, 8, {2, 2, layout}), (Bytes{234, 128, 102, 128, 16, 128, 187, 128}))
        << layout;
  }
}

TEST(IntensityToYuy2, NonPositiveSizesWriteNothing) {
  for (const std::int32_t layout : {0, 1}) {
    for (const auto& [width, height] : kEmptySizes) {
      EXPECT_EQ(intensity({1}, 4, {width, height, layout}), Bytes(4, 99))
          << width << " x " << height << ", layout " << layout;
    }
  }
}

TEST(IntensityToYuy2, DoesNotTouchTheOtherPlanes) {
  const std::uint8_t sample = 255;
  for (const std::int32_t layout : {0, 1}) {
    Bytes out(4);
    selectConversionKernel(kInputIntensity, kOutputYuy2, kUint8)(&sample, nullptr, nullptr,
                                                                 out.data(), 1, 1, layout);
    EXPECT_EQ(out, (Bytes{234, 128, 234, 128}));
  }
}

TEST(NaturalIntensityToYuy2, EndsOfADoubleRangeGiveBlackAndWhite) {
  const Planes<kDouble> planes{{{0.0, 1.0, -3.0, 5.0}, {}, {}}};
  EXPECT_EQ(runToYuy2<kDouble>(kInputIntensity, planes, Bytes(8), {4, 1}),
            (Bytes{16, 128, 234, 128, 16, 128, 234, 128}));
}

// ---- the colour arithmetic alone ----------------------------------------------------------------

TEST(RgbToYcbcr, ConvertsATripleInPlace) {
  std::int32_t y = 255, cb = 0, cr = 0;
  rgbToYcbcr(y, cb, cr);
  EXPECT_EQ((std::array{y, cb, cr}), (std::array{81, 90, 240}));
}

TEST(RgbToYcbcr, RoundsTowardMinusInfinityAndDoesNotClamp) {
  std::int32_t y = -1, cb = 0, cr = 3;
  // (-65 + 75 + 128) >> 8 = 0; (38 + 336 + 128) >> 8 = 1; (-112 - 54 + 128) >> 8 = -1
  rgbToYcbcr(y, cb, cr);
  EXPECT_EQ((std::array{y, cb, cr}), (std::array{16, 129, 127}));
  y = cb = cr = 1000;
  rgbToYcbcr(y, cb, cr);
  EXPECT_EQ((std::array{y, cb, cr}), (std::array{871, 128, 128}));
}

TEST(IntensityToLuma, IsTheLumaOfAGrey) {
  for (std::uint32_t value = 0; value < 256; ++value) {
    std::int32_t y = static_cast<std::int32_t>(value), cb = y, cr = y;
    rgbToYcbcr(y, cb, cr);
    EXPECT_EQ(intensityToLuma(value), static_cast<std::uint32_t>(y));
  }
}

}  // namespace
}  // namespace framesink
