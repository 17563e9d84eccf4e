// Two things timed by turns in one loop, so that whatever else the machine does hits both alike.
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

// The benchmark's loop. Reports the medians in milliseconds as counters `ours` and `other`, and
// `ratio`, which is ours / other.
template <class Ours, class Other>
void compare(benchmark::State& state, const Ours& ours, const Other& other) {
  std::vector<double> oursSeconds;
  std::vector<double> otherSeconds;
  for ([[maybe_unused]] auto iteration : state) {
    oursSeconds.push_back(secondsOf(ours));
    otherSeconds.push_back(secondsOf(other));
    state.SetIterationTime(oursSeconds.back() + otherSeconds.back());
  }
  state.counters["ours"] = 1000 * medianOf(oursSeconds);
  state.counters["other"] = 1000 * medianOf(otherSeconds);
  state.counters["ratio"] = medianOf(oursSeconds) / medianOf(otherSeconds);
}

}  // namespace framesink::bench
