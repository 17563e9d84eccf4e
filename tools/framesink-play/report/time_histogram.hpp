// Counts durations in classes that are one per cent wide.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

namespace framesink::play {

// The shares that reports ask for.
inline constexpr double kMedian = 0.5;
inline constexpr double kPercentile99 = 0.99;

class TimeHistogram {
 public:
  using Duration = std::chrono::steady_clock::duration;

  void add(Duration duration);

  std::uint64_t count() const { return count_; }

  // Returns the duration in milliseconds that `share` (0 < share <= 1) of all durations do not
  // exceed. The result is at most one per cent too long, and exact for share 1. 0 if nothing was
  // added.
  double quantile(double share) const;

 private:
  std::vector<std::uint64_t> counts_;  // per class, the shortest first
  std::uint64_t count_ = 0;
  Duration longest_{0};
};

}  // namespace framesink::play
