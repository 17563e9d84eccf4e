#include "process/opengl.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <string>

#include "support/scoped_variable.hpp"
#include "support/temporary_folder.hpp"

namespace framesink::test {
namespace {

using Value = std::optional<std::string>;

// Environment variables that a case does not name are not set.
struct Case {
  bool expected = false;
  Value driver = {}, display = {}, wayland = {}, acceleration = {}, renderer = {};
};

const Case kCases[] = {
    {.expected = false},
    {.expected = false, .display = ":1"},
    {.expected = true, .wayland = "wayland-7"},
    {.expected = false, .display = ":1", .wayland = "wayland-7"},
    {.expected = true, .driver = "wayland", .display = ":1"},
    {.expected = true, .driver = "wayland,x11"},
    {.expected = false, .driver = "x11", .wayland = "wayland-7"},
    {.expected = true, .display = ":1", .acceleration = "1"},
    {.expected = true, .display = ":1", .acceleration = "opengl"},
    {.expected = false, .display = ":1", .acceleration = ""},
    {.expected = false, .display = ":1", .acceleration = "0"},
    {.expected = false, .display = ":1", .acceleration = "false"},
    {.expected = false, .display = ":1", .acceleration = "software"},
    {.expected = true, .display = ":1", .renderer = "opengles2"},
    {.expected = false, .display = ":1", .renderer = ""},
    {.expected = false, .display = ":1", .renderer = "software"},
};

class OpenGlTest : public testing::Test {
 protected:
  static bool isInUse(const Case& environment, const Value& folder) {
    const ScopedVariable variables[] = {{"SDL_VIDEODRIVER", environment.driver},
                                        {"DISPLAY", environment.display},
                                        {"WAYLAND_DISPLAY", environment.wayland},
                                        {"SDL_FRAMEBUFFER_ACCELERATION", environment.acceleration},
                                        {"SDL_RENDER_DRIVER", environment.renderer},
                                        {"XDG_RUNTIME_DIR", folder}};
    return isOpenGlInUse();
  }

  const TemporaryFolder folder_;
};

TEST_F(OpenGlTest, IsInUseOnWaylandAndWhereTheUserSaysSo) {
  for (const Case& one : kCases) {
    EXPECT_EQ(isInUse(one, folder_.path()), one.expected) << "case " << &one - kCases;
  }
}

// A Wayland desktop without Xwayland may leave WAYLAND_DISPLAY unset, which means wayland-0.
TEST_F(OpenGlTest, IsInUseWhereTheUsualCompositorListens) {
  std::ofstream(folder_.path() + "/wayland-0").put('\n');
  EXPECT_TRUE(isInUse({}, folder_.path()));
  EXPECT_FALSE(isInUse({.display = ":1"}, folder_.path()));
  EXPECT_FALSE(isInUse({}, std::nullopt));
}

}  // namespace
}  // namespace framesink::test
