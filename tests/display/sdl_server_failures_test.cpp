// A threaded server when SDL or memory fails: it prints errors, and hosts never hang.
#include <SDL.h>
#include <gtest/gtest.h>

#include "events.hpp"
#include "pass_stepper.hpp"
#include "server_fixtures.hpp"
#include "support/allocations.hpp"
#include "support/capture_stderr.hpp"
#include "support/foreign_leaks.hpp"

namespace framesink::test {
namespace {

class SdlServerFailureTest : public ThreadedServerTest {
 protected:
  // Every call that waits for a window returns what it returns for an unknown player.
  void expectAbsent(std::uint32_t player) {
    EXPECT_FALSE(server.windowGeometry(player));
    EXPECT_EQ(server.getWindowWidth(player), 0U);
    EXPECT_EQ(server.getWindowHeight(player), 0U);
    EXPECT_EQ(server.getWindowX(player), 0U);
    EXPECT_EQ(server.getWindowY(player), 0U);
    EXPECT_EQ(server.getFrameWidth(player), 0);
    EXPECT_EQ(server.getFrameHeight(player), 0);
    EXPECT_FALSE(server.isPlayerFullscreen(player));
    server.raisePlayer(player);
    server.renamePlayer(player, "title");
  }
  // The host can still call everything on a player whose window failed.
  void expectUsable(std::uint32_t player) {
    EXPECT_TRUE(server.windowGeometry(player));
    EXPECT_EQ(server.getFrameWidth(player), static_cast<std::int32_t>(kFrameSize.width));
    deliver(server, player, noiseFrame(kFrameSize, 1));
    server.raisePlayer(player);
    server.renamePlayer(player, "title");
    server.closePlayer(player);
    EXPECT_FALSE(server.hasOpenPlayer(player));
  }
  bool awaitText(const CaptureStderr& said, const std::string& text) {
    return waitUntil([&] { return said.text() == text; }, std::chrono::seconds(5));
  }
};

TEST_F(SdlServerFailureTest, WithoutSdlTheDisplayThreadTellsAndContinues) {
  const ScopedVariable none("SDL_VIDEODRIVER", "no_such_driver");
  const CaptureStderr said;
  const std::uint32_t player = addPlayer(server);
  EXPECT_TRUE(hasWindow(server, player));
  EXPECT_TRUE(awaitText(said,
                        "Could not initialize SDL: no_such_driver not available\n"
                        "Internal error: SDL video subsystem is not initialized.\n"
                        "Could not create window: no_such_driver not available\n"))
      << said.text();
  expectUsable(player);
}

TEST_F(SdlServerFailureTest, AFailedInitialisationStillEnablesTheScreenSaver) {
  recorder.refuse("SDL_Init");
  const CaptureStderr said;
  open();
  EXPECT_EQ(recorder.count("SDL_EnableScreenSaver"), 1U);
}

TEST_F(SdlServerFailureTest, WithoutAThreadPlayersNeverGetWindowsAndHostsDoNotWait) {
  recorder.refuse("SDL_CreateThread");
  const CaptureStderr said;
  EXPECT_EQ(addPlayer(server), 0U);
  EXPECT_EQ(addPlayer(server), 1U);
  EXPECT_EQ(said.text(), "Internal error: SDL_CreateThread failed: refused by the test\n");
  expectAbsent(0);
  deliver(server, 0, noiseFrame(kFrameSize, 1));
  EXPECT_TRUE(server.hasOpenPlayer(0));
  server.closePlayer(0);
  EXPECT_FALSE(server.hasOpenPlayer(0));
  EXPECT_EQ(recorder.count("SDL_CreateWindow"), 0U);
}

TEST_F(SdlServerFailureTest, WithoutAMutexNobodyIsAddedAndNobodySpins) {
  recorder.refuse("SDL_CreateMutex");
  EXPECT_EQ(addPlayer(server), kNoPlayer);
  EXPECT_EQ(addPlayer(server), kNoPlayer);
  expectAbsent(0);
  expectAbsent(kNoPlayer);
  EXPECT_TRUE(server.stop());
}

TEST_F(SdlServerFailureTest, ALockThatFailsForeverEndsWhenTheLibraryLeaves) {
  open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.halted());
  recorder.refuse("SDL_LockMutex");
  const SdlHook hook = recorder.before("SDL_Delay", [&](const SdlCall&) { server.beginLeaving(); });
  EXPECT_EQ(addPlayer(server), kNoPlayer);
  recorder.permit("SDL_LockMutex");
}

TEST_F(SdlServerFailureTest, AWindowThatSdlRefusesCountsAsMade) {
  recorder.refuse("SDL_CreateWindow");
  const CaptureStderr said;
  const std::uint32_t player = addPlayer(server);
  EXPECT_TRUE(awaitText(said, "Could not create window: refused by the test\n"));
  expectUsable(player);
}

TEST_F(SdlServerFailureTest, AFullScreenWindowThatSdlRefusesCountsAsMade) {
  recorder.refuse("SDL_CreateWindow");
  const CaptureStderr said;
  const std::uint32_t player = addPlayer(server, {.fullscreen = true});
  EXPECT_FALSE(server.isPlayerFullscreen(player));
  expectUsable(player);
}

TEST_F(SdlServerFailureTest, WithoutRendererOrTextureThePlayerStaysUsable) {
  for (const char* function : {"SDL_CreateRenderer", "SDL_CreateTexture"}) {
    recorder.refuse(function);
    const CaptureStderr said;
    expectUsable(addPlayer(server));
    recorder.permit(function);
  }
}

TEST_F(SdlServerFailureTest, APlayerWithoutAnSdlWindowIsClosed) {
  recorder.refuse("SDL_CreateWindow", 1, 1);
  const CaptureStderr said;
  const std::uint32_t failed = open();
  const std::uint32_t sound = open();
  server.closePlayer(failed);
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPasses(2));
  EXPECT_FALSE(server.windowGeometry(failed));
  EXPECT_TRUE(server.windowGeometry(sound));
}

