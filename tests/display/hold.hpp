// Halts the display thread at a chosen call to SDL.
#pragma once

#include <atomic>
#include <string>
#include <thread>

#include "support/sdl_recorder.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {

// Halts the display thread before its next call to an SDL function, until release() or destruction.
class Hold {
 public:
  Hold(SdlRecorder& recorder, const std::string& function)
      : hook_(recorder.before(function, [this](const SdlCall&) {
          if (!isDisplayThread()) return;
          reached_ = true;
          while (!released_) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        })) {}
  ~Hold() { release(); }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

  // Waits until the thread has halted; false at the deadline.
  bool isReached() const {
    return waitUntil([&] { return reached_.load(); });
  }
  void release() { released_ = true; }

 private:
  std::atomic<bool> reached_{false};
  std::atomic<bool> released_{false};
  const SdlHook hook_;
};

}  // namespace framesink::test
