// Durations of any number of calls, in classes that are one per cent wide.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

namespace framesink::play {

class TimeHistogram {
 public:
  using Duration = std::chrono::steady_clock::duration;

  void add(Duration duration);

  std::uint64_t count() const { return count_; }

  // The duration that `share` (above 0, up to 1) of all do not exceed, in milliseconds, at most one
  // per cent too long; exact for the longest. 0 when there are none.
  double quantile(double share) const;

 private:
  std::vector<std::uint64_t> counts_;  // by class, the shortest first
  std::uint64_t count_ = 0;
  Duration longest_{0};
};

}  // namespace framesink::play
