#include "pass_stepper.hpp"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "support/wait_until.hpp"

namespace framesink::test {

struct PassStepper::Turnstile {
  std::mutex mutex;
  std::condition_variable changed;
  bool halted = false;
  bool mayGo = false;
  bool open = false;
  std::function<void()> first = [] {};

  void pass() {
    std::unique_lock lock(mutex);
    halted = true;
    changed.notify_all();
    changed.wait(lock, [this] { return mayGo || open; });
    halted = false;
    mayGo = false;
    std::exchange(first, [] {})();
  }

  bool waitForHalt(std::unique_lock<std::mutex>& lock) {
    return changed.wait_for(lock, kDeadline, [this] { return halted && !mayGo; });
  }
};

PassStepper::PassStepper(SdlRecorder& recorder)
    : turnstile_(std::make_unique<Turnstile>()),
      hook_(recorder.before("SDL_LockMutex", [turnstile = turnstile_.get()](const SdlCall&) {
        if (isDisplayThread()) turnstile->pass();
      })) {}

PassStepper::~PassStepper() {
  const std::lock_guard lock(turnstile_->mutex);
  turnstile_->open = true;
  turnstile_->changed.notify_all();
}

bool PassStepper::halted() {
  std::unique_lock lock(turnstile_->mutex);
  return turnstile_->waitForHalt(lock);
}

bool PassStepper::runPass(std::function<void()> first) {
  std::unique_lock lock(turnstile_->mutex);
  if (!turnstile_->waitForHalt(lock)) return false;
  turnstile_->first = std::move(first);
  turnstile_->mayGo = true;
  turnstile_->changed.notify_all();
  return turnstile_->waitForHalt(lock);
}

bool PassStepper::runPasses(int number) {
  for (int pass = 0; pass < number; ++pass) {
    if (!runPass()) return false;
  }
  return true;
}

}  // namespace framesink::test
