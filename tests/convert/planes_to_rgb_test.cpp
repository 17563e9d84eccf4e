#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "convert/kernel_selection.hpp"
#include "convert/sample_types.hpp"
#include "run_kernel.hpp"

namespace framesink {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

TEST(NaturalPlanesToRgb, OneDoublePixel) {
  const Planes<kDouble> planes{{{1.0}, {0.5}, {0.0}}};
  EXPECT_EQ(runToRgb<kDouble>(kInputRgb, planes, Bytes(3, 9), {1, 1}), (Bytes{255, 128, 0}));
}

TEST(NaturalPlanesToRgb, BooleanPlanesBecome0And255) {
  const Planes<kBoolean> planes{{{0, 1, 0, 1, 1, 0}, {1, 1, 0, 0, 1, 1}, {0, 0, 1, 1, 0, 2}}};
  EXPECT_EQ(runToRgb<kBoolean>(kInputRgb, planes, Bytes(18, 9), {3, 2}),
            (Bytes{0, 255, 0, 255, 255, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 255}));
}

TEST(NaturalPlanesToRgb, AllFiveDoublePixelsOfAFiveByOneFrameAreWritten) {
  const Planes<kDouble> planes{{{0.0, 0.25, 0.5, 0.75, 1.0}, {1, 1, 1, 1, 0}, {0, 0, 0, 0, 1}}};
  EXPECT_EQ(runToRgb<kDouble>(kInputRgb, planes, Bytes(15, 9), {5, 1}),
            (Bytes{0, 64, 128, 191, 255, 255, 255, 255, 255, 0, 0, 0, 0, 0, 255}));
}

TEST(PlanesToRgb, Uint8PlanesAreCopied) {
  const Planes<kUint8> planes{
      {{1, 2, 3, 4, 5, 6}, {11, 12, 13, 14, 15, 16}, {250, 251, 252, 253, 254, 255}}};
  EXPECT_EQ(runToRgb<kUint8>(kInputRgb, planes, Bytes(18, 9), {2, 3}),
            (Bytes{1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, 16, 250, 251, 252, 253, 254, 255}));
}

TEST(PlanesToRgb, AllFivePixelsOfAFiveByOneFrameAreWritten) {
  const Planes<kUint8> planes{{{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}, {11, 12, 13, 14, 15}}};
  EXPECT_EQ(runToRgb<kUint8>(kInputRgb, planes, Bytes(15, 99), {5, 1}),
            (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
}

// The kernel scales once only if all three planes are the same. Two equal planes are no such case.
TEST(PlanesToRgb, AnyTwoPlanesMayBeOne) {
  const ConversionKernel kernel = selectConversionKernel(kInputRgb, kOutputRgbPlanes, kUint8);
  const Bytes a{1, 2};
  const Bytes b{3, 4};
  Bytes out(6);
  kernel(a.data(), a.data(), b.data(), out.data(), 2, 1, 1);
  EXPECT_EQ(out, (Bytes{1, 2, 1, 2, 3, 4}));
  kernel(a.data(), b.data(), a.data(), out.data(), 2, 1, 1);
  EXPECT_EQ(out, (Bytes{1, 2, 3, 4, 1, 2}));
  kernel(b.data(), a.data(), a.data(), out.data(), 2, 1, 1);
  EXPECT_EQ(out, (Bytes{3, 4, 1, 2, 1, 2}));
  kernel(a.data(), a.data(), a.data(), out.data(), 2, 1, 1);
  EXPECT_EQ(out, (Bytes{1, 2, 1, 2, 1, 2}));
}

TEST(PlanesToRgb, IntensityGivesThreeIdenticalPlanes) {
  const Planes<kUint8> planes{{{3, 1, 4, 1, 5, 9}, {}, {}}};
  EXPECT_EQ(runToRgb<kUint8>(kInputIntensity, planes, Bytes(18, 77), {3, 2}),
            (Bytes{3, 1, 4, 1, 5, 9, 3, 1, 4, 1, 5, 9, 3, 1, 4, 1, 5, 9}));
}

TEST(NaturalPlanesToRgb, IntensityIsScaledIntoAllThreePlanes) {
  const Planes<kInt16> planes{{{-32768, 0, 32767}, {}, {}}};
  EXPECT_EQ(runToRgb<kInt16>(kInputIntensity, planes, Bytes(9, 77), {3, 1}),
            (Bytes{0, 128, 255, 0, 128, 255, 0, 128, 255}));
}

TEST(PlanesToRgb, AnyLayoutButZeroIsColumnMajor) {
  const Planes<kUint8> planes{{{1, 2}, {3, 4}, {5, 6}}};
  for (const std::int32_t layout : {1, 2, -1, 256, kLowest}) {
    EXPECT_EQ(runToRgb<kUint8>(kInputRgb, planes, Bytes(6, 9), {2, 1, layout}),
              (Bytes{1, 2, 3, 4, 5, 6}))
        << "layout " << layout;
  }
}

TEST(PlanesToRgb, SecondPathWritesOnlyTheLastColumnIntoTheFirst) {
  const Planes<kUint8> planes{
      {{1, 2, 3, 4, 5, 6}, {11, 12, 13, 14, 15, 16}, {21, 22, 23, 24, 25, 26}}};
  EXPECT_EQ(runToRgb<kUint8>(kInputRgb, planes, Bytes(18, 99), {3, 2, 0}),
            (Bytes{5, 99, 99, 6, 99, 99, 15, 99, 99, 16, 99, 99, 25, 99, 99, 26, 99, 99}));
}

TEST(NaturalPlanesToRgb, SecondPathScalesTheLastColumn) {
  const Planes<kSingle> planes{{{0.0F, 0.1F, 0.5F, 1.0F}, {1, 1, 1, 0}, {0, 0, 0, 0}}};
  EXPECT_EQ(runToRgb<kSingle>(kInputRgb, planes, Bytes(12, 99), {2, 2, 0}),
            (Bytes{128, 99, 255, 99, 255, 99, 0, 99, 0, 99, 0, 99}));
}

TEST(PlanesToRgb, SecondPathOfAnIntensityPlaneGivesThreeIdenticalPlanes) {
  const Planes<kUint8> planes{{{1, 2, 3, 4}, {}, {}}};
  EXPECT_EQ(runToRgb<kUint8>(kInputIntensity, planes, Bytes(12, 99), {2, 2, 0}),
            (Bytes{3, 99, 4, 99, 3, 99, 4, 99, 3, 99, 4, 99}));
}

TEST(PlanesToRgb, ColumnMajorFrameWithoutPixelsWritesNothing) {
  const Planes<kUint8> planes{
      {Samples<kUint8>(6, 1), Samples<kUint8>(6, 2), Samples<kUint8>(6, 3)}};
  for (const FrameShape shape : {FrameShape{0, 0}, FrameShape{0, 2}, FrameShape{3, 0},
                                 FrameShape{-3, 2}, FrameShape{3, -2}, FrameShape{kLowest, 1}}) {
    EXPECT_EQ(runToRgb<kUint8>(kInputRgb, planes, Bytes(18, 99), shape), Bytes(18, 99))
        << shape.width << " x " << shape.height;
  }
}

TEST(PlanesToRgb, ColumnMajorPixelsAreCountedInSigned32Bits) {
  const Planes<kUint8> planes{{{1}, {2}, {3}}};
  EXPECT_EQ(runToRgb<kUint8>(kInputRgb, planes, Bytes(3, 99), {65536, 65536}), Bytes(3, 99));
  EXPECT_EQ(runToRgb<kUint8>(kInputRgb, planes, Bytes(3, 99), {65536, 32768}), Bytes(3, 99));
}

// The column-major path looks only at the product of the sizes.
TEST(PlanesToRgb, ColumnMajorFrameOfTwoNegativeSizesIsConvertedByTheirProduct) {
  const Planes<kUint8> planes{
      {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}, {13, 14, 15, 16, 17, 18}}};
  EXPECT_EQ(runToRgb<kUint8>(kInputRgb, planes, Bytes(18, 99), {-3, -2}),
            (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}));
}

TEST(PlanesToRgb, SecondPathWritesNothingUnlessBothSizesArePositive) {
  const Planes<kUint8> planes{
      {Samples<kUint8>(6, 1), Samples<kUint8>(6, 2), Samples<kUint8>(6, 3)}};
  for (const FrameShape shape :
       {FrameShape{0, 0, 0}, FrameShape{0, 2, 0}, FrameShape{3, 0, 0}, FrameShape{-3, 2, 0},
        FrameShape{3, -2, 0}, FrameShape{-3, -2, 0}}) {
    EXPECT_EQ(runToRgb<kUint8>(kInputRgb, planes, Bytes(18, 99), shape), Bytes(18, 99))
        << shape.width << " x " << shape.height;
  }
}

}  // namespace
}  // namespace framesink
