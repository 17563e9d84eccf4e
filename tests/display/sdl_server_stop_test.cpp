// How a threaded server ends, without a screen.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <thread>

#include "hold.hpp"
#include "pass_stepper.hpp"
#include "server_fixtures.hpp"
#include "support/capture_stderr.hpp"
#include "support/os_facts.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Clock = std::chrono::steady_clock;

bool isDisplayThreadThere() {
  const Names names = threadNames();
  return std::find(names.begin(), names.end(), "sdlVideoPlayers") != names.end();
}

class SdlServerStopTest : public ThreadedServerTest {
 protected:
  Numbers restsOf(int thread) const {
    Numbers rests;
    for (const SdlCall& call : recorder.calls("SDL_Delay")) {
      if (call.thread == thread) rests.push_back(call.arguments[0]);
    }
    return rests;
  }

  // Adds a player and halts the display thread in the middle of the pass that draws it.
  void holdDisplayThread() {
    hold.emplace(recorder, "SDL_RenderPresent");
    addPlayer(server);
    EXPECT_TRUE(hold->isReached());
  }
  void releaseDisplayThread() {
    hold->release();
    EXPECT_TRUE(waitUntil([] { return !isDisplayThreadThere(); }));
  }

  std::optional<Hold> hold;
};

TEST_F(SdlServerStopTest, WithoutAPlayerThereIsNothingToStop) {
  EXPECT_TRUE(server.stop());
  EXPECT_EQ(recorder.order(), Names{});
}

TEST_F(SdlServerStopTest, TheThreadIsGoneAfterwards) {
  open();
  ASSERT_TRUE(isDisplayThreadThere());
  EXPECT_TRUE(server.stop());
  EXPECT_FALSE(isDisplayThreadThere());
}

TEST_F(SdlServerStopTest, ReturnsFarWithinItsBound) {
  for (int i = 0; i < 4; ++i) open();
  const auto before = Clock::now();
  EXPECT_TRUE(server.stop());
  EXPECT_LT(Clock::now() - before, seconds(5));
}

TEST_F(SdlServerStopTest, TheDisplayThreadDestroysTheWindows) {
  open();
  open();
  EXPECT_TRUE(server.stop());
  EXPECT_FALSE(server.hasOpenPlayer(0));
  const auto destroyed = recorder.calls("SDL_DestroyWindow");
  ASSERT_EQ(destroyed.size(), 2U);
  for (const SdlCall& call : destroyed) EXPECT_NE(call.thread, hostThread);
}

TEST_F(SdlServerStopTest, TheMutexGoesAfterTheLastWindow) {
  open();
  const std::int64_t mutex = recorder.last("SDL_CreateMutex").result;
  EXPECT_TRUE(server.stop());
  const Names order = recorder.order();
  EXPECT_EQ(order.back(), "SDL_DestroyMutex");
  EXPECT_EQ(recorder.last("SDL_DestroyMutex").arguments, Numbers{mutex});
}

TEST_F(SdlServerStopTest, DoesNotShutSdlDown) {
  open();
  EXPECT_TRUE(server.stop());
  EXPECT_EQ(recorder.count("SDL_Quit"), 0U);
}

TEST_F(SdlServerStopTest, MayBeCalledTwice) {
  open();
  EXPECT_TRUE(server.stop());
  recorder.forget();
  EXPECT_TRUE(server.stop());
  EXPECT_EQ(recorder.order(), Names{});
}

TEST_F(SdlServerStopTest, NobodyIsAddedAfterwards) {
  open();
  EXPECT_TRUE(server.stop());
  recorder.forget();
  EXPECT_EQ(addPlayer(server), kNoPlayer);
  EXPECT_EQ(recorder.order(), Names{});
}

TEST_F(SdlServerStopTest, WaitsInStepsOfTenMillisecondsWhilePlayersAreListed) {
  holdDisplayThread();
  const SdlHook hook = recorder.before("SDL_Delay", [&](const SdlCall& call) {
    if (call.thread == hostThread && restsOf(hostThread).size() >= 3) hold->release();
  });
  EXPECT_TRUE(server.stop());
  const Numbers rests = restsOf(hostThread);
  EXPECT_GE(rests.size(), 3U);
  EXPECT_EQ(std::count(rests.begin(), rests.end(), 10), static_cast<std::ptrdiff_t>(rests.size()));
}

