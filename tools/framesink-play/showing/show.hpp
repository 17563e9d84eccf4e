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

  // Moves the source to its first frame and opens the windows. Options, library and status must
  // outlive the show. Throws Failure.
  Show(const Options& options, const Library& library, std::unique_ptr<Source> source,
       StatusLine& status);

  // From now on time runs.
  void start();

  // After the end of the source and its hold, or when all windows are closed.
  bool isOver() const;

  // When step is to be called next.
  Clock::time_point due() const { return due_; }

  // Does what is due: sends a frame, as a rule. A source that fails ends this show alone. Throws
  // Failure of any other kind.
  void step();

  // What the source found damaged, or why it failed; empty when all is well.
  std::string trouble() const { return failure_.empty() ? source_->trouble() : failure_; }

  // Of each kind and type that is shown.
  std::vector<Statistics> statistics() const;

  // Writes the last frame that was sent to the first window.
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
  Clock::time_point end_;      // as far as the options limit the show's time
  Clock::time_point start_;    // when the first frame would have been due, had no one been late
  Clock::time_point due_;      // of the next step
  Clock::time_point holdEnd_;  // once the phase is kHold
  std::uint64_t frames_ = 0;   // sent
  Clock::time_point firstSent_;
  Clock::time_point lastSent_;
  TimeHistogram late_;
  double passBegin_ = 0;          // seconds that the source's earlier passes took
  std::uint64_t passFrames_ = 0;  // sent in this pass
  bool exhausted_ = false;        // the source has no further frame
  std::string failure_;           // of the source, which ended the show
};

}  // namespace framesink::play
