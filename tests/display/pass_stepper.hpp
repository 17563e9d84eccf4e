// Lets a threaded server's display thread make one pass at a time.
#pragma once

#include <functional>
#include <memory>

#include "support/sdl_recorder.hpp"

namespace framesink::test {

// From construction on the display thread halts before each pass, holding no lock, until it is told
// to go on; the destructor lets it run free again. Hooks on to SDL_LockMutex.
class PassStepper {
 public:
  explicit PassStepper(SdlRecorder& recorder);
  ~PassStepper();
  PassStepper(const PassStepper&) = delete;
  PassStepper& operator=(const PassStepper&) = delete;

  // Waits until the thread halts; false at the deadline.
  bool halted();
  // One pass from beginning to end, after `first` on the display thread; false at the deadline.
  bool runPass(std::function<void()> first = [] {});
  bool runPasses(int number);

 private:
  struct Turnstile;

  const std::unique_ptr<Turnstile> turnstile_;
  const SdlHook hook_;
};

}  // namespace framesink::test
