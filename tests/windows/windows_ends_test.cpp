// Unloading the DLL, and ending its host, while windows are open.
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <string>
#include <tuple>

#include "host_process.hpp"
#include "support/scoped_variable.hpp"
#include "support/x_fixtures.hpp"
#include "wine.hpp"

namespace framesink::test {
namespace {

using namespace std::chrono_literals;

std::string withoutDashes(std::string name) {
  std::erase(name, '-');
  return name;
}

// ---- Unloading ----------------------------------------------------------------------------------

class WindowsUnloading : public ManagedXTest, public testing::WithParamInterface<const char*> {
 protected:
  const std::string cycles = environmentVariable("FRAMESINK_LOAD_CYCLES").value_or("200");
};

INSTANTIATE_TEST_SUITE_P(When, WindowsUnloading, testing::Values("shown", "at-once"),
                         [](const auto& test) { return withoutDashes(test.param); });

TEST_P(WindowsUnloading, EndsWindowsThreadAndSdlInTime) {
  HostProcess host("cycles_host", {cycles, GetParam()});
  EXPECT_TRUE(host.endsWith(0, kWineDeadline + 1s * std::stoi(cycles)));
  EXPECT_TRUE(x.waitForNoWindow("cycle A"));
  EXPECT_TRUE(x.waitForNoWindow("cycle B"));
  std::cout << host.output();
}

class WindowsUnloadingElsewhere : public ManagedXTest,
                                  public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(By, WindowsUnloadingElsewhere, testing::Values("thread", "both", "making"),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(WindowsUnloadingElsewhere, LeavesSynchronousWindowsAndSdl) {
  HostProcess host("elsewhere_host", {GetParam()});
  EXPECT_TRUE(host.endsWith(0, kWineDeadline));
  EXPECT_TRUE(x.waitForNoWindow("left alone"));
}

using WindowsHung = ManagedXTest;

TEST_F(WindowsHung, UnloadingGivesUpAfterTwentySecondsAndNothingElseWaits) {
  HostProcess host("hung_host");
  EXPECT_TRUE(host.endsWith(7, kWineDeadline + 30s));
  std::cout << host.output();
  EXPECT_TRUE(x.waitForNoWindow("hung"));
}

// ---- The end of the process ---------------------------------------------------------------------

class WindowsExit : public ManagedXTest,
                    public testing::WithParamInterface<std::tuple<const char*, const char*>> {};

INSTANTIATE_TEST_SUITE_P(Display, WindowsExit,
                         testing::Combine(testing::Values("threaded", "synchronous", "both"),
                                          testing::Values("return", "exit", "exit-at-once",
                                                          "exit-from-thread", "exit-handler")),
                         [](const auto& test) {
                           return std::string(std::get<0>(test.param)) + "_" +
                                  withoutDashes(std::get<1>(test.param));
                         });

// A wait for a thread that has ended already would take 20 s. Prints how long the end took.
TEST_P(WindowsExit, ReturnsTheHostsStatusAtOnce) {
  const auto [display, ending] = GetParam();
  HostProcess host("exit_windows_host", {display, ending});
  ASSERT_TRUE(host.says("leaving"));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(host.endsWith(7, 5s));
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  std::cout << "ended after " << took.count() << " s\n";
  EXPECT_EQ(host.hasSaid("used at exit"), std::string(ending) == "exit-handler");
  EXPECT_TRUE(x.waitForNoWindow("exit A"));
  EXPECT_TRUE(x.waitForNoWindow("exit B"));
}

}  // namespace
}  // namespace framesink::test
