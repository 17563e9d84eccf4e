// A host shows frames at full speed while a user closes, moves and resizes its windows.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "host_process.hpp"
#include "support/restless_user.hpp"
#include "support/scoped_variable.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

using namespace std::chrono_literals;

class Torture : public ManagedXTest {};

TEST_F(Torture, LeavesTheHostUnharmed) {
  const std::string seconds = environmentVariable("FRAMESINK_TORTURE_SECONDS").value_or("2");
  HostProcess host("torture_host", {seconds});
  ASSERT_TRUE(host.says("showing"));
  const RestlessUser user(server.display(), {"torture 0", "torture 1", "torture 2", "torture 3"},
                          {.deeds = {Deed::kClose, Deed::kRaise, Deed::kMaximise, Deed::kIconify,
                                     Deed::kResize, Deed::kResize, Deed::kMove, Deed::kMove},
                           .pace = 5ms});  // as fast as a window manager can follow
  EXPECT_TRUE(host.endsWith(0, std::chrono::seconds(std::stoi(seconds)) + kDeadline));
  EXPECT_GT(user.deeds(), 0);
  RecordProperty("frames", host.output());
}

}  // namespace
}  // namespace framesink::test
