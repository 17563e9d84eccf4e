// The oracle against bytes written out by hand, where no kernel test covers them already.
#include "oracle.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace framesink::oracle {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::uint32_t kUint8Type = 3;

const Family& kRgbToYuy2 = kFamilies[3];
const Family& kIntensityToYuy2 = kFamilies[4];
const Family& kYcbcrToYuy2 = kFamilies[5];

Bytes convertUint8(const Family& family, const std::vector<Bytes>& planes, const Frame& frame) {
  Bytes out(family.extents(frame).outputBytes);
  std::array<const void*, 3> samples{};
  for (std::size_t i = 0; i < planes.size(); ++i) samples[i] = planes[i].data();
  convert(family, kUint8Type, samples, out.data(), frame);
  return out;
}

TEST(Oracle, WhiteGivesLuma234InYuy2) {
  EXPECT_EQ(convertUint8(kRgbToYuy2, {{255, 0}, {255, 0}, {255, 0}}, {2, 1, 1}),
            (Bytes{234, 128, 16, 128}));
  EXPECT_EQ(convertUint8(kIntensityToYuy2, {{255, 0}}, {2, 1, 1}), (Bytes{234, 128, 16, 128}));
}

TEST(Oracle, Yuy2PairsTakeTheirChromaFromTheFirstPixel) {
  // Two lines; columns red, white, blue. Red: Y 81, Cb 90, Cr 240; blue: Y 41, Cb 240, Cr 110.
  EXPECT_EQ(
      convertUint8(kRgbToYuy2,
                   {{255, 255, 255, 255, 0, 0}, {0, 0, 255, 255, 0, 0}, {0, 0, 255, 255, 255, 255}},
                   {3, 2, 1}),
      (Bytes{81, 90, 234, 240, 41, 240, 41, 110, 81, 90, 234, 240, 41, 240, 41, 110}));
}

TEST(Oracle, RowMajorRgbPairsOverlapInYuy2) {
  // One line of red, white, blue, with the values above: (red, white), (white, blue), blue alone.
  EXPECT_EQ(convertUint8(kRgbToYuy2, {{255, 255, 0}, {0, 255, 0}, {0, 255, 255}}, {3, 1, 0}),
            (Bytes{81, 90, 234, 240, 234, 128, 41, 128, 41, 240, 41, 110}));
}

TEST(Oracle, RgbToYuy2IsColumnMajorForLayout1Only) {
  const std::vector<Bytes> planes(3, Bytes{0, 255, 0, 255, 0});
  EXPECT_EQ(convertUint8(kRgbToYuy2, planes, {2, 2, 2}),
            convertUint8(kRgbToYuy2, planes, {2, 2, 0}));
  EXPECT_NE(convertUint8(kRgbToYuy2, planes, {2, 2, 1}),
            convertUint8(kRgbToYuy2, planes, {2, 2, 0}));
}

TEST(Oracle, RowMajorIntensityMapsTheSecondLumaTwice) {
  // Luma of 255 is 234; luma of that is 216.
  EXPECT_EQ(convertUint8(kIntensityToYuy2, {{255, 255}}, {2, 1, 0}), (Bytes{234, 128, 216, 128}));
}

TEST(Oracle, RowMajorIntensityOfOddWidthRunsAheadForItsLastPixel) {
  // Line 0: pair (0, 1), last pixel at 2 + 2 = 4. Line 1: pair (2, 3), last pixel at 4 + 2 + 3 = 9.
  Bytes plane(10, 0);
  plane[4] = plane[9] = 255;
  EXPECT_EQ(convertUint8(kIntensityToYuy2, {plane}, {3, 2, 0}),
            (Bytes{16, 128, 30, 128, 234, 128, 234, 128, 16, 128, 30, 128, 234, 128, 234, 128}));
}

TEST(Oracle, YcbcrSamplesAreRepackedInEitherLayout) {
  const std::vector<Bytes> planes{{10, 20}, {30}, {40}};
  EXPECT_EQ(convertUint8(kYcbcrToYuy2, planes, {2, 1, 1}), (Bytes{10, 30, 20, 40}));
  EXPECT_EQ(convertUint8(kYcbcrToYuy2, planes, {2, 1, 0}), (Bytes{10, 30, 20, 40}));
}

TEST(Oracle, ColumnMajorYcbcrOfOddWidthReadsOneColumnTooMany) {
  EXPECT_EQ(convertUint8(kYcbcrToYuy2, {{1, 2, 3, 4}, {5, 6}, {7, 8}}, {1, 2, 1}),
            (Bytes{1, 5, 3, 7, 2, 6, 4, 8}));
}

TEST(Oracle, RowMajorYcbcrRunsOnFromLineToLine) {
  EXPECT_EQ(convertUint8(kYcbcrToYuy2, {{1, 2, 3, 4, 5, 6}, {7, 8, 9}, {10, 11, 12}}, {3, 2, 0}),
            (Bytes{1, 7, 2, 10, 3, 8, 4, 11, 5, 9, 6, 12}));
}

// Planes and output have exactly the size of the extents, so that the address sanitizer reports any
// access beyond them.
TEST(Oracle, StaysWithinTheExtentsOfEachFamily) {
  for (const Family& family : kFamilies) {
    for (const std::int32_t layout : {1, 0, 2}) {
      for (std::int32_t width = -3; width <= 7; ++width) {
        for (std::int32_t height = -3; height <= 4; ++height) {
          const Frame frame{width, height, layout};
          std::vector<Bytes> planes;
          for (const std::size_t samples : family.extents(frame).planeSamples) {
            planes.emplace_back(samples, std::uint8_t{1});
          }
          convertUint8(family, planes, frame);
        }
      }
    }
  }
}

// YUY2 output has no gaps, so every byte of it is written.
TEST(Oracle, FillsTheWholeYuy2Output) {
  for (const Family* family : {&kRgbToYuy2, &kIntensityToYuy2, &kYcbcrToYuy2}) {
    for (const std::int32_t layout : {1, 0, 2}) {
      for (std::int32_t width = 0; width <= 7; ++width) {
        const Bytes out =
            convertUint8(*family, std::vector<Bytes>(3, Bytes(100, 255)), {width, 3, layout});
        EXPECT_EQ(std::count(out.begin(), out.end(), 0), 0)
            << family->name << ", width " << width << ", layout " << layout;
      }
    }
  }
}

}  // namespace
}  // namespace framesink::oracle
