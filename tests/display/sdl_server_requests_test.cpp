// What host threads ask of the threaded server, and when their waits end.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "display/sdl_server.hpp"
#include "hold.hpp"
#include "pass_stepper.hpp"
#include "server_fixtures.hpp"
#include "support/frames.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {
namespace {

class SdlServerRequestsTest : public ThreadedServerTest {
 protected:
  // False as well when there is no answer within 10 s.
  template <class Predicate>
  static bool holdsInAFork(Predicate holds) {
    const pid_t fork = ::fork();
    if (fork == 0) {
      ::alarm(10);
      ::_exit(holds() ? 0 : 1);
    }
    int status = -1;
    return ::waitpid(fork, &status, 0) == fork && status == 0;
  }
};

// ---- Asking about players ----

TEST_F(SdlServerRequestsTest, KnowsItsPlayersFrameSizeAndGeometry) {
  const std::uint32_t player = open({.windowSize = Size{320, 240}, .position = {12, 34}});
  EXPECT_EQ(server.getFrameWidth(player), 64);
  EXPECT_EQ(server.getFrameHeight(player), 48);
  EXPECT_EQ(server.getWindowWidth(player), 320U);
  EXPECT_EQ(server.getWindowHeight(player), 240U);
  EXPECT_EQ(server.getWindowX(player), 12U);
  EXPECT_EQ(server.getWindowY(player), 34U);
  EXPECT_FALSE(server.isPlayerFullscreen(player));
  EXPECT_TRUE(server.hasOpenPlayer(player));
}

TEST_F(SdlServerRequestsTest, AnUnknownPlayerYieldsNothingAndNoAction) {
  open();
  recorder.forget();
  const std::uint32_t unknown = 99;
  EXPECT_FALSE(server.hasOpenPlayer(unknown));
  EXPECT_FALSE(server.isPlayerFullscreen(unknown));
  EXPECT_EQ(server.getFrameWidth(unknown), 0);
  EXPECT_EQ(server.getFrameHeight(unknown), 0);
  EXPECT_EQ(server.getWindowWidth(unknown), 0U);
  EXPECT_EQ(server.getWindowHeight(unknown), 0U);
  EXPECT_EQ(server.getWindowX(unknown), 0U);
  EXPECT_EQ(server.getWindowY(unknown), 0U);
  EXPECT_FALSE(server.windowGeometry(unknown));
  server.raisePlayer(unknown);
  server.renamePlayer(unknown, "title");
  server.closePlayer(unknown);
  deliver(server, unknown, noiseFrame(kFrameSize, 1));
  for (const SdlCall& call : recorder.calls()) EXPECT_NE(call.thread, hostThread) << call.function;
}

TEST_F(SdlServerRequestsTest, WaitsForTheWindowInStepsOfTwoMilliseconds) {
  PassStepper passes(recorder);
  const std::uint32_t player = addPlayer(server);
  ASSERT_TRUE(passes.halted());
  recorder.forget();
  std::atomic<int> waiter{0};
  std::thread host([&] {
    waiter = static_cast<int>(currentThread());
    EXPECT_EQ(server.getWindowWidth(player), kFrameSize.width);
  });
  const auto restsOfTheWaiter = [&] {
    const auto rests = recorder.calls("SDL_Delay");
    return std::count_if(rests.begin(), rests.end(), [&](const SdlCall& call) {
      return call.thread == waiter && call.arguments == Numbers{2};
    });
  };
  EXPECT_TRUE(waitUntil([&] { return restsOfTheWaiter() >= 3; }));
  EXPECT_TRUE(passes.runPass());
  host.join();
}

// No host thread is ever inside SDL's window code beside the display thread.
TEST_F(SdlServerRequestsTest, RenamesAndRaisesAWindowInTheNextPass) {
  const std::uint32_t player = open();
  const std::int64_t window = recorder.last("SDL_CreateWindow").result;
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.halted());
  server.renamePlayer(player, "one");
  server.renamePlayer(player, "another");
  server.raisePlayer(player);
  EXPECT_EQ(recorder.count("SDL_SetWindowTitle"), 0U);
  EXPECT_EQ(recorder.count("SDL_RaiseWindow"), 0U);
  EXPECT_TRUE(passes.runPasses(2));
  EXPECT_EQ(recorder.count("SDL_SetWindowTitle"), 1U);
  EXPECT_EQ(recorder.last("SDL_SetWindowTitle").texts, Names{"another"});
  EXPECT_EQ(recorder.last("SDL_SetWindowTitle").arguments[0], window);
  EXPECT_EQ(recorder.count("SDL_RaiseWindow"), 1U);
  EXPECT_EQ(recorder.last("SDL_RaiseWindow").arguments, Numbers{window});
  EXPECT_NE(recorder.last("SDL_RaiseWindow").thread, hostThread);
}

