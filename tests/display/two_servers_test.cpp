// Both servers of the process side by side, without a screen.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>

#include "display/server_instances.hpp"
#include "events.hpp"
#include "hold.hpp"
#include "pass_stepper.hpp"
#include "server_fixtures.hpp"
#include "shown_frames.hpp"
#include "support/os_facts.hpp"

namespace framesink::test {
namespace {

// Run each test in a separate process, because a process has one server of each kind.
class TwoServersTest : public DummyVideoTest {
 protected:
  std::uint32_t lastWindowId() const {
    return static_cast<std::uint32_t>(recorder.last("SDL_GetWindowID").result);
  }
  // Draws one player in each server, halts the display thread before its next pass, and empties
  // SDL's queue and the recorder.
  void openBoth(bool fullscreen = false) {
    threadedPlayer = addPlayer(threadedServer(), {.fullscreen = fullscreen});
    EXPECT_TRUE(hasWindow(threadedServer(), threadedPlayer));
    threadedWindow = lastWindowId();
    passes.emplace(recorder);
    EXPECT_TRUE(passes->runPasses(2));
    synchronousPlayer = addPlayer(synchronousServer(), {.fullscreen = fullscreen});
    synchronousWindow = lastWindowId();
    deliver(synchronousServer(), synchronousPlayer, plainFrame(kFrameSize, 0));
    SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
    recorder.forget();
  }
  // Makes the synchronous server drain SDL's events.
  void drain() { deliver(synchronousServer(), kNoPlayer, plainFrame(kFrameSize, 0)); }
  Position storedPosition(SdlServer& server, std::uint32_t player) const {
    return server.windowGeometry(player)->position;
  }

  std::uint32_t threadedPlayer = 0;
  std::uint32_t synchronousPlayer = 0;
  std::uint32_t threadedWindow = 0;
  std::uint32_t synchronousWindow = 0;
  std::optional<PassStepper> passes;
};

// ---- Making ----

TEST_F(TwoServersTest, ExistFromTheirFirstUse) {
  EXPECT_EQ(existingServer(false), nullptr);
  EXPECT_EQ(existingServer(true), nullptr);
  SdlServer& synchronous = synchronousServer();
  EXPECT_EQ(existingServer(true), &synchronous);
  EXPECT_EQ(existingServer(false), nullptr);
  SdlServer& threaded = threadedServer();
  EXPECT_EQ(existingServer(false), &threaded);
  EXPECT_NE(&threaded, &synchronous);
}

TEST_F(TwoServersTest, AreTheSameAtEveryCall) {
  EXPECT_EQ(&threadedServer(), &threadedServer());
  EXPECT_EQ(&synchronousServer(), &synchronousServer());
  EXPECT_EQ(&serverFor(false), &threadedServer());
  EXPECT_EQ(&serverFor(true), &synchronousServer());
}

TEST_F(TwoServersTest, AskNothingOfSdlBeforeTheirFirstPlayer) {
  threadedServer();
  synchronousServer();
  EXPECT_EQ(recorder.order(), Names{});
}

TEST_F(TwoServersTest, InitialiseSdlOnceThreadedFirst) {
  addPlayer(threadedServer());
  addPlayer(synchronousServer());
  EXPECT_EQ(recorder.count("SDL_Init"), 1U);
  EXPECT_EQ(recorder.count("SDL_EnableScreenSaver"), 1U);
}

TEST_F(TwoServersTest, InitialiseSdlOnceSynchronousFirst) {
  addPlayer(synchronousServer());
  addPlayer(threadedServer());
  EXPECT_EQ(recorder.count("SDL_Init"), 1U);
  EXPECT_EQ(recorder.count("SDL_EnableScreenSaver"), 1U);
}

TEST_F(TwoServersTest, CountPlayerIdsSeparately) {
  EXPECT_EQ(addPlayer(threadedServer()), 0U);
  EXPECT_EQ(addPlayer(threadedServer()), 1U);
  EXPECT_EQ(addPlayer(synchronousServer()), 0U);
  EXPECT_EQ(addPlayer(threadedServer()), 2U);
  EXPECT_EQ(addPlayer(synchronousServer()), 1U);
}

TEST_F(TwoServersTest, NeverShareAPlayer) {
  addPlayer(threadedServer());
  EXPECT_FALSE(synchronousServer().hasOpenPlayer(0));
  addPlayer(synchronousServer());
  addPlayer(synchronousServer());
  EXPECT_FALSE(threadedServer().hasOpenPlayer(1));
  synchronousServer().closePlayer(0);
  EXPECT_TRUE(threadedServer().hasOpenPlayer(0));
}

// ---- Events of the other's windows ----

TEST_F(TwoServersTest, AnEventThatThePassTookReachesTheSynchronousWindow) {
  openBoth();
  push(windowEvent(synchronousWindow, SDL_WINDOWEVENT_MOVED, 7, 8));
  ASSERT_TRUE(passes->runPass());
  EXPECT_EQ(storedPosition(synchronousServer(), synchronousPlayer), kPlace);
  drain();
  EXPECT_EQ(storedPosition(synchronousServer(), synchronousPlayer), (Position{7, 8}));
}

TEST_F(TwoServersTest, AnEventThatTheSynchronousDrainTookReachesTheThreadedWindow) {
  openBoth();
  push(windowEvent(threadedWindow, SDL_WINDOWEVENT_MOVED, 7, 8));
  drain();
  EXPECT_EQ(storedPosition(threadedServer(), threadedPlayer), kPlace);
  ASSERT_TRUE(passes->runPass());
  EXPECT_EQ(storedPosition(threadedServer(), threadedPlayer), (Position{7, 8}));
}

TEST_F(TwoServersTest, AnEventOfTheOtherEndsTheDrain) {
  openBoth();
  push(windowEvent(synchronousWindow, SDL_WINDOWEVENT_MOVED, 1, 2));
  push(windowEvent(threadedWindow, SDL_WINDOWEVENT_MOVED, 7, 8));
  ASSERT_TRUE(passes->runPass());
  EXPECT_EQ(storedPosition(threadedServer(), threadedPlayer), kPlace);
  ASSERT_TRUE(passes->runPass());
  EXPECT_EQ(storedPosition(threadedServer(), threadedPlayer), (Position{7, 8}));
}

TEST_F(TwoServersTest, ACloseButtonWorksWhicheverDrainTakesIt) {
  openBoth();
  push(windowEvent(synchronousWindow, SDL_WINDOWEVENT_CLOSE));
  ASSERT_TRUE(passes->runPass());
  drain();
  EXPECT_FALSE(synchronousServer().hasOpenPlayer(synchronousPlayer));
  SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);  // those of the end of the window
  push(windowEvent(threadedWindow, SDL_WINDOWEVENT_CLOSE));
  drain();
  ASSERT_TRUE(passes->runPass());
  EXPECT_FALSE(threadedServer().hasOpenPlayer(threadedPlayer));
}

TEST_F(TwoServersTest, EscapeWorksWhicheverDrainTakesIt) {
  openBoth(/*fullscreen=*/true);
  push(keyEvent(synchronousWindow, SDLK_ESCAPE));
  ASSERT_TRUE(passes->runPass());
  drain();
  EXPECT_FALSE(synchronousServer().isPlayerFullscreen(synchronousPlayer));
  SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);  // those of leaving full screen
  push(keyEvent(threadedWindow, SDLK_ESCAPE));
  drain();
  ASSERT_TRUE(passes->runPass());
  EXPECT_FALSE(threadedServer().isPlayerFullscreen(threadedPlayer));
}

