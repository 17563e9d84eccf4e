// The threaded server, pass by pass, without a screen.
#include "display/sdl_server.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "events.hpp"
#include "pass_stepper.hpp"
#include "process/sdl_session.hpp"
#include "server_fixtures.hpp"
#include "shown_frames.hpp"
#include "support/allocations.hpp"
#include "support/capture_stderr.hpp"
#include "support/frames.hpp"
#include "support/os_facts.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {
namespace {

class SdlServerTest : public ThreadedServerTest {
 protected:
  // How long the display thread slept after each pass, in milliseconds.
  Numbers passRests() const {
    Numbers rests;
    for (const SdlCall& call : recorder.calls("SDL_Delay")) {
      if (call.thread != hostThread) rests.push_back(call.arguments[0]);
    }
    return rests;
  }
};

// ---- Start ----

TEST_F(SdlServerTest, AsksNothingOfSdlBeforeTheFirstPlayer) {
  EXPECT_FALSE(server.hasOpenPlayer(0));
  EXPECT_EQ(recorder.order(), Names{});
}

TEST_F(SdlServerTest, TheFirstPlayerInitialisesSdlAndStartsTheDisplayThread) {
  addPlayer(server);
  const Names starting{"SDL_Init", "SDL_EnableScreenSaver", "SDL_CreateMutex", "SDL_CreateThread"};
  Names order;
  for (const SdlCall& call : recorder.calls()) {
    const bool isStarting =
        std::find(starting.begin(), starting.end(), call.function) != starting.end();
    if (isStarting && call.thread == hostThread) order.push_back(call.function);
  }
  EXPECT_EQ(order, starting);
  EXPECT_EQ(recorder.last("SDL_CreateThread").texts, Names{"sdlVideoPlayers"});
}

TEST_F(SdlServerTest, AFurtherPlayerStartsNothing) {
  addPlayer(server);
  addPlayer(server);
  for (const char* function :
       {"SDL_Init", "SDL_EnableScreenSaver", "SDL_CreateMutex", "SDL_CreateThread"}) {
    EXPECT_EQ(recorder.count(function), 1U) << function;
  }
}

// All hosts reach the gate before one may start the server, so each has found it not started.
TEST_F(SdlServerTest, StartsOneThreadForPlayersAddedAtTheSameTime) {
  std::array<std::atomic<int>, 4> threads{};
  std::vector<std::thread> hosts;
  {
    const std::lock_guard gate(sdlGate);
    for (auto& thread : threads) {
      hosts.emplace_back([&] {
        thread = static_cast<int>(currentThread());
        addPlayer(server);
      });
    }
    for (const auto& thread : threads) {
      EXPECT_TRUE(waitUntil([&] { return thread != 0 && isAsleep(thread); }));
    }
    EXPECT_EQ(recorder.order(), Names{}) << "a host passed the gate";
  }
  for (auto& host : hosts) host.join();
  EXPECT_EQ(recorder.count("SDL_CreateMutex"), 1U);
  EXPECT_EQ(recorder.count("SDL_CreateThread"), 1U);
  for (std::uint32_t player = 0; player < 4; ++player) EXPECT_TRUE(hasWindow(server, player));
}

TEST_F(SdlServerTest, TheDisplayThreadIsNamedSdlVideoPlayers) {
  open();
  const Names names = threadNames();
  EXPECT_EQ(std::count(names.begin(), names.end(), "sdlVideoPlayers"), 1);
}

TEST_F(SdlServerTest, CountsPlayerIdsFrom0AndNeverReusesOne) {
  EXPECT_EQ(addPlayer(server), 0U);
  EXPECT_EQ(addPlayer(server), 1U);
  server.closePlayer(0);
  server.closePlayer(1);
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_DestroyWindow") == 2; }));
  EXPECT_EQ(addPlayer(server), 2U);
  EXPECT_EQ(addPlayer(server), 3U);
}

// ---- Threads ----

TEST_F(SdlServerTest, MakesDrawsAndDestroysWindowsOnTheDisplayThreadAlone) {
  const std::uint32_t player = open();
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_RenderPresent") >= 1; }));
  deliver(server, player, noiseFrame(kFrameSize, 1));
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_RenderPresent") >= 2; }));
  server.closePlayer(player);
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_DestroyWindow") == 1; }));
  const int displayThread = recorder.last("SDL_CreateWindow").thread;
  EXPECT_NE(displayThread, hostThread);
  for (const SdlCall& call : recorder.calls()) {
    const bool isStart = call.function == "SDL_Init" || call.function == "SDL_WasInit" ||
                         call.function == "SDL_EnableScreenSaver" ||
                         call.function == "SDL_SetHintWithPriority" ||
                         call.function == "SDL_CreateThread";
    const bool isLock = call.function.find("Mutex") != std::string::npos;
    if (isStart || isLock || call.function == "SDL_Delay") continue;
    EXPECT_EQ(call.thread, displayThread) << call.function;
  }
}

TEST_F(SdlServerTest, AFrameCostsTheHostNoCallOfSdlAndNoAllocation) {
  const std::uint32_t player = open();
  const Frame frame = noiseFrame(kFrameSize, 1);
  const PassStepper passes(recorder);
  recorder.forget();
  const std::size_t before = allocationCount();
  deliver(server, player, frame);
  EXPECT_EQ(allocationCount(), before);
  for (const SdlCall& call : recorder.calls()) EXPECT_NE(call.thread, hostThread) << call.function;
}

TEST_F(SdlServerTest, OnlyAddPlayerTakesTheLock) {
  const std::uint32_t player = open();
  recorder.forget();
  deliver(server, player, noiseFrame(kFrameSize, 1));
  server.hasOpenPlayer(player);
  server.windowGeometry(player);
  server.isPlayerFullscreen(player);
  server.raisePlayer(player);
  server.renamePlayer(player, "another");
  server.closePlayer(player);
  const auto locksOfTheHost = [&] {
    const auto locks = recorder.calls("SDL_LockMutex");
    return std::count_if(locks.begin(), locks.end(),
                         [&](const SdlCall& call) { return call.thread == hostThread; });
  };
  EXPECT_EQ(locksOfTheHost(), 0);
  addPlayer(server);
  EXPECT_EQ(locksOfTheHost(), 1);
}

// ---- Passes ----

TEST_F(SdlServerTest, RestsOneMillisecondBetweenPassesWithPlayersAndThreeWithout) {
  PassStepper passes(recorder);
  const std::uint32_t player = addPlayer(server);
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(passRests().back(), 1);
  server.closePlayer(player);
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(passRests().back(), 3);
}

TEST_F(SdlServerTest, APassIsOneLockOneWalkAndOneDrain) {
  open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPass());
  recorder.forget();
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.order(),
            (Names{"SDL_PollEvent", "SDL_UnlockMutex", "SDL_Delay", "SDL_LockMutex"}))
      << "the calls after one lock up to the next";
}

