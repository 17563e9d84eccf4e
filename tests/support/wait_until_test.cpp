#include "support/wait_until.hpp"

#include <gtest/gtest.h>

namespace framesink::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

TEST(WaitUntil, ReturnsAsSoonAsTheConditionHolds) {
  int asked = 0;
  EXPECT_TRUE(waitUntil([&] { return ++asked == 5; }));
  EXPECT_EQ(asked, 5);
}

TEST(WaitUntil, GivesUpAfterTheDeadline) {
  const auto start = steady_clock::now();
  EXPECT_FALSE(waitUntil([] { return false; }, milliseconds(30)));
  EXPECT_GE(steady_clock::now() - start, milliseconds(30));
}

TEST(WaitUntil, AsksOnceWithoutTime) {
  EXPECT_TRUE(waitUntil([] { return true; }, milliseconds(0)));
}

TEST(StaysSo, LooksOnForTheWholeTime) {
  const auto start = steady_clock::now();
  EXPECT_TRUE(staysSo([] { return true; }, milliseconds(30)));
  EXPECT_GE(steady_clock::now() - start, milliseconds(30));
}

TEST(StaysSo, EndsWithTheFirstException) {
  int asked = 0;
  EXPECT_FALSE(staysSo([&] { return ++asked < 5; }));
  EXPECT_EQ(asked, 5);
}

}  // namespace
}  // namespace framesink::test
