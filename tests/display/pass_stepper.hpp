// Lets a threaded server's display thread make one pass at a time. Use it in tests that record SDL's
// calls and check what single passes do.
#pragma once

#include <functional>
#include <utility>

#include "support/sdl_recorder.hpp"
#include "support/turnstile.hpp"

namespace framesink::test {

// While this exists, the display thread halts before each pass, holding no lock, until runPass()
// lets it go on. The destructor lets it run freely again. Hooks SDL_LockMutex.
class PassStepper {
 public:
  explicit PassStepper(SdlRecorder& recorder)
      : hook_(recorder.before("SDL_LockMutex", [this](const SdlCall&) {
          if (isDisplayThread()) turnstile_.pass();
        })) {}
  ~PassStepper() { turnstile_.open(); }
  PassStepper(const PassStepper&) = delete;
  PassStepper& operator=(const PassStepper&) = delete;

  // Waits until the thread has halted; false at the deadline.
  bool halted() const { return turnstile_.isHalted(); }
  // Runs `first` on the display thread and then one whole pass; false at the deadline.
  bool runPass(std::function<void()> first = nullptr) { return turnstile_.step(std::move(first)); }
  bool runPasses(int number) {
    for (int pass = 0; pass < number; ++pass) {
      if (!runPass()) return false;
    }
    return true;
  }

 private:
  Turnstile turnstile_;
  const SdlHook hook_;
};

}  // namespace framesink::test
