// Waits for conditions, never for a fixed time.
#pragma once

#include <chrono>
#include <thread>

namespace framesink::test {

inline constexpr std::chrono::milliseconds kDeadline{10'000};

// Limit for a step that must not wait for anything: 1 s. Sanitizers on a busy machine may take that
// long by themselves, so with them the limit only catches waits of 20 s and endless ones.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr std::chrono::milliseconds kAtOnce{10'000};
#else
inline constexpr std::chrono::milliseconds kAtOnce{1'000};
#endif

// Calls `holds` about every millisecond until it returns true or `deadline` has passed, at least
// once. Returns its last result.
template <class Predicate>
bool waitUntil(Predicate holds, std::chrono::milliseconds deadline = kDeadline) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!holds()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// Returns true if `holds` returns true every time for the whole `time`, about every millisecond.
template <class Predicate>
bool staysSo(Predicate holds, std::chrono::milliseconds time = std::chrono::milliseconds(50)) {
  return !waitUntil([&] { return !holds(); }, time);
}

}  // namespace framesink::test
