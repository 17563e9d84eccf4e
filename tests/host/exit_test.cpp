// Hosts that end, or are killed, while windows are open.
#include <gtest/gtest.h>
#include <signal.h>

#include <string>
#include <tuple>

#include "host_process.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

constexpr int kHostsStatus = 7;

class Exit : public BareXTest, public testing::WithParamInterface<const char*> {
 protected:
  HostProcess start(const std::string& ending) {
    return HostProcess("exit_host", {GetParam(), ending});
  }

  bool hasWindows() { return x.findWindow("exit A") && x.findWindow("exit B"); }

  // Expects the host's own status soon after its decision to leave, and no window afterwards.
  void leavesAtOnce(HostProcess& host) {
    ASSERT_TRUE(host.says("leaving"));
    EXPECT_TRUE(host.endsWith(kHostsStatus, kAtOnce));
    EXPECT_TRUE(x.waitForNoWindow("exit A"));
    EXPECT_TRUE(x.waitForNoWindow("exit B"));
  }
};

std::string displayName(const testing::TestParamInfo<const char*>& test) { return test.param; }

INSTANTIATE_TEST_SUITE_P(Display, Exit, testing::Values("threaded", "synchronous", "both"),
                         displayName);

TEST_P(Exit, ReturnFromMainReturnsTheHostsStatusWithinASecond) {
  HostProcess host("exit_host", {GetParam(), "return"});
  leavesAtOnce(host);
}

TEST_P(Exit, ExitReturnsTheHostsStatusWithinASecond) {
  HostProcess host("exit_host", {GetParam(), "exit"});
  leavesAtOnce(host);
}

TEST_P(Exit, ExitFromAnotherThreadWhileFramesAreShownIsHarmless) {
  HostProcess host("exit_host", {GetParam(), "exit-from-thread"});
  leavesAtOnce(host);
}

TEST_P(Exit, WithoutHandlersReturnsTheHostsStatusWithinASecond) {
  HostProcess host("exit_host", {GetParam(), "_exit"});
  leavesAtOnce(host);
}

TEST_P(Exit, ByAnUncaughtExceptionIsAnAbort) {
  HostProcess host("exit_host", {GetParam(), "exception"});
  ASSERT_TRUE(host.says("leaving"));
  EXPECT_TRUE(host.endsBySignal(SIGABRT, kAtOnce));
  EXPECT_NE(host.error().find("nobody catches this"), std::string::npos) << host.error();
  EXPECT_TRUE(x.waitForNoWindow("exit A"));
}

// ---- Exit handlers ----

TEST_P(Exit, CallsFromAHandlerRegisteredBeforeLoadingFindNothing) {
  HostProcess host("exit_host", {GetParam(), "late-calls-before-load"});
  leavesAtOnce(host);
  EXPECT_TRUE(host.says("late calls done"));
  EXPECT_TRUE(host.says("late block: none"));
  EXPECT_TRUE(host.says("late size: 3"));
  EXPECT_TRUE(host.says("late window: closed"));
}

TEST_P(Exit, CallsFromAHandlerRegisteredBeforeTheFirstWindowFindNothing) {
  HostProcess host("exit_host", {GetParam(), "late-calls-before-use"});
  leavesAtOnce(host);
  EXPECT_TRUE(host.says("late calls done"));
  EXPECT_TRUE(host.says("late block: none"));
  EXPECT_TRUE(host.says("late size: 3"));
  EXPECT_TRUE(host.says("late window: closed"));
}

TEST_P(Exit, CallsFromAHandlerRegisteredAfterTheFirstWindowStillWork) {
  HostProcess host("exit_host", {GetParam(), "late-calls-after-use"});
  leavesAtOnce(host);
  EXPECT_TRUE(host.says("late calls done"));
  EXPECT_TRUE(host.says("late block: made"));
  EXPECT_TRUE(host.says("late size: 64"));
  EXPECT_TRUE(host.says("late window: open"));
}

class ExitWithoutWindows : public BareXTest {};

TEST_F(ExitWithoutWindows, CallsFromAHandlerRegisteredBeforeLoadingFindNothing) {
  HostProcess host("exit_host", {"closed", "late-calls-before-load"});
  EXPECT_TRUE(host.says("late block: none"));
  EXPECT_TRUE(host.says("late calls done"));
  EXPECT_TRUE(host.endsWith(kHostsStatus, kAtOnce));
}

