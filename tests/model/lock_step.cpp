#include "lock_step.hpp"

#include <SDL.h>

#include <chrono>
#include <stdexcept>

#include "process/platform.hpp"
#include "process/sdl_session.hpp"
#include "support/turnstile.hpp"

namespace framesink::test {
namespace {

constexpr std::chrono::seconds kLongestPass{20};

Turnstile betweenPasses(true);  // closed while a LockStep exists
OsThreadId host = 0;            // set before the turnstile is closed

}  // namespace

LockStep::LockStep() {
  host = currentThread();
  betweenPasses.close();
}

LockStep::~LockStep() { betweenPasses.open(); }

void LockStep::runPass() {
  if (betweenPasses.step(nullptr, kLongestPass)) return;
  throw std::runtime_error("the display thread does not come back from its pass");
}

}  // namespace framesink::test

extern "C" {

void __real_SDL_Delay(Uint32 milliseconds);
void __wrap_SDL_Delay(Uint32 milliseconds);

// A wait inside the gate is part of a pass and returns at once. Where the host waits, one pass
// runs. Where the display thread waits between passes, it halts.
void __wrap_SDL_Delay(Uint32 milliseconds) {
  using namespace framesink;
  if (test::betweenPasses.isOpen()) return __real_SDL_Delay(milliseconds);
  if (sdlGate.isHeldByThisThread()) return;
  if (currentThread() == test::host) return test::LockStep::runPass();
  test::betweenPasses.pass();
}

}  // extern "C"
