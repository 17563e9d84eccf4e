// How much of a frame's host time is conversion. The library tells nobody, but a block whose window
// was never opened converts its frames and does no more: every eighth frame goes to such a twin as
// well, before or after the window by turns, and both are timed.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

#include "host/block_window.hpp"
#include "report/time_histogram.hpp"

namespace framesink::play {

class ConversionTwin {
 public:
  using Duration = std::chrono::steady_clock::duration;

  // The twin of a block of that description. `library` must outlive it. Throws Failure.
  ConversionTwin(const Library& library, const std::string& name,
                 const InputDescription& description);

  // Sends a frame to `window` and returns the time that took; every eighth time to the twin, too.
  Duration update(BlockWindow& window, const FramePlanes& planes);

  // The twin's median time by that of the window, over the frames that both had; nothing without
  // any.
  std::optional<double> share() const;

 private:
  std::unique_ptr<BlockWindow> twin_;
  std::uint64_t frames_ = 0;
  TimeHistogram converting_;
  TimeHistogram whole_;
};

}  // namespace framesink::play
