// Times two actions alternately in one loop, so that other load on the machine slows both alike.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace framesink::bench {

template <class Action>
double secondsOf(const Action& action) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  action();
  benchmark::ClobberMemory();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

inline double medianOf(std::vector<double> seconds) {
  const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
  std::nth_element(seconds.begin(), middle, seconds.end());
  return *middle;
}

// Sets the counters `ours` and `other`, in milliseconds, and `ratio`, which is ours / other.
inline void report(benchmark::State& state, double oursSeconds, double otherSeconds) {
  state.counters["ours"] = 1000 * oursSeconds;
  state.counters["other"] = 1000 * otherSeconds;
  state.counters["ratio"] = oursSeconds / otherSeconds;
}

// Runs the benchmark's loop and reports the medians. `settle` runs before each of the two actions
// and is not timed.
template <class Ours, class Other, class Settle>
void compare(benchmark::State& state, const Ours& ours, const Other& other, const Settle& settle) {
  std::vector<double> oursSeconds;
  std::vector<double> otherSeconds;
  for ([[maybe_unused]] auto iteration : state) {
    settle();
    oursSeconds.push_back(secondsOf(ours));
    settle();
    otherSeconds.push_back(secondsOf(other));
    state.SetIterationTime(oursSeconds.back() + otherSeconds.back());
  }
  report(state, medianOf(oursSeconds), medianOf(otherSeconds));
}

template <class Ours, class Other>
void compare(benchmark::State& state, const Ours& ours, const Other& other) {
  compare(state, ours, other, [] {});
}

}  // namespace framesink::bench