// Such a handler may even open the first window of the process.
TEST_F(ExitWithoutWindows, CallsFromALaterHandlerStillWork) {
  HostProcess host("exit_host", {"closed", "late-calls-before-use"});
  EXPECT_TRUE(host.says("late block: made"));
  EXPECT_TRUE(host.says("late window: open"));
  EXPECT_TRUE(host.says("late calls done"));
  EXPECT_TRUE(host.endsWith(kHostsStatus, kAtOnce));
}

// ---- Forks ----

TEST_P(Exit, ExitOfAForkedChildLeavesTheParentsWindowsAlive) {
  HostProcess host("exit_host", {GetParam(), "fork"});
  ASSERT_TRUE(host.says("forked"));
  const Image expected{64, 48, std::vector<std::uint32_t>(64 * 48, 0x30C060)};
  EXPECT_TRUE(waitUntil([&] { return x.pixels(x.waitForWindow("exit A")) == expected; }));
  EXPECT_TRUE(waitUntil([&] { return hasWindows(); }));
  EXPECT_TRUE(x.closeButton(x.waitForWindow("exit A")));
  leavesAtOnce(host);
}

// ---- Signals ----

class Signal : public BareXTest,
               public testing::WithParamInterface<std::tuple<const char*, int, const char*>> {
 protected:
  const std::string display = std::get<0>(GetParam());
  const int number = std::get<1>(GetParam());
  const std::string before = std::get<2>(GetParam());
};

std::string signalName(const testing::TestParamInfo<Signal::ParamType>& test) {
  const auto& [display, number, before] = test.param;
  return std::string(display) + (number == SIGINT ? "Interrupt" : "Terminate") + before;
}

using EndsAHost = Signal;
INSTANTIATE_TEST_SUITE_P(Display, EndsAHost,
                         testing::Combine(testing::Values("threaded", "synchronous"),
                                          testing::Values(SIGINT, SIGTERM), testing::Values("")),
                         signalName);

TEST_P(EndsAHost, ThatShowsAWindow) {
  HostProcess host("exit_host", {display, "pump"});
  ASSERT_TRUE(host.says("showing"));
  x.waitForWindow("exit B");
  host.process().signal(number);
  EXPECT_TRUE(host.endsBySignal(number, kAtOnce));
}

class RunsTheHostsHandler : public Signal {};
INSTANTIATE_TEST_SUITE_P(Display, RunsTheHostsHandler,
                         testing::Combine(testing::Values("threaded", "synchronous"),
                                          testing::Values(SIGINT, SIGTERM),
                                          testing::Values("Load", "Use")),
                         signalName);

TEST_P(RunsTheHostsHandler, AndNothingElse) {
  HostProcess host("exit_host",
                   {display, before == "Load" ? "handlers-before-load" : "handlers-before-use"});
  ASSERT_TRUE(host.says("showing"));
  x.waitForWindow("exit B");
  host.process().signal(number);
  EXPECT_TRUE(host.says("handled " + std::to_string(number)));
  EXPECT_TRUE(host.endsWith(kHostsStatus, kAtOnce));
}

// ---- The X server dies ----

class XServersDeath : public testing::TestWithParam<std::tuple<const char*, const char*>> {};

std::string deathName(const testing::TestParamInfo<XServersDeath::ParamType>& test) {
  std::string name = std::string(std::get<0>(test.param)) + std::get<1>(test.param);
  std::erase(name, '-');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Display, XServersDeath,
                         testing::Combine(testing::Values("threaded", "synchronous", "both"),
                                          testing::Values("outlive-with-frames", "outlive-idle")),
                         deathName);

TEST_P(XServersDeath, ClosesTheWindowsAndLeavesTheHostAlone) {
  XServer server;
  XClient x(server.display());
  // SDL and Xlib are not called after the loss, so they free nothing: no leak check.
  HostProcess host("exit_host", {std::get<0>(GetParam()), std::get<1>(GetParam())},
                   {"ASAN_OPTIONS=detect_leaks=0"});
  ASSERT_TRUE(host.says("showing"));
  x.waitForWindow("exit A");
  x.waitForWindow("exit B");
  ASSERT_EQ(kill(server.pid(), SIGKILL), 0);
  EXPECT_TRUE(host.endsNoisilyWith(kHostsStatus, kDeadline));
  EXPECT_EQ(host.error(),
            "The display is gone; the model runs on.\n"
            "No window can be opened: the display is gone.\n");
}

}  // namespace
}  // namespace framesink::test
