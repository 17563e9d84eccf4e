#include "frame_times.hpp"

#include <gtest/gtest.h>

namespace framesink::play {
namespace {

using std::chrono::milliseconds;

TEST(FrameTimes, WithoutAnyAreZero) { EXPECT_EQ(FrameTimes().quantile(0.5), 0); }

TEST(FrameTimes, TellMedianAndNearlyTheWorst) {
  FrameTimes times;
  for (int i = 200; i >= 1; --i) times.add(milliseconds(i));
  EXPECT_EQ(times.quantile(0.5), 100);
  EXPECT_EQ(times.quantile(0.99), 198);
  EXPECT_EQ(times.quantile(1), 200);
}

TEST(FrameTimes, ForgetWhatIsLongAgo) {
  FrameTimes times;
  for (int i = 0; i < 100; ++i) times.add(milliseconds(1000));
  for (int i = 0; i < 1024; ++i) times.add(milliseconds(1));
  EXPECT_EQ(times.quantile(1), 1);
}

}  // namespace
}  // namespace framesink::play
