#include "process/wait_budget.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace framesink::test {
namespace {

using std::chrono::milliseconds;

TEST(WaitBudget, OfNoTimeIsSpent) {
  WaitBudget budget(milliseconds(0));
  EXPECT_TRUE(budget.isSpent());
}

TEST(WaitBudget, IsSpentWhenItsTimeHasPassedOnTheClock) {
  WaitBudget budget(milliseconds(20));
  const auto before = std::chrono::steady_clock::now();
  while (!budget.isSpent()) std::this_thread::yield();
  EXPECT_GE(std::chrono::steady_clock::now() - before, milliseconds(20));
}

TEST(WaitBudget, ItsClockStartsWhenItIsFirstAsked) {
  WaitBudget budget(milliseconds(20));
  const auto end = std::chrono::steady_clock::now() + milliseconds(30);
  while (std::chrono::steady_clock::now() < end) std::this_thread::yield();
  EXPECT_FALSE(budget.isSpent());
}

TEST(WaitBudget, IsSpentByCountedSleepsThatTookNoTime) {
  WaitBudget budget(milliseconds(20000));
  for (int i = 0; i < 1999; ++i) budget.count(milliseconds(10));
  EXPECT_FALSE(budget.isSpent());
  budget.count(milliseconds(10));
  EXPECT_TRUE(budget.isSpent());
}

TEST(WaitBudget, LeavesNothingOnceItIsSpentOnPurpose) {
  WaitBudget budget(milliseconds(20000));
  budget.spend();
  EXPECT_TRUE(budget.isSpent());
}

TEST(WaitBudget, OfUnloadingIsOneAndTwentySeconds) {
  EXPECT_EQ(&unloadBudget(), &unloadBudget());
  EXPECT_FALSE(unloadBudget().isSpent());
  unloadBudget().count(kLongestUnload - milliseconds(1));
  EXPECT_FALSE(unloadBudget().isSpent());
  unloadBudget().count(milliseconds(1));
  EXPECT_TRUE(unloadBudget().isSpent());
}

}  // namespace
}  // namespace framesink::test
