#include "sources/spiral_field.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace framesink::play {
namespace {

constexpr int kWidth = 96;
constexpr int kHeight = 80;
constexpr int kSwing = 50;  // seconds from calm to calm

struct Extremes {
  double smallest, largest;  // of |A|
};

Extremes extremesOf(const SpiralField& field) {
  Extremes found{1e9, 0};
  for (int row = 0; row < kHeight; ++row) {
    for (int column = 0; column < kWidth; ++column) {
      const double size = std::hypot(field.u(row, column), field.v(row, column));
      found = {std::min(found.smallest, size), std::max(found.largest, size)};
    }
  }
  return found;
}

// Runs whole swings between calm and unrest: amplitudes stay within bounds and the field keeps
// changing.
TEST(SpiralField, LivesOnWithinBounds) {
  SpiralField field(kWidth, kHeight);
  for (int second = 0; second < SWINGS * kSwing; ++second) {
    const double before = field.u(40, 40);
    for (int i = 0; i < 60; ++i) field.advance();
    const Extremes extremes = extremesOf(field);
    ASSERT_LT(extremes.largest, 1.2) << "after " << second << " s";
    if (second >= 2) {
      ASSERT_GT(extremes.largest, 0.8) << "after " << second << " s";
    }
    ASSERT_NE(field.u(40, 40), before);
  }
}

TEST(SpiralField, ShowsDefectsWithinThreeSeconds) {
  SpiralField field(kWidth, kHeight);
  for (int i = 0; i < 180; ++i) field.advance();
  EXPECT_LT(extremesOf(field).smallest, 0.3);
}

// The largest difference between two columns, in the real or the imaginary part.
double stepBetween(const SpiralField& field, int left, int right) {
  double step = 0;
  for (int row = 0; row < kHeight; ++row) {
    step = std::max({step, std::abs(field.u(row, left) - field.u(row, right)),
                     std::abs(field.v(row, left) - field.v(row, right))});
  }
  return step;
}

TEST(SpiralField, HasNoSeamAtItsEdges) {
  SpiralField field(kWidth, kHeight);
  for (int i = 0; i < 60; ++i) field.advance();
  double inside = 0;
  for (int column = 1; column < kWidth; ++column) {
    inside = std::max(inside, stepBetween(field, column - 1, column));
  }
  EXPECT_LT(stepBetween(field, kWidth - 1, 0), 1.2 * inside);
}

// Cells at the edges reach the same amplitudes as the others, in the real and the imaginary part.
TEST(SpiralField, IsNotHeldAtItsEdges) {
  SpiralField field(kWidth, kHeight);
  double edgeU = 0, edgeV = 0, allU = 0, allV = 0;
  for (int i = 0; i < 600; ++i) {
    field.advance();
    for (int row = 0; row < kHeight; ++row) {
      edgeU += std::abs(field.u(row, 0)) + std::abs(field.u(row, kWidth - 1));
      edgeV += std::abs(field.v(row, 0)) + std::abs(field.v(row, kWidth - 1));
      for (int column = 0; column < kWidth; ++column) {
        allU += std::abs(field.u(row, column));
        allV += std::abs(field.v(row, column));
      }
    }
  }
  EXPECT_NEAR(edgeU * kWidth / 2 / allU, 1, 0.2);
  EXPECT_NEAR(edgeV * kWidth / 2 / allV, 1, 0.2);
}

TEST(SpiralField, IsTheSameInEveryRun) {
  SpiralField one(kWidth, kHeight);
  SpiralField other(kWidth, kHeight);
  for (int i = 0; i < 10; ++i) {
    one.advance();
    other.advance();
  }
  for (int row = 0; row < kHeight; ++row) EXPECT_EQ(one.u(row, 7), other.u(row, 7));
}

}  // namespace
}  // namespace framesink::play
