// A host shows frames in several windows at full speed while a user closes, moves and resizes them.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "display/server_instances.hpp"
#include "display_helpers.hpp"
#include "support/restless_user.hpp"
#include "support/scoped_variable.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

constexpr std::uint32_t kThreadedWindows = 4;
constexpr std::uint32_t kWindows = kThreadedWindows + 1;  // the last is synchronous

// Usually thousands of frames are shown in 2 s. A machine with 20 times more work than it can do at
// once needed 12 s for 22 frames.
constexpr int kFewestFrames = 4 * kWindows;

std::chrono::milliseconds duration() {
  const auto seconds = environmentVariable("FRAMESINK_TORTURE_SECONDS");
  return std::chrono::seconds(seconds ? std::atoi(seconds->c_str()) : 2);
}

std::string titleOf(std::uint32_t index) { return "window " + std::to_string(index); }

std::vector<std::string> titles() {
  std::vector<std::string> titles;
  for (std::uint32_t index = 0; index < kWindows; ++index) titles.push_back(titleOf(index));
  return titles;
}

// One host thread feeds four threaded windows and another a synchronous one, so that both servers
// call SDL all the time. Uses no SdlRecorder, because its bookkeeping would keep the threads apart.
class TortureTest : public ManagedXTest {
 protected:
  static SdlServer& serverOf(std::uint32_t index) { return serverFor(index == kThreadedWindows); }

  void open(std::uint32_t index) {
    players[index] =
        addPlayer(serverOf(index), {.title = titleOf(index), .position = {40 + 200 * index, 60}});
  }
  // Delivers a frame to the window, and now and then makes the other calls too.
  void step(std::uint32_t index, std::uint32_t number) {
    SdlServer& display = serverOf(index);
    if (!display.hasOpenPlayer(players[index])) open(index);
    const std::uint32_t player = players[index];
    deliver(display, player, frames[number % frames.size()]);
    ++delivered;
    if (number % 16 != index) return;
    display.windowGeometry(player);
    display.isPlayerFullscreen(player);
    display.raisePlayer(player);
    display.renamePlayer(player, titleOf(index));
    if (number % 512 == index) display.closePlayer(player);
  }
  template <class Predicate>
  void play(std::uint32_t first, std::uint32_t last, Predicate lasts) {
    for (std::uint32_t number = 0; lasts(); ++number) {
      for (std::uint32_t index = first; index <= last; ++index) step(index, number);
    }
  }
  // A window that is made later opens above those that are there.
  void awaitWindows() {
    for (std::uint32_t index = 0; index < kWindows; ++index) {
      hasWindow(serverOf(index), players[index]);
    }
  }
  std::string whatIsOnTop() {
    const Window top = x.stackingTop();
    std::ostringstream text;
    text << "\"" << x.title(top) << "\" at " << x.geometry(top) << " is on top";
    return text.str();
  }

  std::vector<std::uint32_t> players = std::vector<std::uint32_t>(kWindows);
  std::vector<Frame> frames{noiseFrame(kFrameSize, 1), noiseFrame(kFrameSize, 2)};
  std::atomic<int> delivered{0};
};

TEST_F(TortureTest, TheDisplayGoesOnUnharmed) {
  for (std::uint32_t index = 0; index < kWindows; ++index) open(index);
  {
    const RestlessUser user(server.display(), titles(),
                            {.deeds = {Deed::kClose, Deed::kResize, Deed::kResize, Deed::kResize,
                                       Deed::kRaise, Deed::kMove, Deed::kMove, Deed::kMove}});
    const auto end = std::chrono::steady_clock::now() + duration();
    // A busy machine may need longer until there has been any torture.
    const auto lasts = [&] {
      const auto now = std::chrono::steady_clock::now();
      const bool isEnough = user.closed() > 0 && delivered >= kFewestFrames;
      return now < end || (now < end + kDeadline && !isEnough);
    };
    std::thread synchronousHost([&] { play(kThreadedWindows, kThreadedWindows, lasts); });
    play(0, kThreadedWindows - 1, lasts);
    synchronousHost.join();
    EXPECT_GT(user.closed(), 0);
    EXPECT_GE(delivered, kFewestFrames);
    RecordProperty("frames", delivered);
  }
  awaitWindows();
  for (std::uint32_t index = 0; index < kWindows; ++index) {
    SdlServer& display = serverOf(index);
    const std::uint32_t fresh = addPlayer(display, {.title = "fresh " + std::to_string(index)});
    const Window window = x.waitForWindow("fresh " + std::to_string(index));
    const Frame last = noiseFrame(kFrameSize, 100 + index);
    // A window manager may still be raising a window that the torture was about.
    const auto isShown = [&] {
      if (x.stackingTop() != window) x.activate(window);
      deliver(display, fresh, last);
      return x.pixels(window) == pictureOf(last);
    };
    EXPECT_TRUE(waitUntil(isShown))
        << "window " << index << " at " << x.geometry(window) << ", " << whatIsOnTop();
    display.closePlayer(fresh);
  }
}

}  // namespace
}  // namespace framesink::test
