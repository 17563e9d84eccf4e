// Halts the display thread once, at a chosen call to SDL. Use it to see what other threads can do
// while the display thread is inside a pass.
#pragma once

#include <string>

#include "support/sdl_recorder.hpp"
#include "support/turnstile.hpp"

namespace framesink::test {

// Halts the display thread before its next call to an SDL function, until release() or destruction.
class Hold {
 public:
  Hold(SdlRecorder& recorder, const std::string& function)
      : hook_(recorder.before(function, [this](const SdlCall&) {
          if (isDisplayThread()) turnstile_.pass();
        })) {}
  ~Hold() { release(); }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

  // Waits until the thread has halted; false at the deadline.
  bool isReached() const { return turnstile_.isHalted(); }
  void release() { turnstile_.open(); }

 private:
  Turnstile turnstile_;
  const SdlHook hook_;
};

}  // namespace framesink::test