TEST_F(SdlServerTest, MakesTheWindowAndShowsTheInitialFrameInOnePass) {
  PassStepper passes(recorder);
  const ShownFrames shown(recorder, kFrameSize);
  addPlayer(server);
  ASSERT_TRUE(passes.halted());
  EXPECT_EQ(recorder.count("SDL_CreateWindow"), 0U);
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.count("SDL_CreateWindow"), 1U);
  EXPECT_EQ(shown.all(), std::vector<Image>{pictureOf(plainFrame(kFrameSize, 0))});
}

TEST_F(SdlServerTest, ShowsOnlyTheThirdOfThreeFramesDeliveredBetweenTwoPasses) {
  const std::uint32_t player = open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPass());
  const ShownFrames shown(recorder, kFrameSize);
  for (const std::uint32_t seed : {1, 2, 3}) deliver(server, player, noiseFrame(kFrameSize, seed));
  ASSERT_TRUE(passes.runPasses(3));
  EXPECT_EQ(shown.all(), std::vector<Image>{pictureOf(noiseFrame(kFrameSize, 3))});
}

TEST_F(SdlServerTest, ShowsAFrameThatComesWhileAnotherIsDrawnOnTheNextPass) {
  const std::uint32_t player = open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPass());
  bool first = true;
  const ShownFrames shown(recorder, kFrameSize, [&] {
    if (std::exchange(first, false)) deliver(server, player, noiseFrame(kFrameSize, 2));
  });
  deliver(server, player, noiseFrame(kFrameSize, 1));
  ASSERT_TRUE(passes.runPasses(2));
  EXPECT_EQ(shown.last(), pictureOf(noiseFrame(kFrameSize, 2)));
}

TEST_F(SdlServerTest, APassWithoutNewFramesDrawsNothing) {
  open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPass());
  recorder.forget();
  ASSERT_TRUE(passes.runPasses(3));
  EXPECT_EQ(recorder.count("SDL_LockTexture"), 0U);
}

TEST_F(SdlServerTest, AFrameOfAnotherSizeIsNotTaken) {
  const std::uint32_t player = open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPass());
  recorder.forget();
  for (const Size size : kOtherSizes) deliver(server, player, noiseFrame(size, 1));
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.count("SDL_LockTexture"), 0U);
}

