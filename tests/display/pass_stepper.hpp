// Lets a threaded server's display thread make one pass at a time.
#pragma once

#include <functional>
#include <memory>

#include "support/sdl_recorder.hpp"

namespace framesink::test {

// While this exists, the display thread halts before each pass, holding no lock, until runPass()
// lets it go on. The destructor lets it run freely again. Hooks SDL_LockMutex.
class PassStepper {
 public:
  explicit PassStepper(SdlRecorder& recorder);
  ~PassStepper();
  PassStepper(const PassStepper&) = delete;
  PassStepper& operator=(const PassStepper&) = delete;

  // Waits until the thread has halted; false at the deadline.
  bool halted();
  // Runs `first` on the display thread and then one whole pass; false at the deadline.
  bool runPass(std::function<void()> first = [] {});
  bool runPasses(int number);

 private:
  struct Turnstile;

  const std::unique_ptr<Turnstile> turnstile_;
  const SdlHook hook_;
};

}  // namespace framesink::test
