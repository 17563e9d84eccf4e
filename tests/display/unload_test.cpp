// The end of the process runs the servers' static destructors, as unloading the library does. Each
// test ends a child process, which runs the same test up to that point.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>

#include "display/server_instances.hpp"
#include "display_helpers.hpp"
#include "hold.hpp"
#include "process/host_calls.hpp"
#include "server_fixtures.hpp"
#include "support/os_facts.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kHostsStatus = 7;

// ---- Calls to SDL, without a screen ----

SdlRecorder* recorderAtExit = nullptr;
std::size_t serversAtExit = 0;

// Prints a failure on standard error, which GoogleTest shows for a failed death test.
void expectAtExit(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "At exit: %s\n", what);
  ::_exit(1);
}

// Runs after the servers have ended, because it is registered before they are made.
void checkTheEnd() {
  const Names order = recorderAtExit->order();
  const auto firstQuit = std::find(order.begin(), order.end(), "SDL_Quit");
  const Names threads = threadNames();
  expectAtExit(std::count(threads.begin(), threads.end(), "sdlVideoPlayers") == 0,
               "the display thread is still there");
  expectAtExit(recorderAtExit->count("SDL_Quit") == serversAtExit, "not one SDL_Quit per server");
  expectAtExit(std::find(firstQuit, order.end(), "SDL_DestroyWindow") == order.end(),
               "a window was destroyed after SDL_Quit");
  expectAtExit(
      recorderAtExit->count("SDL_DestroyWindow") == recorderAtExit->count("SDL_CreateWindow"),
      "a window was left to SDL_Quit");
  expectAtExit(std::find(firstQuit, order.end(), "SDL_PollEvent") == order.end(),
               "a pass ran after SDL_Quit");
}

class UnloadTest : public DummyVideoTest {
 protected:
  UnloadTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

  // Makes the servers in the given order, adds two players to each, and exits.
  void exitWith(const std::vector<bool>& synchronousFlags) {
    recorderAtExit = &recorder;
    serversAtExit = synchronousFlags.size();
    std::atexit(checkTheEnd);
    for (const bool synchronous : synchronousFlags) {
      SdlServer& server = serverFor(synchronous);
      addPlayer(server);
      hasWindow(server, addPlayer(server));
    }
    std::exit(kHostsStatus);
  }
};

using UnloadDeathTest = UnloadTest;

TEST_F(UnloadDeathTest, EndsTheThreadedServer) {
  EXPECT_EXIT(exitWith({false}), testing::ExitedWithCode(kHostsStatus), "");
}

TEST_F(UnloadDeathTest, EndsTheSynchronousServer) {
  EXPECT_EXIT(exitWith({true}), testing::ExitedWithCode(kHostsStatus), "");
}

TEST_F(UnloadDeathTest, StopsTheThreadFirstWhenTheThreadedServerWasMadeFirst) {
  EXPECT_EXIT(exitWith({false, true}), testing::ExitedWithCode(kHostsStatus), "");
}

TEST_F(UnloadDeathTest, StopsTheThreadFirstWhenTheSynchronousServerWasMadeFirst) {
  EXPECT_EXIT(exitWith({true, false}), testing::ExitedWithCode(kHostsStatus), "");
}

TEST_F(UnloadDeathTest, ShutsSdlDownForServersThatWereNeverUsed) {
  const auto exitUnused = [&] {
    recorderAtExit = &recorder;
    serversAtExit = 2;
    std::atexit(checkTheEnd);
    threadedServer();
    synchronousServer();
    std::exit(kHostsStatus);
  };
  EXPECT_EXIT(exitUnused(), testing::ExitedWithCode(kHostsStatus), "");
}

TEST_F(UnloadDeathTest, TurnsLateCallsAway) {
  const auto exitWithALateCaller = [] {
    std::atexit([] { expectAtExit(!HostCall(), "a late call was let in"); });
    std::atexit([] { expectAtExit(existingServer(false) == nullptr, "a server is still there"); });
    addPlayer(threadedServer());
    std::exit(kHostsStatus);
  };
  EXPECT_EXIT(exitWithALateCaller(), testing::ExitedWithCode(kHostsStatus), "");
}

