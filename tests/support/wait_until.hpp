// Waiting in tests: for a condition, never for a time.
#pragma once

#include <chrono>
#include <thread>

namespace framesink::test {

inline constexpr std::chrono::milliseconds kDeadline{10'000};

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

}  // namespace framesink::test
