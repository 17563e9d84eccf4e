// The live status line on a terminal, and the summary line at the end.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>

#include "report/time_histogram.hpp"

namespace framesink::play {

class StatusLine {
 public:
  using Clock = std::chrono::steady_clock;

  StatusLine();
  ~StatusLine();
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  // Counts the time that one window took for a frame.
  void addUpdate(Clock::duration spent) { updates_.add(spent); }

  // Counts a frame that all windows have.
  void addFrame();

  // Rewrites the live line, at most five times a second.
  void refresh();

 private:
  double recentRate() const;
  double wholeRate() const;

  bool terminal_;
  std::uint64_t frames_ = 0;
  TimeHistogram updates_;
  std::deque<Clock::time_point> lastSecond_;  // send times of the latest frames
  Clock::time_point first_;
  Clock::time_point last_;
  Clock::time_point nextRefresh_;
};

}  // namespace framesink::play
