// The synchronous server, which does everything inside the host's calls. Without a screen.
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <thread>

#include "events.hpp"
#include "server_fixtures.hpp"
#include "shown_frames.hpp"
#include "support/allocations.hpp"
#include "support/capture_stderr.hpp"
#include "support/foreign_leaks.hpp"
#include "support/os_facts.hpp"

namespace framesink::test {
namespace {

class SynchronousSdlServerTest : public SynchronousServerTest {
 protected:
  // Adds a player, draws it once, and empties SDL's queue and the recorder.
  std::uint32_t openDrawn(const Opening& opening = {}) {
    const std::uint32_t player = open(opening);
    window = lastWindowId();
    deliver(server, player, plainFrame(opening.frameSize, 0));
    SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
    recorder.forget();
    return player;
  }
  // Drains SDL's events without drawing a frame.
  void drain() { deliver(server, kNoPlayer, plainFrame(kFrameSize, 0)); }
  std::size_t drawings() const { return recorder.count("SDL_LockTexture"); }

  std::uint32_t window = 0;
};

// ---- Players ----

TEST_F(SynchronousSdlServerTest, HasNeitherThreadNorMutex) {
  const auto threads = threadIds();
  open();
  EXPECT_EQ(threadIds(), threads);
  EXPECT_EQ(recorder.count("SDL_CreateThread"), 0U);
  EXPECT_EQ(recorder.count("SDL_CreateMutex"), 0U);
}

TEST_F(SynchronousSdlServerTest, TheFirstPlayerInitialisesSdlOnce) {
  open();
  open();
  EXPECT_EQ(recorder.count("SDL_Init"), 1U);
  EXPECT_EQ(recorder.count("SDL_EnableScreenSaver"), 1U);
}

TEST_F(SynchronousSdlServerTest, MakesTheWindowWhenThePlayerIsAdded) {
  addPlayer(server);
  EXPECT_EQ(recorder.count("SDL_CreateWindow"), 1U);
  EXPECT_EQ(drawings(), 0U) << "no frame was delivered yet";
}

TEST_F(SynchronousSdlServerTest, DoesEverythingOnTheCallersThread) {
  std::uint32_t player = 0;
  int caller = 0;
  std::thread([&] {
    caller = static_cast<int>(currentThread());
    player = addPlayer(server);
    deliver(server, player, noiseFrame(kFrameSize, 1));
    server.closePlayer(player);
    SDL_TLSCleanup();  // frees SDL's error text of this thread
  }).join();
  ASSERT_EQ(recorder.count("SDL_DestroyWindow"), 1U);
  for (const SdlCall& call : recorder.calls()) EXPECT_EQ(call.thread, caller) << call.function;
}

TEST_F(SynchronousSdlServerTest, CountsPlayerIdsFrom0AndNeverReusesOne) {
  EXPECT_EQ(addPlayer(server), 0U);
  EXPECT_EQ(addPlayer(server), 1U);
  server.closePlayer(0);
  server.closePlayer(1);
  EXPECT_EQ(addPlayer(server), 2U);
}

TEST_F(SynchronousSdlServerTest, MakesAFullScreenWindowFullScreenAndShowsIt) {
  const std::uint32_t player = addPlayer(server, {.fullscreen = true});
  EXPECT_EQ(recorder.last("SDL_CreateWindow").arguments[5], 0x228);
  EXPECT_EQ(recorder.last("SDL_SetWindowFullscreen").arguments[1], 4097);
  EXPECT_EQ(recorder.count("SDL_ShowWindow"), 1U);
  EXPECT_TRUE(server.isPlayerFullscreen(player));
}

TEST_F(SynchronousSdlServerTest, AFullScreenPlayerTakesTheOtherOutOfFullScreen) {
  const std::uint32_t first = addPlayer(server, {.fullscreen = true});
  const std::uint32_t second = addPlayer(server, {.fullscreen = true});
  EXPECT_FALSE(server.isPlayerFullscreen(first));
  EXPECT_TRUE(server.isPlayerFullscreen(second));
}

TEST_F(SynchronousSdlServerTest, APlayerWithoutMemoryForItsWindowIsNotAdded) {
  const std::uint32_t first = open();
  for (std::size_t left = 0; left < 4; ++left) {
    const Frame black = plainFrame(kFrameSize, 0);
    const auto add = [&] {
      const OutOfMemory afterThese(left);
      server.addPlayer(black.data(), {.title = "", .frameSize = kFrameSize});
    };
    EXPECT_THROW(add(), std::bad_alloc) << left << " allocations";
  }
  EXPECT_TRUE(server.hasOpenPlayer(first));
  for (std::uint32_t player = first + 1; player < 10; ++player) {
    EXPECT_FALSE(server.hasOpenPlayer(player));
  }
}

// ---- Frames ----

TEST_F(SynchronousSdlServerTest, ShowsAFrameAtOnceAndThenDrains) {
  const std::uint32_t player = openDrawn();
  const ShownFrames shown(recorder, kFrameSize);
  deliver(server, player, noiseFrame(kFrameSize, 1));
  EXPECT_EQ(shown.all(), std::vector<Image>{pictureOf(noiseFrame(kFrameSize, 1))});
  EXPECT_EQ(recorder.order(), (Names{"SDL_LockTexture", "SDL_UnlockTexture", "SDL_RenderClear",
                                     "SDL_RenderCopy", "SDL_RenderPresent", "SDL_PollEvent"}));
}

TEST_F(SynchronousSdlServerTest, ShowsEveryFrame) {
  const std::uint32_t player = openDrawn();
  const ShownFrames shown(recorder, kFrameSize);
  for (std::uint32_t seed = 1; seed <= 5; ++seed) {
    deliver(server, player, noiseFrame(kFrameSize, seed));
    EXPECT_EQ(shown.last(), pictureOf(noiseFrame(kFrameSize, seed)));
  }
  EXPECT_EQ(shown.count(), 5U);
}

TEST_F(SynchronousSdlServerTest, AFrameForNobodyStillDrains) {
  openDrawn();
  push(windowEvent(window, SDL_WINDOWEVENT_MOVED, 7, 8));
  drain();
  EXPECT_EQ(drawings(), 0U);
  EXPECT_EQ(server.windowGeometry(0)->position, (Position{7, 8}));
}

TEST_F(SynchronousSdlServerTest, AFrameOfAnotherSizeIsNotShownButDrains) {
  const std::uint32_t player = openDrawn();
  push(windowEvent(window, SDL_WINDOWEVENT_MOVED, 7, 8));
  for (const Size size : kOtherSizes) deliver(server, player, noiseFrame(size, 1));
  EXPECT_EQ(drawings(), 0U);
  EXPECT_EQ(server.windowGeometry(player)->position, (Position{7, 8}));
}

// ---- Events ----

TEST_F(SynchronousSdlServerTest, ACloseButtonClosesInsideTheDrain) {
  const std::uint32_t player = openDrawn();
  push(windowEvent(window, SDL_WINDOWEVENT_CLOSE));
  EXPECT_TRUE(server.hasOpenPlayer(player));
  deliver(server, player, noiseFrame(kFrameSize, 1));
  EXPECT_FALSE(server.hasOpenPlayer(player));
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 1U);
}

TEST_F(SynchronousSdlServerTest, EventsThatFollowAWindowsCloseEndTheDrain) {
  const std::uint32_t other = openDrawn();
  const std::uint32_t otherWindow = window;
  openDrawn();
  push(windowEvent(window, SDL_WINDOWEVENT_CLOSE));
  push(windowEvent(window, SDL_WINDOWEVENT_EXPOSED));
  push(windowEvent(otherWindow, SDL_WINDOWEVENT_MOVED, 7, 8));
  drain();
  EXPECT_EQ(server.windowGeometry(other)->position, kPlace);
  drain();
  EXPECT_EQ(server.windowGeometry(other)->position, (Position{7, 8}));
}

TEST_F(SynchronousSdlServerTest, AnEventForNoKnownWindowEndsTheDrain) {
  const std::uint32_t player = openDrawn();
  push(windowEvent(kUnknownWindow, SDL_WINDOWEVENT_MOVED, 1, 2));
  push(windowEvent(window, SDL_WINDOWEVENT_MOVED, 7, 8));
  drain();
  EXPECT_EQ(server.windowGeometry(player)->position, kPlace);
  drain();
  EXPECT_EQ(server.windowGeometry(player)->position, (Position{7, 8}));
}

TEST_F(SynchronousSdlServerTest, AnExposedWindowIsDrawnAgainInTheDrain) {
  openDrawn();
  push(windowEvent(window, SDL_WINDOWEVENT_EXPOSED));
  drain();
  EXPECT_EQ(drawings(), 1U);
}

TEST_F(SynchronousSdlServerTest, AResizeIsStoredAndDrawnInTheDrain) {
  const std::uint32_t player = openDrawn();
  push(windowEvent(window, SDL_WINDOWEVENT_RESIZED, 100, 90));
  drain();
  EXPECT_EQ(server.windowGeometry(player)->size, (Size{100, 90}));
  EXPECT_EQ(drawings(), 1U);
}

TEST_F(SynchronousSdlServerTest, EscapeLeavesFullScreenInTheDrain) {
  const std::uint32_t player = openDrawn({.windowSize = Size{300, 200}, .fullscreen = true});
  push(keyEvent(window, SDLK_ESCAPE));
  drain();
  EXPECT_FALSE(server.isPlayerFullscreen(player));
  EXPECT_EQ(recorder.last("SDL_SetWindowSize").arguments[1], 300);
}

// ---- Closing and asking ----

TEST_F(SynchronousSdlServerTest, ClosePlayerClosesAtOnce) {
  const std::uint32_t player = openDrawn();
  server.closePlayer(player);
  EXPECT_FALSE(server.hasOpenPlayer(player));
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 1U);
}

