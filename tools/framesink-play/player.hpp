// Plays a source in its windows, frame by frame, as a host steps its model.
#pragma once

#include <chrono>
#include <memory>
#include <ostream>
#include <vector>

#include "options.hpp"
#include "source.hpp"
#include "status_line.hpp"
#include "views.hpp"

namespace framesink::play {

class Player {
 public:
  // Opens the windows and moves the source to its first frame. Options and library must outlive the
  // player. Throws Failure.
  Player(const Options& options, const Library& library, std::unique_ptr<Source> source);

  // Returns at the end of the source and its hold, when all windows are closed, or when a signal
  // asks for it. Throws Failure.
  void run();

  // What the source found damaged; empty when all is well.
  std::string trouble() const { return source_->trouble(); }

  // Writes the last frame that was sent to the first window.
  void dump(std::ostream& out) const { views_.front().planes.dump(out); }

 private:
  using Clock = std::chrono::steady_clock;

  bool playFrames();
  void hold();
  bool advance();
  bool startAgain();
  Clock::time_point dueTime();
  Clock::time_point lastFrameEnd() const;
  Clock::time_point holdEnd() const;
  void send();
  void updateWindows();
  bool anyOpen() const;
  bool waitUntil(Clock::time_point when);

  const Options& options_;
  std::unique_ptr<Source> source_;
  std::vector<View> views_;
  StatusLine status_;
  const Clock::time_point begin_;  // of the show
  const Clock::time_point end_;    // of the show, as far as the options limit its time
  Clock::time_point start_;        // when the first frame would have been due, had no one been late
  double passBegin_ = 0;           // seconds that the source's earlier passes took
  std::uint64_t passFrames_ = 0;   // sent in this pass
  bool exhausted_ = false;         // the source has no further frame
};

}  // namespace framesink::play
