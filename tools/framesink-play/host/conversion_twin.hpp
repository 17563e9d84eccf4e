// Measures how much of a frame's host time is conversion. A block whose window was never opened
// only converts its frames. Every eighth frame therefore goes to such a twin too, alternately
// before and after the window, and both are timed.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "host/block_window.hpp"
#include "report/time_histogram.hpp"

namespace framesink::play {

class ConversionTwin {
 public:
  // Makes the twin of a block with this description. `library` must outlive it. Throws Failure.
  ConversionTwin(const Library& library, const std::string& name,
                 const InputDescription& description);

  // Sends a frame to `window`, and every eighth frame to the twin. Returns the window's time.
  BlockWindow::Duration update(BlockWindow& window, const FramePlanes& planes);

  // Returns the twin's median time divided by the window's, over the frames that both received.
  // Returns nothing if there are none.
  std::optional<double> share() const;

 private:
  std::unique_ptr<BlockWindow> twin_;
  std::uint64_t frames_ = 0;
  TimeHistogram converting_;
  TimeHistogram whole_;
};

}  // namespace framesink::play
