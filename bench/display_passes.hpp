// What the display thread does, seen from the host's side: this program stands between the library
// and SDL for two of SDL's functions.
#pragma once

#include <cstdint>

namespace framesink::bench {

// Frames presented so far by SDL's software renderer: the X server has drawn each of them, for
// SDL waits for that.
std::uint32_t presentedFrames();

// Returns when more than `count` frames have been presented. Sleeps meanwhile.
void awaitPresentedAfter(std::uint32_t count);

// Ends of passes so far, counted at each pass's SDL_Delay.
std::uint32_t endedPasses();

// Returns when a pass that began after this call has ended: all that was submitted is shown, and
// the display thread sleeps.
void awaitIdleDisplay();

// While one lives, the display thread stays in its SDL_Delay, where it holds no lock.
class DisplayThreadHold {
 public:
  DisplayThreadHold();
  ~DisplayThreadHold();
  DisplayThreadHold(const DisplayThreadHold&) = delete;
  DisplayThreadHold& operator=(const DisplayThreadHold&) = delete;
};

// The calling thread's own SDL_Delay is never held.
void exemptThisThreadFromHold();

}  // namespace framesink::bench
