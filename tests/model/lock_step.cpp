#include "lock_step.hpp"

#include <SDL.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

#include "process/platform.hpp"
#include "process/sdl_session.hpp"

namespace framesink::test {
namespace {

constexpr std::chrono::seconds kLongestPass{20};

std::mutex mutex;
std::condition_variable changed;
bool active = false;
bool halted = false;   // the display thread stands between two passes
bool mayPass = false;  // the display thread may go on for one pass
OsThreadId host = 0;

bool isActive() {
  const std::lock_guard lock(mutex);
  return active;
}

void halt() {
  std::unique_lock lock(mutex);
  halted = true;
  changed.notify_all();
  changed.wait(lock, [] { return mayPass || !active; });
  halted = false;
  mayPass = false;
}

void awaitHalt(std::unique_lock<std::mutex>& lock) {
  const bool isHalted = changed.wait_for(lock, kLongestPass, [] { return halted && !mayPass; });
  if (!isHalted) throw std::runtime_error("the display thread does not come back from its pass");
}

}  // namespace

LockStep::LockStep() {
  const std::lock_guard lock(mutex);
  host = currentThread();
  active = true;
}

LockStep::~LockStep() {
  const std::lock_guard lock(mutex);
  active = false;
  changed.notify_all();
}

void LockStep::runPass() {
  std::unique_lock lock(mutex);
  awaitHalt(lock);
  mayPass = true;
  changed.notify_all();
  awaitHalt(lock);
}

}  // namespace framesink::test

extern "C" {

void __real_SDL_Delay(Uint32 milliseconds);
void __wrap_SDL_Delay(Uint32 milliseconds);

// A wait inside the gate is part of a pass and returns at once. Where the host waits, one pass
// runs. Where the display thread waits between passes, it halts.
void __wrap_SDL_Delay(Uint32 milliseconds) {
  using namespace framesink;
  if (!test::isActive()) return __real_SDL_Delay(milliseconds);
  if (sdlGate.isHeldByThisThread()) return;
  if (currentThread() == test::host) return test::LockStep::runPass();
  test::halt();
}

}  // extern "C"
