#include "convert/ycbcr_to_yuy2.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "run_kernel.hpp"

namespace framesink {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

Bytes ycbcr(const Planes<kUint8>& planes, std::size_t room, FrameShape shape) {
  return runToYuy2<kUint8>(kInputYcbcr422, planes, Bytes(room, 99), shape);
}

TEST(YcbcrToYuy2, APairIsRepackedInEitherLayout) {
  for (const std::int32_t layout : {0, 1}) {
    EXPECT_EQ(ycbcr({{{10, 20}, {30}, {40}}}, 4, {2, 1, layout}), (Bytes{10, 30, 20, 40}));
  }
}

TEST(YcbcrToYuy2, ColumnMajorLinesFollowOneAnother) {
  // Four columns of two rows; chroma of two columns.
  const Planes<kUint8> planes{{{1, 5, 2, 6, 3, 7, 4, 8}, {11, 13, 12, 14}, {21, 23, 22, 24}}};
  EXPECT_EQ(ycbcr(planes, 16, {4, 2}),
            (Bytes{1, 11, 2, 21, 3, 12, 4, 22, 5, 13, 6, 23, 7, 14, 8, 24}));
}

TEST(YcbcrToYuy2, TheLastGroupOfAnOddWidthReadsTheColumnAfterTheLast) {
  const Planes<kUint8> planes{{{1, 2, 3, 99}, {11, 12}, {21, 22}}};
  EXPECT_EQ(ycbcr(planes, 8, {3, 1}), (Bytes{1, 11, 2, 21, 3, 12, 99, 22}));
}

TEST(YcbcrToYuy2, RowMajorPlanesAreOneRunWithoutRegardToLines) {
  const Planes<kUint8> planes{{{1, 2, 3, 4, 5, 6}, {11, 12, 13}, {21, 22, 23}}};
  EXPECT_EQ(ycbcr(planes, 12, {3, 2, 0}), (Bytes{1, 11, 2, 21, 3, 12, 4, 22, 5, 13, 6, 23}));
}

TEST(YcbcrToYuy2, ARunOfAnOddNumberOfSamplesReadsOneMore) {
  const Planes<kUint8> planes{{{1, 2, 3, 99}, {11, 12}, {21, 22}}};
  EXPECT_EQ(ycbcr(planes, 8, {3, 1, 0}), (Bytes{1, 11, 2, 21, 3, 12, 99, 22}));
}

TEST(YcbcrToYuy2, AnyLayoutButZeroIsColumnMajor) {
  const Planes<kUint8> planes{{{1, 3, 2, 4}, {11, 12}, {21, 22}}};
  for (const std::int32_t layout : {1, 2, -1, 256, kLowest}) {
    EXPECT_EQ(ycbcr(planes, 8, {2, 2, layout}), (Bytes{1, 11, 2, 21, 3, 12, 4, 22})) << layout;
  }
}

TEST(YcbcrToYuy2, ColumnMajorFramesWithoutPixelsWriteNothing) {
  for (const auto& [width, height] :
       {std::pair{2, 0}, {2, -1}, {0, 2}, {-1, 2}, {-2, 2}, {-2, -2}, {kLowest, 1}, {1, kLowest}}) {
    EXPECT_EQ(ycbcr({{{1}, {1}, {1}}}, 4, {width, height}), Bytes(4, 99))
        << width << " x " << height;
  }
}

TEST(YcbcrToYuy2, RunsOfLessThanOneSampleWriteNothing) {
  for (const auto& [width, height] :
       {std::pair{2, 0}, {0, 2}, {-1, 2}, {2, -1}, {65536, 65536}, {65536, 32768}}) {
    EXPECT_EQ(ycbcr({{{1}, {1}, {1}}}, 4, {width, height, 0}), Bytes(4, 99))
        << width << " x " << height;
  }
}

TEST(YcbcrToYuy2, TwoNegativeSizesAreARunOfTheirProduct) {
  EXPECT_EQ(ycbcr({{{10, 20}, {30}, {40}}}, 4, {-2, -1, 0}), (Bytes{10, 30, 20, 40}));
}

TEST(NaturalYcbcrToYuy2, ChromaIsScaledLikeLuma) {
  const Planes<kDouble> planes{{{0.0, 0.5}, {1.0}, {0.0}}};
  EXPECT_EQ(runToYuy2<kDouble>(kInputYcbcr422, planes, Bytes(4), {2, 1}), (Bytes{0, 255, 128, 0}));
}

TEST(NaturalYcbcrToYuy2, BooleansAreScaled) {
  const Planes<kBoolean> planes{{{1, 0}, {1}, {2}}};
  EXPECT_EQ(runToYuy2<kBoolean>(kInputYcbcr422, planes, Bytes(4), {2, 1}),
            (Bytes{255, 255, 0, 255}));
}

}  // namespace
}  // namespace framesink
