// Replaces the time behind SDL_Delay by a simulated one: delays take no real time, and the display
// thread makes passes only while another thread is in SDL_Delay. Therefore every run makes the same
// calls. Use it where a test selects calls by their number in the run.
// Unlike a Turnstile, it lets the display thread go on when the simulated time has come.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "process/platform.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {

// One at a time; make it before the display thread starts. The display thread is blocked from its
// start, and between passes, until the simulated time reaches its wake-up time. A delay inside a
// pass only advances the time. Hooks on to SDL_WasInit, the display thread's first call.
class SdlClock {
 public:
  explicit SdlClock(SdlRecorder& recorder);
  ~SdlClock();
  SdlClock(const SdlClock&) = delete;
  SdlClock& operator=(const SdlClock&) = delete;

  // Simulated milliseconds since the clock was made.
  std::int64_t now() const;

  // Advances the time until the display thread has made its next pass. Returns at once if there is
  // no display thread.
  void runPass();

  // From now on delays take real time, and the display thread runs freely.
  void release();

  // Does what SDL_Delay does while the clock lives.
  void rest(std::uint32_t milliseconds);
  // Call it after the display thread has started. Waits until that thread is blocked.
  void awaitFirstRest();
  static SdlClock* current();

 private:
  using Lock = std::unique_lock<std::mutex>;

  void restBetweenPasses(Lock& lock, std::uint32_t milliseconds);
  void tick(Lock& lock);
  bool isThreadAtRest() const;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::int64_t now_ = 0;
  bool released_ = false;

  // State of the display thread.
  OsThreadId thread_ = 0;  // 0 until its first rest
  bool resting_ = false;
  std::int64_t wakes_ = 0;  // the simulated time at which its rest ends
  std::uint64_t rests_ = 0;

  const SdlHook onFirstCall_;
};

}  // namespace framesink::test
