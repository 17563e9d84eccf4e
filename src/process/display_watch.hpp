// A thread that notices when SDL waits for long. If the X server does not answer, it cuts the
// connection; if it does, SDL may wait for a window manager that has ended (see
// x11_forgotten_window.hpp). Without it, a stopped X server or a network that swallows everything would hold the
// display thread, or a host thread on the synchronous server, for ever.
#pragma once

#include <atomic>
#include <chrono>

namespace framesink {

// A display that has not answered for this long counts as lost. The library's own limit; hosts know
// it from unloading.
inline constexpr std::chrono::milliseconds kLongestSilence{20000};

// The same while the library is leaving, when there is no picture left to lose.
inline constexpr std::chrono::milliseconds kLongestSilenceWhenLeaving{500};

// What the watch can do about a display. Any thread; `answers` and `showForgotten` wait for it.
struct WatchedDisplay {
  bool (*answers)(std::chrono::milliseconds patience, const std::atomic<bool>& giveUp);
  void (*showForgotten)();
  void (*cut)();
  bool isLocal;
};

// Inside the gate. Does nothing if the thread runs already.
void startDisplayWatch(const WatchedDisplay& display);

// Ends the thread and waits until it is gone.
void endDisplayWatch();

// From now on, the shorter limit holds, whether or not the X server answers. Any thread.
void hurryDisplayWatch();

}  // namespace framesink