TEST_F(SynchronousSdlServerTest, ClosesThatVeryPlayerWhoseWindowSdlRefused) {
  const CaptureStderr said;
  const std::uint32_t sound = open();
  recorder.refuse("SDL_CreateWindow");
  const std::uint32_t first = addPlayer(server);
  const std::uint32_t second = addPlayer(server);
  server.closePlayer(second);
  EXPECT_TRUE(server.hasOpenPlayer(sound));
  EXPECT_TRUE(server.hasOpenPlayer(first));
  EXPECT_FALSE(server.hasOpenPlayer(second));
}

TEST_F(SynchronousSdlServerTest, NothingWaits) {
  const std::uint32_t player = openDrawn({.windowSize = Size{320, 240}, .position = {12, 34}});
  EXPECT_EQ(server.getWindowWidth(player), 320U);
  EXPECT_EQ(server.getWindowHeight(player), 240U);
  EXPECT_EQ(server.getWindowX(player), 12U);
  EXPECT_EQ(server.getWindowY(player), 34U);
  EXPECT_EQ(server.getFrameWidth(player), 64);
  EXPECT_EQ(server.getFrameHeight(player), 48);
  EXPECT_FALSE(server.isPlayerFullscreen(player));
  server.renamePlayer(player, "another");
  server.raisePlayer(player);
  EXPECT_EQ(recorder.count("SDL_Delay"), 0U);
  EXPECT_EQ(recorder.last("SDL_SetWindowTitle").texts, Names{"another"});
  EXPECT_EQ(recorder.count("SDL_RaiseWindow"), 1U);
}

