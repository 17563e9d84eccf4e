// The same host on every window system, and on none.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <string>
#include <vector>

#include "host_process.hpp"
#include "support/wayland_server.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

using namespace std::chrono_literals;
using Environment = std::vector<std::string>;

constexpr int kFramePixels = 64 * 48;
constexpr std::uint32_t kLastColour = 0xFF00FF;

// OpenGL keeps memory for the life of the process, and allocates too often for full stack traces.
constexpr const char* kWithOpenGl = "ASAN_OPTIONS=detect_leaks=0:fast_unwind_on_malloc=1";

class ModelHost {
 public:
  explicit ModelHost(const Environment& environment) : host_("model_host", {}, environment) {}

  testing::AssertionResult hasRun() {
    const auto result = host_.says("model run");
    std::cout << host_.output();
    return result;
  }

  // Expects every window to be open, in its frames' size and at the requested place. For use where
  // no window manager places windows.
  void answersAsAskedFor() {
    for (const char* line :
         {"model A: open, 64 x 48 at 100, 120", "model B: open, 64 x 48 at 300, 120",
          "model C: open, 64 x 48 at 500, 120"}) {
      EXPECT_TRUE(host_.hasSaid(line)) << host_.output();
    }
  }
  void answersWithOpenWindows() {
    for (const char* name : {"A", "B", "C"}) {
      EXPECT_NE(host_.output().find(std::string("model ") + name + ": open, 64 x 48 at "),
                std::string::npos)
          << host_.output();
    }
  }

  // Lets the host close windows and unload the library, and waits until it prints `outcome`.
  testing::AssertionResult unloads(const std::string& outcome) {
    goOn();
    return host_.says(outcome);
  }

  testing::AssertionResult endsQuietly() {
    goOn();
    return host_.endsWith(0);
  }
  testing::AssertionResult endsNoisily() {
    goOn();
    return host_.endsNoisilyWith(0, kDeadline);
  }

  std::string error() const { return host_.error(); }

 private:
  void goOn() { host_.process().signal(SIGUSR1); }

  HostProcess host_;
};

std::string paramName(const testing::TestParamInfo<const char*>& test) { return test.param; }

int countOf(const std::string& part, const std::string& text) {
  int count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

// ---- X11 ----

class OnBareX : public BareXTest {};

TEST_F(OnBareX, WindowsAreWhereTheyWereAskedFor) {
  ModelHost model({});
  ASSERT_TRUE(model.hasRun());
  model.answersAsAskedFor();
  EXPECT_TRUE(model.unloads("library gone"));
  EXPECT_TRUE(model.endsQuietly());
}

class OnManagedX : public ManagedXTest {};

TEST_F(OnManagedX, WindowsAreOpenAndOfTheirSize) {
  ModelHost model({});
  ASSERT_TRUE(model.hasRun());
  model.answersWithOpenWindows();
  EXPECT_TRUE(model.unloads("library gone"));
  EXPECT_TRUE(model.endsQuietly());
}

TEST_F(OnBareX, WindowsAreDrawnWithoutOpenGlWhateverTheUserChooses) {
  for (const char* choice : {"SDL_FRAMEBUFFER_ACCELERATION=1", "SDL_RENDER_DRIVER=opengl"}) {
    ModelHost model({choice});
    ASSERT_TRUE(model.hasRun());
    model.answersAsAskedFor();
    EXPECT_TRUE(model.unloads("library gone"));
    EXPECT_TRUE(model.endsNoisily());
    EXPECT_EQ(model.error(),
              "On X11, windows are drawn without OpenGL, whatever SDL's hints say.\n");
  }
}

// ---- Wayland ----

class OnWayland : public BareXTest {
 protected:
  Environment environment() const {
    Environment variables = wayland.environment();
    variables.emplace_back(kWithOpenGl);
    return variables;
  }

  long pixelsOf(std::uint32_t colour) {
    const Image screen = x.rootPixels();
    return std::count(screen.pixels.begin(), screen.pixels.end(), colour);
  }

  WaylandServer wayland{server};
};

// The compositor places the windows as it likes, so only one whole window is certain to be visible.
TEST_F(OnWayland, FramesAreShown) {
  ModelHost model(environment());
  ASSERT_TRUE(model.hasRun());
  model.answersWithOpenWindows();
  EXPECT_TRUE(waitUntil([&] { return pixelsOf(kLastColour) >= kFramePixels; }));
}

// OpenGL needs the loader on the display thread, while dlclose would hold the loader's lock.
TEST_F(OnWayland, TheLibraryStaysLoadedAndItsWindowsOpen) {
  ModelHost model(environment());
  ASSERT_TRUE(model.hasRun());
  EXPECT_TRUE(model.unloads("library stays"));
  EXPECT_TRUE(waitUntil([&] { return pixelsOf(kLastColour) > 0; }));
  EXPECT_TRUE(model.endsNoisily());
  EXPECT_TRUE(waitUntil([&] { return pixelsOf(kLastColour) == 0; }));
}

// The display thread draws with static objects of OpenGL's driver, which exit() must not destroy
// first. That used to happen in every third run, so each case runs ten times.
class ExitOnWayland : public OnWayland, public testing::WithParamInterface<const char*> {};
INSTANTIATE_TEST_SUITE_P(Display, ExitOnWayland, testing::Values("threaded", "synchronous", "both"),
                         paramName);

TEST_P(ExitOnWayland, ReturnsTheHostsStatus) {
  for (int i = 0; i < 10; ++i) {
    HostProcess host("exit_host", {GetParam(), "exit"}, environment());
    ASSERT_TRUE(host.says("leaving")) << "run " << i;
    ASSERT_TRUE(host.endsNoisilyWith(7, kDeadline)) << "run " << i;
  }
}

TEST_F(OnBareX, ExitReturnsTheHostsStatusWhereTheUserChoosesOpenGl) {
  for (int i = 0; i < 5; ++i) {
    HostProcess host("exit_host", {"both", "exit"},
                     {"SDL_FRAMEBUFFER_ACCELERATION=1", kWithOpenGl});
    ASSERT_TRUE(host.says("leaving")) << "run " << i;
    ASSERT_TRUE(host.endsNoisilyWith(7, kDeadline)) << "run " << i;
  }
}

// ---- Drivers that show nothing ----

class OnADriver : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(OfSdl, OnADriver, testing::Values("dummy", "offscreen"), paramName);

TEST_P(OnADriver, TheModelRunsAndWindowsAnswer) {
  ModelHost model({"DISPLAY", "WAYLAND_DISPLAY", std::string("SDL_VIDEODRIVER=") + GetParam()});
  ASSERT_TRUE(model.hasRun());
  model.answersAsAskedFor();
  EXPECT_TRUE(model.unloads("library gone"));
  EXPECT_TRUE(model.endsQuietly());
}

// ---- No display ----

// Each server tries to start SDL once, and each window is tried once. Frames print nothing.
TEST(OnNoDisplay, TheModelRunsAndWindowsAnswerAllTheSame) {
  ModelHost model({"DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER=x11"});
  ASSERT_TRUE(model.hasRun());
  model.answersAsAskedFor();
  EXPECT_TRUE(model.unloads("library gone"));
  EXPECT_TRUE(model.endsNoisily());
  EXPECT_EQ(countOf("Could not initialize SDL: ", model.error()), 2) << model.error();
  EXPECT_EQ(countOf("Could not create window: ", model.error()), 3) << model.error();
  EXPECT_LE(countOf("\n", model.error()), 6) << model.error();
}

}  // namespace
}  // namespace framesink::test