TEST_F(TwoServersTest, AnEventForNobodysWindowIsDropped) {
  openBoth();
  push(windowEvent(kUnknownWindow, SDL_WINDOWEVENT_MOVED, 1, 2));
  ASSERT_TRUE(passes->runPass());
  recorder.forget();
  drain();
  EXPECT_EQ(recorder.calls("SDL_PollEvent").size(), 1U);
  EXPECT_EQ(recorder.last("SDL_PollEvent").result, 0);
}

TEST_F(TwoServersTest, AnEventWhoseWindowClosedMeanwhileIsDropped) {
  openBoth();
  push(windowEvent(synchronousWindow, SDL_WINDOWEVENT_CLOSE));
  ASSERT_TRUE(passes->runPass());
  synchronousServer().closePlayer(synchronousPlayer);
  drain();
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 1U);
}

// ---- The gate ----

TEST_F(TwoServersTest, ASynchronousCallDoesNotRunDuringAPass) {
  openBoth();
  passes.reset();
  std::atomic<bool> inPass{false};
  std::atomic<bool> passBegun{false};
  std::atomic<bool> calling{false};
  std::atomic<bool> drawnMeanwhile{false};
  std::atomic<bool> delivered{false};
  const SdlHook hook = recorder.before("SDL_RenderPresent", [&](const SdlCall&) {
    if (!isDisplayThread()) {
      if (inPass) drawnMeanwhile = true;
      return;
    }
    if (delivered) return;
    inPass = true;
    passBegun = true;
    EXPECT_TRUE(waitUntil([&] { return calling.load(); }));
    EXPECT_FALSE(waitUntil([&] { return delivered.load(); }, std::chrono::milliseconds(30)));
    inPass = false;
  });
  deliver(threadedServer(), threadedPlayer, noiseFrame(kFrameSize, 1));
  EXPECT_TRUE(waitUntil([&] { return passBegun.load(); }));
  calling = true;
  deliver(synchronousServer(), synchronousPlayer, noiseFrame(kFrameSize, 1));
  delivered = true;
  EXPECT_FALSE(drawnMeanwhile);
}

TEST_F(TwoServersTest, HostCallsOnThreadedPlayersDoNotWaitForTheGate) {
  openBoth();
  passes.reset();
  const Hold pass(recorder, "SDL_RenderPresent");
  deliver(threadedServer(), threadedPlayer, noiseFrame(kFrameSize, 1));
  ASSERT_TRUE(pass.isReached());
  // All these calls return although the display thread is halted inside a pass.
  deliver(threadedServer(), threadedPlayer, noiseFrame(kFrameSize, 2));
  threadedServer().windowGeometry(threadedPlayer);
  threadedServer().isPlayerFullscreen(threadedPlayer);
  threadedServer().raisePlayer(threadedPlayer);
  threadedServer().renamePlayer(threadedPlayer, "another");
  threadedServer().closePlayer(threadedPlayer);
  EXPECT_FALSE(threadedServer().hasOpenPlayer(threadedPlayer));
}

}  // namespace
}  // namespace framesink::test