TEST_F(SynchronousSdlServerTest, AnUnknownPlayerYieldsNothingAndNoAction) {
  openDrawn();
  EXPECT_FALSE(server.hasOpenPlayer(99));
  EXPECT_FALSE(server.isPlayerFullscreen(99));
  EXPECT_FALSE(server.windowGeometry(99));
  EXPECT_EQ(server.getWindowX(99), 0U);
  EXPECT_EQ(server.getFrameWidth(99), 0);
  server.raisePlayer(99);
  server.renamePlayer(99, "title");
  server.closePlayer(99);
  EXPECT_EQ(recorder.order(), Names{});
}

// A host thread that polls a player must not keep its closed window on the screen.
TEST_F(SynchronousSdlServerTest, AClosedWindowGoesWithinAFewFramesWhoeverAsksMeanwhile) {
  std::atomic<bool> stop{false};
  std::thread asking([&] {
    while (!stop) server.hasOpenPlayer(0);
  });
  int left = 0;
  for (int round = 0; round < 200; ++round) {
    const std::uint32_t player = addPlayer(server);
    recorder.forget();
    server.closePlayer(player);
    for (int i = 0; i < 1000 && recorder.count("SDL_DestroyWindow") == 0; ++i) drain();
    if (recorder.count("SDL_DestroyWindow") == 0) ++left;
  }
  stop = true;
  asking.join();
  EXPECT_EQ(left, 0) << "windows stayed on the screen";
}

// ---- The end ----

TEST_F(SynchronousSdlServerTest, StoppingClosesItsWindowsAndShutsNothingDown) {
  open();
  open();
  EXPECT_TRUE(server.stop());
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 2U);
  EXPECT_EQ(recorder.count("SDL_Quit"), 0U);
  EXPECT_FALSE(server.hasOpenPlayer(0));
  EXPECT_EQ(addPlayer(server), kNoPlayer);
}

TEST_F(SynchronousSdlServerTest, AFailedTextureLockShutsSdlDownAndHostsGoOn) {
  expectLeaks();
  SDL_LogSetOutputFunction([](void*, int, SDL_LogPriority, const char*) {}, nullptr);
  const std::uint32_t player = openDrawn();
  recorder.refuse("SDL_LockTexture");
  deliver(server, player, noiseFrame(kFrameSize, 1));
  EXPECT_EQ(recorder.count("SDL_Quit"), 1U);
  recorder.forget();
  deliver(server, player, noiseFrame(kFrameSize, 2));
  server.raisePlayer(player);
  EXPECT_FALSE(server.isPlayerFullscreen(player));
  server.closePlayer(player);
  EXPECT_EQ(recorder.order(), Names{"SDL_PollEvent"});
}

}  // namespace
}  // namespace framesink::test
