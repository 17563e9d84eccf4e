#include "report/time_histogram.hpp"

#include <gtest/gtest.h>

namespace framesink::play {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

TEST(TimeHistogram, OfNothingIsZero) {
  EXPECT_EQ(TimeHistogram().quantile(0.5), 0);
  EXPECT_EQ(TimeHistogram().quantile(1), 0);
  EXPECT_EQ(TimeHistogram().count(), 0u);
}

TEST(TimeHistogram, TellsWithinOnePerCent) {
  TimeHistogram times;
  for (int i = 1000; i >= 1; --i) times.add(milliseconds(i));
  EXPECT_EQ(times.count(), 1000u);
  EXPECT_NEAR(times.quantile(0.5), 502.5, 2.5);
  EXPECT_NEAR(times.quantile(0.99), 995, 5);
}

TEST(TimeHistogram, TellsTheLongestExactly) {
  TimeHistogram times;
  times.add(nanoseconds(1'234'567));
  times.add(nanoseconds(7));
  EXPECT_EQ(times.quantile(1), 1.234567);
}

TEST(TimeHistogram, TakesNothingAndLess) {
  TimeHistogram times;
  times.add(nanoseconds(0));
  times.add(nanoseconds(-5));
  EXPECT_EQ(times.quantile(1), 0);
}

}  // namespace
}  // namespace framesink::play
