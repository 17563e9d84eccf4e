#include "support/sdl_clock.hpp"

#include <atomic>
#include <chrono>

namespace framesink::test {
namespace {

constexpr std::uint32_t kRestInsideAPass = 2;  // ms; rests between passes have other lengths

std::atomic<SdlClock*> theClock{nullptr};

}  // namespace

SdlClock* SdlClock::current() { return theClock; }

SdlClock::SdlClock(SdlRecorder& recorder)
    : onFirstCall_(recorder.before("SDL_WasInit", [this](const SdlCall&) {
        Lock lock(mutex_);
        if (isDisplayThread() && thread_ == 0) restBetweenPasses(lock, 1);
      })) {
  theClock = this;
}

SdlClock::~SdlClock() {
  release();
  theClock = nullptr;
}

std::int64_t SdlClock::now() const {
  const Lock lock(mutex_);
  return now_;
}

void SdlClock::rest(std::uint32_t milliseconds) {
  Lock lock(mutex_);
  if (released_) {
    lock.unlock();
    sleepFor(std::chrono::milliseconds(milliseconds));
  } else if (!isDisplayThread()) {
    for (const std::int64_t end = now_ + milliseconds; now_ < end;) tick(lock);
  } else if (milliseconds == kRestInsideAPass) {
    now_ += milliseconds;
  } else {
    restBetweenPasses(lock, milliseconds);
  }
}

void SdlClock::restBetweenPasses(Lock& lock, std::uint32_t milliseconds) {
  thread_ = currentThread();
  wakes_ = now_ + milliseconds;
  ++rests_;
  resting_ = true;
  changed_.notify_all();
  changed_.wait(lock, [&] { return released_ || now_ >= wakes_; });
  resting_ = false;
}

// Advances one millisecond and waits until the display thread, if that wakes it, rests again.
void SdlClock::tick(Lock& lock) {
  ++now_;
  changed_.notify_all();
  while (!isThreadAtRest()) changed_.wait_for(lock, std::chrono::milliseconds(1));
}

bool SdlClock::isThreadAtRest() const {
  if (thread_ == 0 || released_) return true;
  return (resting_ && wakes_ > now_) || isThreadGone(thread_);
}

void SdlClock::awaitFirstRest() {
  Lock lock(mutex_);
  changed_.wait(lock, [this] { return thread_ != 0; });
}

void SdlClock::runPass() {
  Lock lock(mutex_);
  const std::uint64_t next = rests_ + 1;
  while (rests_ < next && thread_ != 0 && !isThreadGone(thread_)) tick(lock);
}

void SdlClock::release() {
  const Lock lock(mutex_);
  released_ = true;
  changed_.notify_all();
}

}  // namespace framesink::test
