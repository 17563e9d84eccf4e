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
    const auto status = host.wait(150s);
    ASSERT_TRUE(status) << "still runs";
    EXPECT_EQ(status->code, hostsStatus) << "signal " << status->signal << "\n"
                                         << host.standardOutput() << host.standardError();
  }
};

// The 12 cycles cover every choice of servers, each with all windows, one and none closed.
TEST_F(Memcheck, FindsNothingWhereAHostLoadsAndUnloads) {
  findsNothing("load_cycles_host", {"12", "2", "unmeasured"}, 0);
}

TEST_F(Memcheck, FindsNothingWhereAHostExitsWithWindowsOpen) {
  findsNothing("exit_host", {"both", "exit"}, 7);
}

}  // namespace
}  // namespace framesink::test
