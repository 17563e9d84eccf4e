// Observes and holds the display thread. The program replaces two of SDL's functions, SDL_Delay and
// SDL_RenderPresent, with its own, which call SDL's.
#pragma once

#include <cstdint>

namespace framesink::bench {

// Frames that SDL's software renderer has presented so far. The X server has drawn each of them,
// because SDL waits for that.
std::uint32_t presentedFrames();

// Sleeps until more than `count` frames have been presented.
void awaitPresentedAfter(std::uint32_t count);

// Display passes that have ended so far, counted at each pass's SDL_Delay.
std::uint32_t endedPasses();

// Returns when a pass that began after this call has ended. Every frame submitted before the call is
// shown then, and the display thread sleeps.
void awaitIdleDisplay();

// Keeps the display thread in its SDL_Delay, where it holds no lock, until destroyed.
class DisplayThreadHold {
 public:
  DisplayThreadHold();
  ~DisplayThreadHold();
  DisplayThreadHold(const DisplayThreadHold&) = delete;
  DisplayThreadHold& operator=(const DisplayThreadHold&) = delete;
};

// DisplayThreadHold does not hold the calling thread's SDL_Delay from now on.
void exemptThisThreadFromHold();

}  // namespace framesink::bench
