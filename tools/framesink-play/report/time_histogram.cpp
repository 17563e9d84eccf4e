#include "report/time_histogram.hpp"

#include <algorithm>
#include <cmath>

namespace framesink::play {
namespace {

constexpr double kStep = 1.01;

double nanoseconds(TimeHistogram::Duration duration) {
  return static_cast<double>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(duration).count());
}

double milliseconds(TimeHistogram::Duration duration) { return nanoseconds(duration) / 1e6; }

// Class i holds durations above kStep^(i - 1) and up to kStep^i nanoseconds.
std::size_t classOf(TimeHistogram::Duration duration) {
  const double length = std::max(nanoseconds(duration), 1.0);
  return static_cast<std::size_t>(std::ceil(std::log(length) / std::log(kStep)));
}

}  // namespace

void TimeHistogram::add(Duration duration) {
  const std::size_t index = classOf(duration);
  if (index >= counts_.size()) counts_.resize(index + 1);
  ++counts_[index];
  ++count_;
  longest_ = std::max(longest_, duration);
}

double TimeHistogram::quantile(double share) const {
  const double rank = std::ceil(share * static_cast<double>(count_));
  double passed = 0;
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    passed += static_cast<double>(counts_[i]);
    if (passed < rank) continue;
    return std::min(std::pow(kStep, static_cast<double>(i)) / 1e6, milliseconds(longest_));
  }
  return 0;
}

}  // namespace framesink::play
