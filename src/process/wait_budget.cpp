#include "process/wait_budget.hpp"

namespace framesink {
namespace {

constinit WaitBudget budgetOfUnloading(kLongestUnload);

}  // namespace

bool WaitBudget::isSpent() {
  const Clock::rep now = Clock::now().time_since_epoch().count();
  Clock::rep start = 0;
  if (start_.compare_exchange_strong(start, now)) start = now;
  return counted_ >= total_.count() || Clock::duration(now - start) >= total_;
}

WaitBudget& unloadBudget() { return budgetOfUnloading; }

}  // namespace framesink
