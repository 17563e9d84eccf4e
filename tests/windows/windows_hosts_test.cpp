// Windows programs that live with the DLL, and end while its windows are open.
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <string>

#include "host_process.hpp"
#include "oracle.hpp"
#include "shown_picture.hpp"
#include "support/scoped_variable.hpp"
#include "support/x_fixtures.hpp"
#include "test_frame.hpp"

namespace framesink::test {
namespace {

using namespace std::chrono_literals;

constexpr Size kFrame{64, 48};

// Wine takes a while to begin.
constexpr auto kWineDeadline = 60s;

// Wine waits for a window manager's answers.
class WindowsHosts : public ManagedXTest {};

TEST_F(WindowsHosts, WalkTheWholeLifecycle) {
  HostProcess host("lifecycle_host");
  for (const char* name : {"threaded", "synchronous"}) {
    ASSERT_TRUE(host.says(name));
    const Window window = x.waitForWindow(name);
    EXPECT_TRUE(shows(x, window, plainPicture(0x3060C0, kFrame)));
    EXPECT_TRUE(x.closeButton(window)) << x.lastError();
  }
  EXPECT_TRUE(host.endsWith(0, kWineDeadline));
}

TEST_F(WindowsHosts, RaiseAndRenameWindowsOfAnotherThreadWithoutWaitingForLong) {
  HostProcess host("talk_host");
  EXPECT_TRUE(host.endsWith(0, kWineDeadline));
  std::cout << host.output();
}

TEST_F(WindowsHosts, MayUnloadOnAnotherThreadThanTheOneWithWindows) {
  HostProcess host("elsewhere_host");
  EXPECT_TRUE(host.endsWith(0, kWineDeadline));
}

// ---- Unloading ----------------------------------------------------------------------------------

class WindowsUnloading : public WindowsHosts, public testing::WithParamInterface<const char*> {
 protected:
  const std::string cycles = environmentVariable("FRAMESINK_LOAD_CYCLES").value_or("200");
};

INSTANTIATE_TEST_SUITE_P(When, WindowsUnloading, testing::Values("shown", "at-once"),
                         [](const auto& test) {
                           return std::string(test.param == std::string("shown") ? "Shown"
                                                                                 : "AtOnce");
                         });

TEST_P(WindowsUnloading, EndsWindowsThreadAndSdlInTime) {
  HostProcess host("cycles_host", {cycles, GetParam()});
  EXPECT_TRUE(host.endsWith(0, kWineDeadline + 1s * std::stoi(cycles)));
  EXPECT_TRUE(x.waitForNoWindow("cycle A"));
  EXPECT_TRUE(x.waitForNoWindow("cycle B"));
  std::cout << host.output();
}

// ---- The end of the process ---------------------------------------------------------------------

class WindowsExit : public WindowsHosts,
                    public testing::WithParamInterface<std::tuple<const char*, const char*>> {};

INSTANTIATE_TEST_SUITE_P(Display, WindowsExit,
                         testing::Combine(testing::Values("threaded", "synchronous", "both"),
                                          testing::Values("return", "exit", "exit-at-once",
                                                          "exit-from-thread")),
                         [](const auto& test) {
                           std::string name =
                               std::string(std::get<0>(test.param)) + "_" + std::get<1>(test.param);
                           std::erase(name, '-');
                           return name;
                         });

TEST_P(WindowsExit, ReturnsTheHostsStatusWithinASecond) {
  HostProcess host("exit_windows_host", {std::get<0>(GetParam()), std::get<1>(GetParam())});
  ASSERT_TRUE(host.says("leaving"));
  EXPECT_TRUE(host.endsWith(7, 1s));
  EXPECT_TRUE(x.waitForNoWindow("exit A"));
  EXPECT_TRUE(x.waitForNoWindow("exit B"));
}

}  // namespace
}  // namespace framesink::test
