// How a threaded server's pass reacts to SDL's events, without a screen.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <utility>

#include "events.hpp"
#include "pass_stepper.hpp"
#include "server_fixtures.hpp"
#include "shown_frames.hpp"

namespace framesink::test {
namespace {

// One player whose window is made and drawn. The display thread is halted before its next pass.
class SdlServerEventsTest : public ThreadedServerTest {
 protected:
  void openPlayer(const Opening& opening = {}) {
    player = open(opening);
    window = lastWindowId();
    passes.emplace(recorder);
    EXPECT_TRUE(passes->runPasses(2));
    recorder.forget();
  }
  void passWith(const SDL_Event& event) {
    EXPECT_TRUE(push(event));
    EXPECT_TRUE(passes->runPass());
  }
  void passWith(Uint8 kind, int data1 = 0, int data2 = 0) {
    passWith(windowEvent(window, kind, data1, data2));
  }
  std::size_t drawings() const { return recorder.count("SDL_LockTexture"); }
  Size storedSize() const { return server.windowGeometry(player)->size; }
  Position storedPosition() const { return server.windowGeometry(player)->position; }

  std::uint32_t player = 0;
  std::uint32_t window = 0;
  std::optional<PassStepper> passes;
};

// ---- Redrawing ----

TEST_F(SdlServerEventsTest, AnExposedWindowIsDrawnAgain) {
  openPlayer();
  passWith(SDL_WINDOWEVENT_EXPOSED);
  EXPECT_EQ(drawings(), 1U);
}

TEST_F(SdlServerEventsTest, AMaximisedWindowIsDrawnAgain) {
  openPlayer();
  passWith(SDL_WINDOWEVENT_MAXIMIZED);
  EXPECT_EQ(drawings(), 1U);
}

TEST_F(SdlServerEventsTest, ARestoredWindowIsDrawnAgain) {
  openPlayer();
  passWith(SDL_WINDOWEVENT_RESTORED);
  EXPECT_EQ(drawings(), 1U);
}

TEST_F(SdlServerEventsTest, AResizedWindowIsDrawnAgain) {
  openPlayer();
  passWith(SDL_WINDOWEVENT_RESIZED, 100, 90);
  EXPECT_EQ(drawings(), 1U);
}

TEST_F(SdlServerEventsTest, ARedrawUploadsTheWholeNewestFrame) {
  openPlayer();
  deliver(server, player, noiseFrame(kFrameSize, 1));
  ASSERT_TRUE(passes->runPass());
  const ShownFrames shown(recorder, kFrameSize);
  passWith(SDL_WINDOWEVENT_EXPOSED);
  EXPECT_EQ(shown.all(), std::vector<Image>{pictureOf(noiseFrame(kFrameSize, 1))});
}

// The frame arrives after the walk over the players and before the drain.
TEST_F(SdlServerEventsTest, AFrameThatARedrawShowedIsNotShownAgain) {
  openPlayer();
  bool first = true;
  const SdlHook hook = recorder.before("SDL_PollEvent", [&](const SdlCall&) {
    if (std::exchange(first, false)) deliver(server, player, noiseFrame(kFrameSize, 1));
  });
  const ShownFrames shown(recorder, kFrameSize);
  passWith(SDL_WINDOWEVENT_EXPOSED);
  ASSERT_TRUE(passes->runPasses(2));
  EXPECT_EQ(shown.all(), std::vector<Image>{pictureOf(noiseFrame(kFrameSize, 1))});
}

TEST_F(SdlServerEventsTest, OtherWindowEventsDoNothing) {
  openPlayer();
  for (const Uint8 kind :
       {SDL_WINDOWEVENT_SHOWN, SDL_WINDOWEVENT_HIDDEN, SDL_WINDOWEVENT_SIZE_CHANGED,
        SDL_WINDOWEVENT_MINIMIZED, SDL_WINDOWEVENT_ENTER, SDL_WINDOWEVENT_LEAVE,
        SDL_WINDOWEVENT_FOCUS_GAINED, SDL_WINDOWEVENT_FOCUS_LOST, SDL_WINDOWEVENT_TAKE_FOCUS}) {
    passWith(kind, 7, 8);
  }
  EXPECT_EQ(drawings(), 0U);
  EXPECT_EQ(storedSize(), kFrameSize);
  EXPECT_EQ(storedPosition(), kPlace);
  EXPECT_TRUE(server.hasOpenPlayer(player));
}

// ---- Place and size ----

TEST_F(SdlServerEventsTest, AMoveIsStored) {
  openPlayer();
  passWith(SDL_WINDOWEVENT_MOVED, -5, 300);
  EXPECT_EQ(storedPosition(), (Position{static_cast<std::uint32_t>(-5), 300}));
  EXPECT_EQ(storedSize(), kFrameSize);
  EXPECT_EQ(drawings(), 0U);
}

TEST_F(SdlServerEventsTest, AResizeIsStored) {
  openPlayer();
  passWith(SDL_WINDOWEVENT_RESIZED, 100, 90);
  EXPECT_EQ(storedSize(), (Size{100, 90}));
  EXPECT_EQ(storedPosition(), kPlace);
}

TEST_F(SdlServerEventsTest, AResizeOfAFullScreenWindowIsNotStoredButDrawn) {
  openPlayer({.fullscreen = true});
  passWith(SDL_WINDOWEVENT_RESIZED, 1024, 768);
  EXPECT_EQ(storedSize(), kFrameSize);
  EXPECT_EQ(drawings(), 1U);
}

TEST_F(SdlServerEventsTest, EachEventReachesItsOwnWindow) {
  const std::uint32_t other = open();
  openPlayer();
  passWith(SDL_WINDOWEVENT_MOVED, 7, 8);
  EXPECT_EQ(storedPosition(), (Position{7, 8}));
  EXPECT_EQ(server.windowGeometry(other)->position, kPlace);
}

// ---- The drain ----

TEST_F(SdlServerEventsTest, OneDrainTakesAllEventsOfItsWindows) {
  openPlayer();
  push(windowEvent(window, SDL_WINDOWEVENT_MOVED, 7, 8));
  push(keyEvent(window, SDLK_a));
  passWith(SDL_WINDOWEVENT_RESIZED, 100, 90);
  EXPECT_EQ(storedPosition(), (Position{7, 8}));
  EXPECT_EQ(storedSize(), (Size{100, 90}));
}

TEST_F(SdlServerEventsTest, AnEventForNoKnownWindowEndsTheDrain) {
  openPlayer();
  push(windowEvent(kUnknownWindow, SDL_WINDOWEVENT_MOVED, 1, 2));
  passWith(SDL_WINDOWEVENT_MOVED, 7, 8);
  EXPECT_EQ(storedPosition(), kPlace);
  ASSERT_TRUE(passes->runPass());
  EXPECT_EQ(storedPosition(), (Position{7, 8}));
}

TEST_F(SdlServerEventsTest, AnApplicationEventEndsTheDrain) {
  openPlayer();
  push(applicationEvent(SDL_CLIPBOARDUPDATE));
  passWith(SDL_WINDOWEVENT_MOVED, 7, 8);
  EXPECT_EQ(storedPosition(), kPlace);
  ASSERT_TRUE(passes->runPass());
  EXPECT_EQ(storedPosition(), (Position{7, 8}));
}

TEST_F(SdlServerEventsTest, AnyEventEndsTheDrainWhileThereIsNoPlayer) {
  openPlayer();
  server.closePlayer(player);
  ASSERT_TRUE(passes->runPasses(3));
  for (int i = 0; i < 3; ++i) push(windowEvent(window, SDL_WINDOWEVENT_EXPOSED));
  // SDL may answer a poll with 0 although events wait, where an earlier gathering of events ended.
  constexpr int kMostPasses = 8;
  int events = 0;
  for (int i = 0; i < kMostPasses; ++i) {
    recorder.forget();
    ASSERT_TRUE(passes->runPass());
    ASSERT_EQ(recorder.count("SDL_PollEvent"), 1U) << "pass " << i;
    events += static_cast<int>(recorder.last("SDL_PollEvent").result);
  }
  EXPECT_EQ(events, 3);
}

// ---- Escape ----

TEST_F(SdlServerEventsTest, EscapeReturnsAFullScreenWindowToItsStoredSize) {
  openPlayer({.windowSize = Size{300, 200}, .fullscreen = true});
  passWith(keyEvent(window, SDLK_ESCAPE));
  EXPECT_EQ(recorder.last("SDL_SetWindowFullscreen").arguments[1], 0);
  const Numbers sized = recorder.last("SDL_SetWindowSize").arguments;
  EXPECT_EQ(Numbers(sized.begin() + 1, sized.end()), (Numbers{300, 200}));
  EXPECT_FALSE(server.isPlayerFullscreen(player));
}

TEST_F(SdlServerEventsTest, EscapeInAWindowedWindowDoesNothing) {
  openPlayer();
  passWith(keyEvent(window, SDLK_ESCAPE));
  EXPECT_EQ(recorder.count("SDL_SetWindowFullscreen"), 0U);
  EXPECT_EQ(recorder.count("SDL_SetWindowSize"), 0U);
}

TEST_F(SdlServerEventsTest, OtherKeysAndReleasesLeaveAWindowFullScreen) {
  openPlayer({.fullscreen = true});
  passWith(keyEvent(window, SDLK_RETURN));
  passWith(keyEvent(window, SDLK_ESCAPE, SDL_KEYUP));
  EXPECT_TRUE(server.isPlayerFullscreen(player));
}

TEST_F(SdlServerEventsTest, EscapeForAnotherWindowLeavesThisOneFullScreen) {
  open();
  const std::uint32_t other = lastWindowId();
  openPlayer({.fullscreen = true});
  passWith(keyEvent(other, SDLK_ESCAPE));
  EXPECT_TRUE(server.isPlayerFullscreen(player));
}

// ---- One window full screen ----

TEST_F(SdlServerEventsTest, AFullScreenPlayerFirstTakesTheOtherOutOfFullScreen) {
  openPlayer({.windowSize = Size{300, 200}, .fullscreen = true});
  const std::uint32_t second = addPlayer(server, {.fullscreen = true});
  ASSERT_TRUE(passes->runPass());
  EXPECT_FALSE(server.isPlayerFullscreen(player));
  EXPECT_TRUE(server.isPlayerFullscreen(second));
  const Names order = recorder.order();
  // addPlayer makes the first two calls.
  const Names begin{
      "SDL_LockMutex",     "SDL_UnlockMutex",    "SDL_GetWindowFlags", "SDL_SetWindowFullscreen",
      "SDL_SetWindowSize", "SDL_GetWindowFlags", "SDL_Delay"};
  ASSERT_GT(order.size(), begin.size());
  EXPECT_EQ(Names(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(begin.size())), begin);
  EXPECT_EQ(recorder.calls("SDL_Delay").front().arguments, Numbers{2});
  EXPECT_EQ(recorder.last("SDL_SetWindowSize").arguments[1], 300);
}

TEST_F(SdlServerEventsTest, AWindowedPlayerLeavesTheOtherFullScreen) {
  openPlayer({.fullscreen = true});
  addPlayer(server);
  ASSERT_TRUE(passes->runPass());
  EXPECT_TRUE(server.isPlayerFullscreen(player));
}

TEST_F(SdlServerEventsTest, AFullScreenPlayerWaitsUntilTheOtherHasLeftFullScreen) {
  openPlayer({.fullscreen = true});
  int looks = 0;
  const SdlHook hook = recorder.alter("SDL_GetWindowFlags", [&](std::int64_t flags) {
    return ++looks <= 5 ? flags | SDL_WINDOW_FULLSCREEN : flags;
  });
  addPlayer(server, {.fullscreen = true});
  ASSERT_TRUE(passes->runPass());
  Numbers rests;
  for (const SdlCall& rest : recorder.calls("SDL_Delay")) rests.push_back(rest.arguments[0]);
  EXPECT_EQ(rests, (Numbers{2, 2, 2, 2, 2, 1})) << "four looks, one rest more, one pass";
}

TEST_F(SdlServerEventsTest, AFullScreenPlayerDoesNotWaitForAWindowThatSdlKeepsFullScreen) {
  openPlayer({.fullscreen = true});
  recorder.refuse("SDL_SetWindowFullscreen", 1, 1);
  const std::uint32_t second = addPlayer(server, {.fullscreen = true});
  ASSERT_TRUE(passes->runPass());
  EXPECT_TRUE(server.isPlayerFullscreen(player));
  EXPECT_TRUE(server.isPlayerFullscreen(second));
}

TEST_F(SdlServerEventsTest, TheWaitForTheOtherToLeaveFullScreenEndsWhenTheLibraryLeaves) {
  openPlayer({.fullscreen = true});
  const SdlHook hook = recorder.alter(
      "SDL_GetWindowFlags", [](std::int64_t flags) { return flags | SDL_WINDOW_FULLSCREEN; });
  addPlayer(server, {.fullscreen = true});
  passes.reset();
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_Delay") >= 10; }));
  EXPECT_TRUE(server.stop());
}

}  // namespace
}  // namespace framesink::test