TEST_F(SdlServerStopTest, DoesNotRestWithSdlOnceNoPlayerIsListed) {
  server.closePlayer(open());
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_DestroyWindow") == 1; }));
  std::optional<PassStepper> passes(recorder);
  ASSERT_TRUE(passes->halted());
  std::atomic<bool> stopped{false};
  std::thread host([&] {
    EXPECT_TRUE(server.stop());
    stopped = true;
  });
  EXPECT_FALSE(waitUntil([&] { return stopped.load(); }, milliseconds(30)));
  passes.reset();
  host.join();
  for (const SdlCall& rest : recorder.calls("SDL_Delay")) EXPECT_NE(rest.arguments[0], 10);
}

// SDL_Delay returns at once here, so that 20 s of waiting take no time.
TEST_F(SdlServerStopTest, WaitsAtMostTwentySecondsForThePlayersToGo) {
  holdDisplayThread();
  recorder.forget();
  recorder.refuse("SDL_Delay");
  EXPECT_FALSE(server.stop());
  EXPECT_EQ(restsOf(hostThread), Numbers(2000, 10));
  EXPECT_EQ(recorder.count("SDL_DestroyMutex"), 0U) << "the thread still uses it";
  recorder.permit("SDL_Delay");
  releaseDisplayThread();
  EXPECT_TRUE(server.stop());
  EXPECT_EQ(recorder.count("SDL_DestroyMutex"), 1U);
}

TEST_F(SdlServerStopTest, WaitsItsTwentySecondsOnlyOnce) {
  holdDisplayThread();
  recorder.refuse("SDL_Delay");
  EXPECT_FALSE(server.stop());
  recorder.permit("SDL_Delay");
  recorder.forget();
  const auto before = Clock::now();
  EXPECT_FALSE(server.stop());
  EXPECT_LT(Clock::now() - before, seconds(5));
  EXPECT_EQ(restsOf(hostThread), Numbers{});
  releaseDisplayThread();
}

TEST_F(SdlServerStopTest, DoesNotWaitOnTheDisplayThreadItself) {
  std::atomic<bool> stopped{false};
  std::atomic<bool> answer{true};
  std::atomic<int> displayThread{0};
  const SdlHook hook = recorder.before("SDL_RenderPresent", [&](const SdlCall& call) {
    if (stopped) return;
    displayThread = call.thread;
    answer = server.stop();
    stopped = true;
  });
  addPlayer(server);
  EXPECT_TRUE(waitUntil([&] { return stopped.load(); }, seconds(5)));
  EXPECT_FALSE(answer);
  const Numbers rests = restsOf(displayThread);
  EXPECT_EQ(std::count(rests.begin(), rests.end(), 10), 0);
  EXPECT_TRUE(server.stop()) << "another thread can still stop the server";
}

TEST_F(SdlServerStopTest, WithoutAThreadItDoesNotWait) {
  recorder.refuse("SDL_CreateThread");
  const CaptureStderr said;
  addPlayer(server);
  EXPECT_TRUE(server.hasOpenPlayer(0));
  EXPECT_TRUE(server.stop());
  EXPECT_EQ(restsOf(hostThread), Numbers{});
}

// ---- The destructor ----

class SdlServerDestructorTest : public DummyVideoTest {};

TEST_F(SdlServerDestructorTest, ShutsSdlDownForAServerThatWasNeverUsedToo) {
  { const SdlServer server(true); }
  EXPECT_EQ(recorder.order(), Names{"SDL_Quit"});
}

TEST_F(SdlServerDestructorTest, StopsTheServerAndShutsSdlDown) {
  {
    SdlServer server(true);
    addPlayer(server);
    hasWindow(server, 0);
  }
  EXPECT_FALSE(isDisplayThreadThere());
  EXPECT_EQ(recorder.count("SDL_DestroyWindow"), 1U);
  EXPECT_EQ(recorder.order().back(), "SDL_Quit");
  EXPECT_EQ(recorder.count("SDL_Quit"), 1U);
}

}  // namespace
}  // namespace framesink::test
