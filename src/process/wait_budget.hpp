// Time that several waits share, so that together they end within one limit.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace framesink {

// The longest that unloading waits for host calls, the display thread and uses of windows together.
// Hosts are promised 20 s.
inline constexpr std::chrono::milliseconds kLongestUnload{20000};

// The clock starts with the first call of isSpent. Any thread.
class WaitBudget {
 public:
  constexpr explicit WaitBudget(std::chrono::milliseconds total) : total_(total) {}
  WaitBudget(const WaitBudget&) = delete;
  WaitBudget& operator=(const WaitBudget&) = delete;

  bool isSpent();

  // Counts a sleep that was requested from SDL. The time spent is the sum of these sleeps or the
  // time on the clock, whichever is longer, because a sleep may take much longer than requested.
  void count(std::chrono::milliseconds sleep) { counted_.fetch_add(sleep.count()); }

  // Spends the whole budget, so that later waits end at once.
  void spend() { counted_ = total_.count(); }

 private:
  using Clock = std::chrono::steady_clock;

  const std::chrono::milliseconds total_;
  std::atomic<Clock::rep> start_{0};      // of the clock; 0: not started
  std::atomic<std::int64_t> counted_{0};  // milliseconds
};

// The budget that all waits of an unload share. The end of host calls starts its clock.
WaitBudget& unloadBudget();

}  // namespace framesink