// Another thread of the host waits for a window that the display thread cannot make yet.
TEST_F(UnloadDeathTest, EndsTheWaitsOfOtherThreads) {
  const auto exitWhileAnotherWaits = [&] {
    auto* hold = new Hold(recorder, "SDL_CreateWindow");
    addPlayer(threadedServer());
    expectAtExit(hold->isReached(), "no window was begun");
    recorder.forget();
    std::thread([hold] {
      {
        const HostCall call;
        expectAtExit(!threadedServer().windowGeometry(0), "the window came");
      }
      hold->release();
    }).detach();
    expectAtExit(waitUntil([&] { return recorder.count("SDL_Delay") > 2; }), "nobody waits");
    ::alarm(10);
    std::exit(kHostsStatus);
  };
  EXPECT_EXIT(exitWhileAnotherWaits(), testing::ExitedWithCode(kHostsStatus), "");
}

// ---- On a screen ----

class ScreenUnloadTest : public BareXTest {
 protected:
  ScreenUnloadTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

  void openWindows() {
    for (const bool synchronous : {false, true}) {
      SdlServer& display = serverFor(synchronous);
      for (int i = 0; i < 2; ++i) {
        const std::uint32_t player = addPlayer(display);
        hasWindow(display, player);
        deliver(display, player, noiseFrame(kFrameSize, 1));
      }
    }
  }
  static constexpr const char* kGone = "^The display is gone; the model runs on.\n$";

  // Delivers frames until the server's first player is closed, and a few more. Exits with status 3
  // if that takes too long.
  static void playUntilClosed(SdlServer& server) {
    const auto end = Clock::now() + kDeadline;
    while (server.hasOpenPlayer(0)) {
      if (Clock::now() > end) ::_exit(3);
      deliver(server, 0, noiseFrame(kFrameSize, 2));
    }
    for (int i = 0; i < 10; ++i) deliver(server, 0, noiseFrame(kFrameSize, 2));
  }
};

using ScreenUnloadDeathTest = ScreenUnloadTest;

TEST_F(ScreenUnloadDeathTest, ExitWithOpenWindowsReturnsTheHostsStatusAtOnce) {
  const auto exitInTime = [&] {
    openWindows();
    ::alarm(5);
    std::exit(kHostsStatus);
  };
  EXPECT_EXIT(exitInTime(), testing::ExitedWithCode(kHostsStatus), "");
}

TEST_F(ScreenUnloadDeathTest, AHostWithThreadedWindowsOutlivesTheXServer) {
  const auto loseServer = [&] {
    addPlayer(threadedServer());
    hasWindow(threadedServer(), 0);
    ::alarm(5);
    ::kill(server.pid(), SIGKILL);
    playUntilClosed(threadedServer());
    std::exit(kHostsStatus);
  };
  EXPECT_EXIT(loseServer(), testing::ExitedWithCode(kHostsStatus), kGone);
}

TEST_F(ScreenUnloadDeathTest, AHostWithSynchronousWindowsOutlivesTheXServer) {
  const auto loseServer = [&] {
    addPlayer(synchronousServer());
    ::alarm(5);
    ::kill(server.pid(), SIGKILL);
    playUntilClosed(synchronousServer());
    std::exit(kHostsStatus);
  };
  EXPECT_EXIT(loseServer(), testing::ExitedWithCode(kHostsStatus), kGone);
}

TEST_F(ScreenUnloadDeathTest, AHostWithBothOutlivesTheXServer) {
  const auto loseServer = [&] {
    openWindows();
    ::alarm(5);
    ::kill(server.pid(), SIGKILL);
    playUntilClosed(synchronousServer());
    playUntilClosed(threadedServer());
    std::exit(kHostsStatus);
  };
  EXPECT_EXIT(loseServer(), testing::ExitedWithCode(kHostsStatus), kGone);
}

TEST_F(ScreenUnloadDeathTest, AnInterruptEndsAHostWithWindowsByThatSignal) {
  const auto interrupt = [&] {
    openWindows();
    ::raise(SIGINT);
    ::_exit(3);
  };
  EXPECT_EXIT(interrupt(), testing::KilledBySignal(SIGINT), "");
}

TEST_F(ScreenUnloadTest, AForkOfTheHostEndsWithoutTouchingTheWindows) {
  const std::uint32_t player = addPlayer(threadedServer());
  const Window window = x.waitForWindow("player");
  const pid_t fork = ::fork();
  if (fork == 0) {
    ::alarm(10);
    std::exit(kHostsStatus);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(fork, &status, 0), fork);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == kHostsStatus) << "status " << status;
  const Frame frame = noiseFrame(kFrameSize, 1);
  deliver(threadedServer(), player, frame);
  EXPECT_TRUE(shows(x, window, pictureOf(frame)));
}

}  // namespace
}  // namespace framesink::test
