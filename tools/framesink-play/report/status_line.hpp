// The live status line on a terminal, and the one line at the end.
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

  // One window took a frame in the time `spent`.
  void addUpdate(Clock::duration spent) { updates_.add(spent); }

  // All windows have taken a frame.
  void addFrame();

  // Rewrites the line, at most five times a second.
  void refresh();

  std::uint64_t frames() const { return frames_; }

 private:
  double recentRate() const;
  double wholeRate() const;

  bool terminal_;
  std::uint64_t frames_ = 0;
  TimeHistogram updates_;
  std::deque<Clock::time_point> lastSecond_;  // when the latest frames were sent
  Clock::time_point first_;
  Clock::time_point last_;
  Clock::time_point nextRefresh_;
};

}  // namespace framesink::play
