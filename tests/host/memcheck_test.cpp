// Hosts under valgrind's memcheck, which also names functions of a library that was unloaded.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/child_process.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

using namespace std::chrono_literals;

// Under valgrind a host takes 10 s by itself, and was seen to take 280 s on a machine with 25 times
// the work that it can do.
constexpr std::chrono::seconds kLongest = 500s;

// An unloading that waits in vain takes 20 s; one on that busy machine was seen to take 4.4 s.
constexpr const char* kLongestUnloading = "15";

// What all threads of a host under valgrind are doing.
std::string stacksOf(const ChildProcess& host) {
  ChildProcess vgdb({"vgdb", "--pid=" + std::to_string(host.pid()), "v.info", "scheduler"});
  vgdb.wait();
  return vgdb.standardOutput() + vgdb.standardError();
}

class Memcheck : public BareXTest {
 protected:
  // Ignores forked children: SDL's D-Bus code forks, and what such a child leaves does not matter.
  static void findsNothing(const std::string& program, const std::vector<std::string>& arguments,
                           int hostsStatus) {
    std::vector<std::string> command{"valgrind",
                                     "--quiet",
                                     "--error-exitcode=9",
                                     "--leak-check=full",
                                     "--errors-for-leak-kinds=definite",
                                     "--show-leak-kinds=definite",
                                     "--keep-debuginfo=yes",
                                     "--child-silent-after-fork=yes",
                                     "--suppressions=" VALGRIND_SUPPRESSIONS,
                                     HOST_FOLDER "/" + program,
                                     FRAMESINK_LIBRARY};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ChildProcess host(command);
    const auto status = host.wait(kLongest);
    ASSERT_TRUE(status) << "still runs after " << kLongest.count() << " s\n"
                        << host.standardOutput() << host.standardError() << stacksOf(host);
    EXPECT_EQ(status->code, hostsStatus) << "signal " << status->signal << "\n"
                                         << host.standardOutput() << host.standardError();
  }
};

// The 12 cycles cover every choice of servers, each with all windows, one and none closed.
TEST_F(Memcheck, FindsNothingWhereAHostLoadsAndUnloads) {
  findsNothing("load_cycles_host", {"12", "2", "unmeasured", kLongestUnloading}, 0);
}

TEST_F(Memcheck, FindsNothingWhereAHostExitsWithWindowsOpen) {
  findsNothing("exit_host", {"both", "exit"}, 7);
}

}  // namespace
}  // namespace framesink::test