TEST_F(SdlServerFailureTest, NoMemoryForAWindowLeavesThePlayerWithoutAndHostsDoNotWait) {
  PassStepper passes(recorder);
  const std::uint32_t first = addPlayer(server);
  ASSERT_TRUE(passes.runPass());
  const std::uint32_t second = addPlayer(server);
  ASSERT_TRUE(passes.runPass(failNextAllocation));  // the allocation of the window
  EXPECT_EQ(recorder.count("SDL_CreateWindow"), 1U);
  expectAbsent(second);
  EXPECT_TRUE(server.hasOpenPlayer(second));
  EXPECT_TRUE(server.windowGeometry(first));
  server.closePlayer(second);
  ASSERT_TRUE(passes.runPass());
  EXPECT_FALSE(server.hasOpenPlayer(second));
}

// ---- A lost texture ----

class SdlServerLostTextureTest : public SdlServerFailureTest {
 protected:
  SdlServerLostTextureTest() {
    expectLeaks();
    SDL_LogSetOutputFunction([](void*, int, SDL_LogPriority, const char*) {}, nullptr);
  }

  // Adds two players, then lets SDL fail to lock the texture of the first.
  void loseTexture() {
    open();
    open();
    PassStepper passes(recorder);
    ASSERT_TRUE(passes.runPass());
    recorder.refuse("SDL_LockTexture", 1, 1);
    deliver(server, 0, noiseFrame(kFrameSize, 1));
    deliver(server, 1, noiseFrame(kFrameSize, 1));
    recorder.forget();
    ASSERT_TRUE(passes.runPass());
  }
};

TEST_F(SdlServerLostTextureTest, ShutsSdlDownAndDrawsNothingMore) {
  loseTexture();
  EXPECT_EQ(recorder.count("SDL_Quit"), 1U);
  EXPECT_EQ(recorder.count("SDL_LockTexture"), 1U);
  EXPECT_EQ(recorder.count("SDL_RenderPresent"), 0U);
}

TEST_F(SdlServerLostTextureTest, HostsGoOnWithoutHanging) {
  loseTexture();
  recorder.forget();
  for (const std::uint32_t player : {0U, 1U}) {
    EXPECT_FALSE(server.isPlayerFullscreen(player));
    expectUsable(player);
  }
  for (const char* function : {"SDL_RaiseWindow", "SDL_SetWindowTitle", "SDL_GetWindowFlags"}) {
    EXPECT_EQ(recorder.count(function), 0U) << function;
  }
}

TEST_F(SdlServerLostTextureTest, ClosingReleasesNothingOfTheLostSdl) {
  loseTexture();
  recorder.forget();
  server.closePlayer(0);
  EXPECT_TRUE(server.stop());
  EXPECT_FALSE(server.hasOpenPlayer(1));
  for (const char* function : {"SDL_DestroyWindow", "SDL_DestroyRenderer", "SDL_DestroyTexture"}) {
    EXPECT_EQ(recorder.count(function), 0U) << function;
  }
}

// SDL numbers its windows from 1 again after SDL_Quit, so a later window has the id of a lost one.
TEST_F(SdlServerLostTextureTest, AWindowOfTheLostSdlGetsNoEventsOfALaterOne) {
  loseTexture();
  const std::uint32_t later = open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPasses(2));
  push(windowEvent(lastWindowId(), SDL_WINDOWEVENT_MOVED, 7, 8));
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(server.windowGeometry(later)->position, (Position{7, 8}));
  EXPECT_EQ(server.windowGeometry(0)->position, kPlace);
}

}  // namespace
}  // namespace framesink::test
