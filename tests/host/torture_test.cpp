// A host at full speed while its user closes, moves and resizes the windows.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>

#include "host_process.hpp"
#include "support/scoped_variable.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

using namespace std::chrono_literals;

class Torture : public ManagedXTest {
 protected:
  int number(std::uint32_t limit) { return static_cast<int>(random() % limit); }

  void act(Window window) {
    switch (number(8)) {
      case 0:
        x.closeButton(window);
        break;
      case 1:
        x.raise(window);
        break;
      case 2:
        number(2) != 0 ? x.maximise(window) : x.iconify(window);
        break;
      case 3:
      case 4:
        x.resize(window, 20 + number(300), 20 + number(300));
        break;
      default:
        x.move(window, number(900), number(700));
    }
  }

  std::mt19937 random{1};
};

TEST_F(Torture, LeavesTheHostUnharmed) {
  const std::string seconds = environmentVariable("FRAMESINK_TORTURE_SECONDS").value_or("2");
  HostProcess host("torture_host", {seconds});
  ASSERT_TRUE(host.says("showing"));
  int deeds = 0;
  while (host.isRunning()) {
    std::this_thread::sleep_for(5ms);  // a window manager has to keep up
    const auto window = x.findWindow("torture " + std::to_string(number(4)));
    if (!window) continue;
    act(*window);
    ++deeds;
  }
  EXPECT_TRUE(host.endsWith(0));
  EXPECT_GT(deeds, 10);
  RecordProperty("frames", host.output());
}

}  // namespace
}  // namespace framesink::test
