// SDL, which the whole process shares: which thread may be inside it, and when it starts and ends.
#pragma once

#include <SDL.h>

#include <atomic>
#include <cstdint>
#include <mutex>

#include "process/platform.hpp"
#include "process/thread_safety.hpp"
#include "process/wait_budget.hpp"

namespace framesink {

// Held by the thread that is inside SDL's window and event code: the display thread during a pass,
// any thread during a call on the synchronous server. Two threads in that code on one X connection
// crash. Recursive, and uncontended unless both servers run. Host calls on threaded players never
// take it, except to start the server.
class FRAMESINK_LOCK("gate") SdlGate {
 public:
  void lock() FRAMESINK_ACQUIRES();
  void unlock() FRAMESINK_RELEASES();
  bool isHeldByThisThread() const { return owner_ == currentThread(); }

 private:
  std::recursive_mutex mutex_;
  std::atomic<OsThreadId> owner_{0};
  int depth_ FRAMESINK_GUARDED_BY(this) = 0;
};

extern SdlGate sdlGate;

// Holds the gate for as long as it lives.
class FRAMESINK_SCOPED_LOCK InGate {
 public:
  InGate() FRAMESINK_ACQUIRES(sdlGate) { sdlGate.lock(); }
  ~InGate() FRAMESINK_RELEASES() { sdlGate.unlock(); }
  InGate(const InGate&) = delete;
  InGate& operator=(const InGate&) = delete;
};

// Initialises SDL video unless it is up. On failure, prints to standard error and continues. Host
// threads, inside the gate.
void initVideo();

// The name of SDL's video driver; null if video is down or SDL cannot tell.
const char* videoDriver();

// True if SDL may draw the library's windows through OpenGL. Known once initVideo has been called;
// inside the gate.
bool isOpenGlInUse();

// Before and after anything else that may initialise SDL video: sets the hints and handlers that
// keep SDL from changing or ending the host's process. `window` is a window of the video, or null.
void prepareVideo();
void joinVideo(SDL_Window* window);

// The number of times the library has shut SDL down. A window belongs to the generation in which it
// was made. Once that generation has ended, the window's SDL objects are gone and must not be
// touched.
std::uint32_t sdlGeneration();

// Ends the generation: from now on, no SDL object that was made in it is touched.
void endSdlGeneration();

// Ends the generation if the host has shut SDL down since the library started to use it. Call it
// inside the gate before SDL's objects are used.
void noticeForeignQuit();

// The number of times that the host has shut SDL down while the library used it.
std::uint32_t foreignQuits();

// Leaves a mark in SDL that a later load of the library finds, so that it does not use this SDL.
void rememberDisplayLoss();

// SDL_Delay, or the same without SDL once the display is lost.
void restInSdl(std::uint32_t milliseconds);

// Ends the generation, waits until no host thread uses its windows or the budget is spent, and
// calls SDL_Quit. The rest of what unloading needs is leaveX11.
void quitSdl(WaitBudget& budget);

// Does the same with a separate budget, for use outside of unloading.
void quitSdl();

// While it lives, a host thread may use a window of that generation outside the gate: quitSdl
// waits. Converts to false if the generation has ended; the window must then not be touched.
class SdlUse {
 public:
  explicit SdlUse(std::uint32_t generation);
  ~SdlUse();
  SdlUse(const SdlUse&) = delete;
  SdlUse& operator=(const SdlUse&) = delete;

  explicit operator bool() const { return current_; }

 private:
  bool current_;
};

}  // namespace framesink
