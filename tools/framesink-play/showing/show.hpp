// One source in its windows, frame by frame, as a host steps its model.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command_line/options.hpp"
#include "report/statistics.hpp"
#include "report/status_line.hpp"
#include "showing/views.hpp"
#include "sources/source.hpp"

namespace framesink::play {

class Show {
 public:
  using Clock = std::chrono::steady_clock;

  // Moves the source to its first frame and opens the windows. `options`, `library` and `status`
  // must outlive the show. Throws Failure.
  Show(const Options& options, const Library& library, std::unique_ptr<Source> source,
       StatusLine& status);

  // Starts the show's clock.
  void start();

  // True after the end of the source and of its hold, and once all windows are closed.
  bool isOver() const;

  // The time at which to call step next.
  Clock::time_point due() const { return due_; }

  // Does what is due, usually sends a frame. A source that fails ends its own show only; any other
  // Failure is thrown.
  void step();

  // Describes what is damaged in the source, or why it failed; empty if neither.
  std::string trouble() const { return failure_.empty() ? source_->trouble() : failure_; }

  // One record for each kind and type that is shown.
  std::vector<Statistics> statistics() const;

  // Writes the samples of the last frame of the first window.
  void dump(std::ostream& out) const { views_.front().planes.dump(out); }

 private:
  enum class Phase { kFrames, kLastFrame, kHold, kOver };

  void stepPhase();
  void begin(Phase phase, Clock::time_point due);
  void stepFrames();
  void stepHold();
  bool advance();
  bool startAgain();
  Clock::time_point nextFrame();
  Clock::time_point lastFrameEnd() const;
  Clock::time_point holdEnd() const;
  void send();
  Clock::duration update(View& view, BlockWindow& window);
  void updateWindows();
  bool anyOpen() const;

  const Options& options_;
  StatusLine& status_;
  std::unique_ptr<Source> source_;
  std::vector<View> views_;
  Phase phase_ = Phase::kFrames;
  Clock::time_point end_;      // of --duration
  Clock::time_point start_;    // due time of frame 0, moved on by delays that are not caught up
  Clock::time_point due_;      // of the next step
  Clock::time_point holdEnd_;  // valid in phase kHold
  std::uint64_t frames_ = 0;   // sent
  Clock::time_point firstSent_;
  Clock::time_point lastSent_;
  TimeHistogram late_;
  double passBegin_ = 0;          // seconds that earlier passes of the source took
  std::uint64_t passFrames_ = 0;  // sent in this pass
  bool exhausted_ = false;        // the source has no more frames
  std::string failure_;           // why the source failed and ended the show
};

}  // namespace framesink::play