// The library's own decision: the walk goes by index, and a removal moves the later entries down,
// so that pass skips the next one.
TEST_F(SdlServerTest, TheEntryThatMovesDownIsServedOnTheNextPass) {
  const std::uint32_t first = open();
  const std::uint32_t second = open();
  const std::int64_t secondTexture = recorder.last("SDL_CreateTexture").result;
  const std::uint32_t third = open();
  const std::int64_t thirdTexture = recorder.last("SDL_CreateTexture").result;
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPass());
  server.closePlayer(first);
  deliver(server, second, noiseFrame(kFrameSize, 2));
  deliver(server, third, noiseFrame(kFrameSize, 3));

  recorder.forget();
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.count("SDL_LockTexture"), 1U);
  EXPECT_EQ(recorder.last("SDL_LockTexture").arguments[0], thirdTexture);
  recorder.forget();
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.count("SDL_LockTexture"), 1U);
  EXPECT_EQ(recorder.last("SDL_LockTexture").arguments[0], secondTexture);
}

TEST_F(SdlServerTest, APassThatCannotHaveTheLockServesNobody) {
  const std::uint32_t player = open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPass());
  recorder.refuse("SDL_LockMutex", 1, 1);
  ASSERT_TRUE(passes.runPass());  // ends before the refused lock
  deliver(server, player, noiseFrame(kFrameSize, 1));
  recorder.forget();
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.order(), (Names{"SDL_Delay", "SDL_LockMutex"}));
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.count("SDL_LockTexture"), 1U);
}

TEST_F(SdlServerTest, AddPlayerTriesAFailedLockAgainAfterAMillisecond) {
  open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.halted());
  recorder.forget();
  recorder.refuse("SDL_LockMutex", 1, 3);
  EXPECT_EQ(addPlayer(server), 1U);
  EXPECT_EQ(recorder.order(),
            (Names{"SDL_LockMutex", "SDL_Delay", "SDL_LockMutex", "SDL_Delay", "SDL_LockMutex",
                   "SDL_Delay", "SDL_LockMutex", "SDL_UnlockMutex"}));
  for (const SdlCall& rest : recorder.calls("SDL_Delay")) EXPECT_EQ(rest.arguments, Numbers{1});
}

// ---- Closing ----

TEST_F(SdlServerTest, ACloseButtonAsksAndTheNextPassCloses) {
  const std::uint32_t player = open();
  const std::uint32_t window = lastWindowId();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPass());
  ASSERT_TRUE(push(windowEvent(window, SDL_WINDOWEVENT_CLOSE)));
  EXPECT_TRUE(server.hasOpenPlayer(player));
  ASSERT_TRUE(passes.runPass());
  EXPECT_FALSE(server.hasOpenPlayer(player));
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 0U);
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 1U);
}

TEST_F(SdlServerTest, ClosePlayerAsksAndTheNextPassCloses) {
  const std::uint32_t player = open();
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.halted());
  server.closePlayer(player);
  EXPECT_FALSE(server.hasOpenPlayer(player));
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 0U);
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 1U);
}

TEST_F(SdlServerTest, AClosedPlayerTakesNoFramesAndNothingIsReported) {
  const std::uint32_t player = open();
  server.closePlayer(player);
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_DestroyWindow") == 1; }));
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.runPass());
  recorder.forget();
  const CaptureStderr said;
  deliver(server, player, noiseFrame(kFrameSize, 1));
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.count("SDL_LockTexture"), 0U);
  EXPECT_EQ(said.text(), "");
}

TEST_F(SdlServerTest, APlayerClosedBeforeItsFirstPassStillOpensAndCloses) {
  PassStepper passes(recorder);
  server.closePlayer(addPlayer(server));
  ASSERT_TRUE(passes.runPass());
  EXPECT_EQ(recorder.count("SDL_CreateWindow"), 1U);
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 1U);
}

TEST_F(SdlServerTest, TheLastPlayersGoingLeavesThreadAndSdlUp) {
  server.closePlayer(open());
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_DestroyWindow") == 1; }));
  EXPECT_NE(SDL_WasInit(SDL_INIT_VIDEO), 0U);
  EXPECT_EQ(recorder.count("SDL_Quit"), 0U);
  EXPECT_TRUE(hasWindow(server, addPlayer(server)));
  EXPECT_EQ(recorder.count("SDL_CreateThread"), 1U);
}

}  // namespace
}  // namespace framesink::test
