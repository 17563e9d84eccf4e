// A window manager that hangs while a window is made: the display thread is stuck inside SDL.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <iostream>
#include <string>

#include "host_process.hpp"
#include "support/os_facts.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

using namespace std::chrono_literals;

constexpr int kHostsStatus = 7;

// Each test starts a separate display, because it stops that display's window manager.
class Stuck : public testing::Test {
 protected:
  // No leak check: when the display thread is stuck, the library leaves Xlib's and SDL's memory.
  HostProcess start(const std::string& deed) {
    return HostProcess("stuck_host", {deed}, {"ASAN_OPTIONS=detect_leaks=0"});
  }

  void hangManager(HostProcess& host) {
    ASSERT_TRUE(host.says("open"));
    x.waitForWindow("stuck A");
    x.waitForWindow("stuck B");
    manager.hang();
  }

  // SDL sets the title before it waits until the window is shown, so window C can be found.
  void untilStuck(HostProcess& host) {
    hangManager(host);
    host.process().signal(SIGUSR1);
    ASSERT_TRUE(host.says("asked"));
    ASSERT_TRUE(waitUntil([&] { return x.findWindow("stuck C").has_value(); }));
    ASSERT_TRUE(waitUntil([&] { return displaySleepsOn(host); }));
  }

  static bool displaySleepsOn(HostProcess& host) {
    const auto times = [&] { return timesAsleep(host.process().pid(), "sdlVideoPlayers"); };
    const std::uint64_t before = times();
    return before > 0 && staysSo([&] { return times() == before; });
  }

  void act(HostProcess& host) {
    host.process().signal(SIGUSR1);
    ASSERT_TRUE(host.says("acting"));
  }

  XServer server;
  WindowManager manager{server};
  XClient x{server.display()};
};

TEST_F(Stuck, HoldsUpNoneOfTheCallsThatDoNotWait) {
  HostProcess host = start("what-does-not-wait");
  untilStuck(host);
  act(host);
  EXPECT_TRUE(host.says("no call waited"));
  EXPECT_TRUE(x.findWindow("stuck B"));
  manager.wake();
  EXPECT_TRUE(x.waitForNoWindow("stuck B"));
  EXPECT_TRUE(x.waitForNoWindow("stuck C"));
  host.process().signal(SIGUSR1);
  EXPECT_TRUE(host.endsWith(kHostsStatus));
}

class StuckCall : public Stuck, public testing::WithParamInterface<const char*> {};

std::string deedName(const testing::TestParamInfo<const char*>& test) {
  std::string name = test.param;
  std::erase(name, '-');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Host, StuckCall,
                         testing::Values("ask-for-its-place", "open-it-again", "rename-it",
                                         "open-another"),
                         deedName);

TEST_P(StuckCall, WaitsUntilTheWindowManagerAnswers) {
  HostProcess host = start(GetParam());
  untilStuck(host);
  act(host);
  EXPECT_FALSE(waitUntil([&] { return !host.isRunning() || host.hasSaid("done"); }, 200ms));
  manager.wake();
  EXPECT_TRUE(host.says("done"));
  EXPECT_TRUE(host.endsWith(kHostsStatus));
}

// ---- The end ----

// There is no picture left to lose, so the library cuts the connection that SDL waits on.
TEST_F(Stuck, UnloadingTakesLessThanTwoSeconds) {
  HostProcess host = start("unload");
  untilStuck(host);
  act(host);
  EXPECT_TRUE(host.says("unloaded"));
  std::cout << host.output();
  EXPECT_TRUE(x.waitForNoWindow("stuck A"));
  host.process().signal(SIGUSR1);
  EXPECT_TRUE(host.endsWith(kHostsStatus));
  manager.wake();
}

TEST_F(Stuck, ExitTakesLessThanTwoSeconds) {
  HostProcess host = start("leave");
  untilStuck(host);
  act(host);
  EXPECT_TRUE(host.endsWith(kHostsStatus, 2s));
  manager.wake();
}

}  // namespace
}  // namespace framesink::test
