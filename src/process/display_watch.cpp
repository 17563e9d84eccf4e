#include "process/display_watch.hpp"

#include <SDL.h>

#if defined(SDL_VIDEO_DRIVER_X11)

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "process/display_loss.hpp"
#include "process/display_thread.hpp"
#include "process/x11_session.hpp"

namespace framesink {
namespace {

constexpr std::chrono::milliseconds kLook{500};      // between looks at SDL's calls
constexpr std::chrono::milliseconds kLongWait{500};  // for a window manager
constexpr std::chrono::milliseconds kLookWhenLeaving{50};
constexpr std::chrono::milliseconds kPatience{2000};  // for the answer to a new connection

constinit std::atomic<bool> hurried{false};

class DisplayWatch {
 public:
  DisplayWatch() { thread_.start("sdlDisplayWatch", watch, this); }

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
        cutX11();
      } else if (isSdlWaiting()) {
        showForgottenX11Window();
      }
    }
  }

  void rest() {
    std::unique_lock lock(mutex_);
    if (!ended_) woken_.wait_for(lock, hurried ? kLookWhenLeaving : kLook);
  }

  // True if SDL waits for something else than the X server.
  static bool isSdlWaiting() {
    return !hurried && timeInSdl() > kLongWait && doesX11Answer(kPatience);
  }

  // Asks the X server before it gives the display up, because SDL also waits for window managers.
  bool isSilent() {
    const auto waited = timeInSdl();
    if (hurried) return waited > kLongestSilenceWhenLeaving;
    if (waited < kLongestSilence) answered_ = std::chrono::milliseconds(0);
    if (waited < answered_ + kLongestSilence) return false;
    if (!doesX11Answer(kPatience)) return true;
    answered_ = waited;
    return false;
  }

  std::mutex mutex_;
  std::condition_variable woken_;
  std::atomic<bool> ended_{false};
  std::chrono::milliseconds answered_{0};  // the X server answered when SDL had waited this long
  DisplayThread thread_;
};

constinit std::atomic<DisplayWatch*> current{nullptr};

}  // namespace

void startDisplayWatch() {
  if (current == nullptr) current = new DisplayWatch;
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

#else

namespace framesink {
void startDisplayWatch() {}
void endDisplayWatch() {}
void hurryDisplayWatch() {}
}  // namespace framesink

#endif