// The window that was raised last is on top.
TEST_F(SdlServerRequestsTest, RaisesWindowsInTheOrderOfTheRequests) {
  const std::uint32_t first = open();
  const std::int64_t firstWindow = recorder.last("SDL_CreateWindow").result;
  const std::uint32_t second = open();
  const std::int64_t secondWindow = recorder.last("SDL_CreateWindow").result;
  PassStepper passes(recorder);
  ASSERT_TRUE(passes.halted());
  for (const std::uint32_t player : {first, second, first}) server.raisePlayer(player);
  EXPECT_TRUE(passes.runPasses(2));
  const auto raises = recorder.calls("SDL_RaiseWindow");
  ASSERT_EQ(raises.size(), 2U);
  EXPECT_EQ(raises[0].arguments, Numbers{secondWindow});
  EXPECT_EQ(raises[1].arguments, Numbers{firstWindow});
}

TEST_F(SdlServerRequestsTest, AWaitEndsForAPlayerThatIsClosed) {
  PassStepper passes(recorder);
  const std::uint32_t player = addPlayer(server);
  ASSERT_TRUE(passes.halted());
  std::thread host([&] { server.getWindowWidth(player); });
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_Delay") > 0; }));
  server.closePlayer(player);
  EXPECT_TRUE(passes.runPass());
  host.join();
}

TEST_F(SdlServerRequestsTest, AWaitEndsWhenTheLibraryIsLeaving) {
  PassStepper passes(recorder);
  const std::uint32_t player = addPlayer(server);
  ASSERT_TRUE(passes.halted());
  std::thread host([&] {
    EXPECT_EQ(server.getWindowWidth(player), 0U);
    EXPECT_FALSE(server.isPlayerFullscreen(player));
  });
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_Delay") > 0; }));
  server.beginLeaving();
  host.join();
}

TEST_F(SdlServerRequestsTest, AWaitEndsInAForkTakenWhileTheWindowIsBeingMade) {
  const Hold hold(recorder, "SDL_CreateWindow");
  const std::uint32_t player = addPlayer(server);
  ASSERT_TRUE(hold.isReached());
  EXPECT_TRUE(holdsInAFork([&] {
    server.renamePlayer(player, "another");
    return !server.windowGeometry(player);
  }));
}

// The held display thread owns the server's mutex; in the fork nobody ever unlocks it.
TEST_F(SdlServerRequestsTest, AddsNobodyInAForkTakenDuringAPass) {
  const Hold hold(recorder, "SDL_CreateWindow");
  addPlayer(server);
  ASSERT_TRUE(hold.isReached());
  EXPECT_TRUE(holdsInAFork([&] { return addPlayer(server) == kNoPlayer; }));
}

TEST_F(SdlServerRequestsTest, AddsNobodyWhileTheLibraryIsLeaving) {
  server.beginLeaving();
  EXPECT_EQ(addPlayer(server), kNoPlayer);
  EXPECT_EQ(recorder.order(), Names{});
}

}  // namespace
}  // namespace framesink::test
