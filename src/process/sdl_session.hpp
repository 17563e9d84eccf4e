// SDL as the whole process shares it: who may be inside it, and from when to when it is up.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "process/platform.hpp"
#include "process/thread_safety.hpp"
#include "process/wait_budget.hpp"

namespace framesink {

// Held by whoever is in SDL's window and event code: the display thread during a pass, any thread
// during a call on the synchronous server. Two threads in there on one X connection crash.
// Recursive; without contention unless both servers run. Host calls on threaded players never take
// it.
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

// In the gate for its life.
class FRAMESINK_SCOPED_LOCK InGate {
 public:
  InGate() FRAMESINK_ACQUIRES(sdlGate) { sdlGate.lock(); }
  ~InGate() FRAMESINK_RELEASES() { sdlGate.unlock(); }
  InGate(const InGate&) = delete;
  InGate& operator=(const InGate&) = delete;
};

// Initialises SDL video unless it is up. Errors go to standard error, and work goes on.
void initVideo();

// Makes SDL behave as a guest in the host's process. Before anything that may initialise SDL.
void setSdlHints();

// Counts SDL's lives: a window belongs to the one it was made in. After the life's end its SDL
// window, renderer and texture are gone and must not be touched.
std::uint32_t sdlGeneration();

// Ends the generation, waits for the uses of its windows while the budget lasts, and calls SDL_Quit.
void quitSdl(WaitBudget& budget);

// The same outside of unloading, with a budget of its own.
void quitSdl();

// A host thread's use of a window of that generation outside the gate; quitSdl waits for it. Tests
// false when the generation has ended.
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
