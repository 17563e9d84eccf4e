#include "process/display_watch.hpp"

#if !defined(_WIN32)

#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "process/display_loss.hpp"

namespace framesink {
namespace {

constexpr std::chrono::milliseconds kLook{500};      // between looks at SDL's calls
constexpr std::chrono::milliseconds kLongWait{500};  // for a window manager
constexpr std::chrono::milliseconds kLongWaitFarAway{5000};
constexpr std::chrono::milliseconds kLookWhenLeaving{50};
constexpr std::chrono::milliseconds kPatience{2000};  // for the answer to a new connection

constinit std::atomic<bool> hurried{false};

// Blocks all signals for the calling thread while it lives.
class NoSignals {
 public:
  NoSignals() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~NoSignals() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  NoSignals(const NoSignals&) = delete;
  NoSignals& operator=(const NoSignals&) = delete;

 private:
  sigset_t before_;
};

class DisplayWatch {
 public:
  explicit DisplayWatch(const WatchedDisplay& display) : display_(display) {
    const NoSignals handled;  // the thread inherits it: the host's signals are the host's
    isStarted_ = ::pthread_create(&thread_, nullptr, watch, this) == 0;
    if (isStarted_) ::pthread_setname_np(thread_, "sdlDisplayWatch");
  }

  // Joins the thread, which calls neither SDL nor the loader.
  ~DisplayWatch() {
    ended_ = true;
    wake();
    if (isStarted_) ::pthread_join(thread_, nullptr);
  }
  DisplayWatch(const DisplayWatch&) = delete;
  DisplayWatch& operator=(const DisplayWatch&) = delete;

  // Does not wait for the mutex, which nobody may ever release: this may be a fork. If the thread
  // misses the call, it looks again after kLook.
  void wake() {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    woken_.notify_all();
  }

 private:
  static void* watch(void* self) {
    static_cast<DisplayWatch*>(self)->run();
    return nullptr;
  }

  void run() {
    while (!ended_ && !isDisplayLost()) {
      rest();
      if (isSilent()) {
        display_.cut();
      } else if (isSdlWaiting()) {
        display_.showForgotten();
      }
    }
  }

  void rest() {
    std::unique_lock lock(mutex_);
    if (!ended_) woken_.wait_for(lock, hurried ? kLookWhenLeaving : kLook);
  }

  // A forwarder may tell its user of every question, so distant servers are asked late.
  std::chrono::milliseconds longWait() const {
    return display_.isLocal ? kLongWait : kLongWaitFarAway;
  }

  // True if SDL waits for something else than the X server.
  bool isSdlWaiting() const {
    return !hurried && timeInSdl() > longWait() && display_.answers(kPatience, hurried);
  }

  // Asks the X server before it gives the display up, because SDL also waits for window managers.
  bool isSilent() {
    const auto waited = timeInSdl();
    if (hurried) return waited > kLongestSilenceWhenLeaving;
    if (waited < kLongestSilence) answered_ = std::chrono::milliseconds(0);
    if (waited < answered_ + kLongestSilence) return false;
    if (!display_.answers(kPatience, hurried)) return true;
    answered_ = waited;
    return false;
  }

  const WatchedDisplay display_;
  std::mutex mutex_;
  std::condition_variable woken_;
  std::atomic<bool> ended_{false};
  std::chrono::milliseconds answered_{0};  // the X server answered when SDL had waited this long
  pthread_t thread_{};
  bool isStarted_ = false;
};

constinit std::atomic<DisplayWatch*> current{nullptr};

}  // namespace

void startDisplayWatch(const WatchedDisplay& display) {
  if (current == nullptr) current = new DisplayWatch(display);
}

void endDisplayWatch() { delete current.exchange(nullptr); }

void hurryDisplayWatch() {
  if (hurried.exchange(true)) return;
  if (DisplayWatch* watch = current) watch->wake();
}

}  // namespace framesink

#else

namespace framesink {
void startDisplayWatch(const WatchedDisplay&) {}
void endDisplayWatch() {}
void hurryDisplayWatch() {}
}  // namespace framesink

#endif
