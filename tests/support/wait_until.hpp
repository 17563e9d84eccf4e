// Waiting in tests: for a condition, never for a time.
#pragma once

#include <chrono>
#include <thread>

namespace framesink::test {

inline constexpr std::chrono::milliseconds kDeadline{10'000};

// What waits for nobody is done within it: a second. Sanitizers need one for themselves on a busy
// machine; with them only endless waits, and those of 20 s, are told apart.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr std::chrono::milliseconds kAtOnce{10'000};
#else
inline constexpr std::chrono::milliseconds kAtOnce{1'000};
#endif

// Asks `holds` about every millisecond until it answers true or `deadline` has passed; it is asked
// at least once. Returns its last answer.
template <class Predicate>
bool waitUntil(Predicate holds, std::chrono::milliseconds deadline = kDeadline) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!holds()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// True when `holds` answers true as long as it is looked at, about every millisecond.
template <class Predicate>
bool staysSo(Predicate holds, std::chrono::milliseconds time = std::chrono::milliseconds(50)) {
  return !waitUntil([&] { return !holds(); }, time);
}

}  // namespace framesink::test
