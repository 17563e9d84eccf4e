#include "process/display_watch.hpp"

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "process/display_loss.hpp"
#include "process/display_thread.hpp"

namespace framesink {
namespace {

constexpr std::chrono::milliseconds kLook{500};      // between looks at SDL's calls
constexpr std::chrono::milliseconds kLongWait{500};  // for a window manager
constexpr std::chrono::milliseconds kLookWhenLeaving{50};
constexpr std::chrono::milliseconds kPatience{2000};  // for the answer to a new connection

constinit std::atomic<bool> hurried{false};

class DisplayWatch {
 public:
  explicit DisplayWatch(const WatchedDisplay& display) : display_(display) {
    thread_.start("sdlDisplayWatch", watch, this);
  }

  bool end() {
    ended_ = true;
    wake();
    return thread_.awaitEnd(unloadBudget());
  }

  void wake() {
    const std::lock_guard lock(mutex_);
    woken_.notify_all();
  }

 private:
  static void watch(void* self) { static_cast<DisplayWatch*>(self)->run(); }

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

  // True if SDL waits for something else than the X server.
  bool isSdlWaiting() const {
    return !hurried && timeInSdl() > kLongWait && display_.answers(kPatience);
  }

  // Asks the X server before it gives the display up, because SDL also waits for window managers.
  bool isSilent() {
    const auto waited = timeInSdl();
    if (hurried) return waited > kLongestSilenceWhenLeaving;
    if (waited < kLongestSilence) answered_ = std::chrono::milliseconds(0);
    if (waited < answered_ + kLongestSilence) return false;
    if (!display_.answers(kPatience)) return true;
    answered_ = waited;
    return false;
  }

  const WatchedDisplay display_;
  std::mutex mutex_;
  std::condition_variable woken_;
  std::atomic<bool> ended_{false};
  std::chrono::milliseconds answered_{0};  // the X server answered when SDL had waited this long
  DisplayThread thread_;
};

constinit std::atomic<DisplayWatch*> current{nullptr};

}  // namespace

void startDisplayWatch(const WatchedDisplay& display) {
  if (current == nullptr) current = new DisplayWatch(display);
}

void endDisplayWatch() {
  DisplayWatch* watch = current.exchange(nullptr);
  if (watch != nullptr && watch->end()) delete watch;
}

void hurryDisplayWatch() {
  if (hurried.exchange(true)) return;
  if (DisplayWatch* watch = current) watch->wake();
}

}  // namespace framesink
