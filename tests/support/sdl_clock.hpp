// A clock for SDL_Delay that no real time moves: rests take no time, and the display thread makes its
// passes only while another thread rests. The calls of a run are then the same in every run.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "process/platform.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {

// One at a time, made before the display thread is. The display thread runs from pass to pass: it
// stands still from its start, and between two passes, until the clock has come so far. What it rests
// inside a pass only moves the clock. Hooks on to SDL_WasInit, the display thread's first call.
class SdlClock {
 public:
  explicit SdlClock(SdlRecorder& recorder);
  ~SdlClock();
  SdlClock(const SdlClock&) = delete;
  SdlClock& operator=(const SdlClock&) = delete;

  // Milliseconds since the clock was made.
  std::int64_t now() const;

  // Moves the clock until the display thread has made its next pass; returns at once without one.
  void runPass();

  // From now on rests take their time, and the display thread runs free.
  void release();

  // SDL_Delay, while the clock lives.
  void rest(std::uint32_t milliseconds);
  // The display thread has been started; waits until it stands still.
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

  // The display thread.
  OsThreadId thread_ = 0;  // once it has come to its first rest
  bool resting_ = false;
  std::int64_t wakes_ = 0;  // when its rest ends
  std::uint64_t rests_ = 0;

  const SdlHook onFirstCall_;
};

}  // namespace framesink::test
