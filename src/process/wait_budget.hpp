// Time that several waits share, so that all of them together end within one bound.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace framesink {

// The longest time that unloading waits, for host calls, the display thread and uses of windows
// together. Hosts are promised 20 s.
inline constexpr std::chrono::milliseconds kLongestUnload{20000};

// The clock starts when the budget is first asked. Any thread.
class WaitBudget {
 public:
  constexpr explicit WaitBudget(std::chrono::milliseconds total) : total_(total) {}
  WaitBudget(const WaitBudget&) = delete;
  WaitBudget& operator=(const WaitBudget&) = delete;

  bool isSpent();

  // Counts a sleep that a wait asked SDL for. The longer of the counted sleeps and the time on the
  // clock is what has been spent: a sleep may take much longer than it was asked to.
  void count(std::chrono::milliseconds sleep) { counted_.fetch_add(sleep.count()); }

  // Leaves nothing for later waits.
  void spend() { counted_ = total_.count(); }

 private:
  using Clock = std::chrono::steady_clock;

  const std::chrono::milliseconds total_;
  std::atomic<Clock::rep> start_{0};      // 0: not asked yet
  std::atomic<std::int64_t> counted_{0};  // milliseconds
};

// The budget of the end of the library. Its clock starts with the first step of the end.
WaitBudget& unloadBudget();

}  // namespace framesink
