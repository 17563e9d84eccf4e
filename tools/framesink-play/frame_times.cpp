#include "frame_times.hpp"

#include <algorithm>
#include <cmath>

namespace framesink::play {

void FrameTimes::add(Duration duration) {
  if (recent_.size() < kRecent) {
    recent_.push_back(duration);
    return;
  }
  recent_[oldest_] = duration;
  oldest_ = (oldest_ + 1) % kRecent;
}

double FrameTimes::quantile(double share) const {
  if (recent_.empty()) return 0;
  std::vector<Duration> sorted = recent_;
  const double rank = std::ceil(share * static_cast<double>(sorted.size()));
  const auto nth = sorted.begin() + static_cast<std::ptrdiff_t>(std::max(rank, 1.0)) - 1;
  std::ranges::nth_element(sorted, nth);
  return std::chrono::duration<double, std::milli>(*nth).count();
}

}  // namespace framesink::play
