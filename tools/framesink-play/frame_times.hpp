// Durations of the most recent library calls.
#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

namespace framesink::play {

class FrameTimes {
 public:
  using Duration = std::chrono::steady_clock::duration;

  void add(Duration duration);

  // The duration that `share` (0..1) of the recent ones do not exceed, in milliseconds; 0 when
  // there are none.
  double quantile(double share) const;

 private:
  static constexpr std::size_t kRecent = 1024;

  std::vector<Duration> recent_;
  std::size_t oldest_ = 0;
};

}  // namespace framesink::play
