// SDL, which the whole process shares: when it starts and ends.
#pragma once

#include <SDL.h>

#include <cstdint>

#include "process/sdl_gate.hpp"
#include "process/sdl_generation.hpp"
#include "process/wait_budget.hpp"

namespace framesink {

// Initialises SDL video unless it is up. On failure, prints to standard error and continues. Host
// threads, inside the gate.
void initVideo();

// True if SDL may draw the library's windows through OpenGL. Known once initVideo has been called;
// inside the gate.
bool isOpenGlInUse();

// Before and after anything else that may initialise SDL video: sets the hints and handlers that
// keep SDL from changing or ending the host's process. `window` is a window of the video, or null.
void prepareVideo();
void joinVideo(SDL_Window* window);

// Ends the generation if the host has shut SDL down since the library started to use it. Call it
// inside the gate before SDL's objects are used.
void noticeForeignQuit();

// The number of times that the host has shut SDL down while the library used it.
std::uint32_t foreignQuits();

// SDL_Delay, or the same without SDL once the display is lost.
void restInSdl(std::uint32_t milliseconds);

// Ends the generation, waits until no host thread uses its windows or the budget is spent, and
// calls SDL_Quit. The rest of what unloading needs is leaveX11.
void quitSdl(WaitBudget& budget);

// Does the same with a separate budget, for use outside of unloading.
void quitSdl();

}  // namespace framesink
