// framesink-play --doctor, which prints a report for bug reports.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Uses the real library on SDL's dummy driver.
TEST(PlayDoctor, TellsWhatIsHereAndThatAllIsWell) {
  const Outcome outcome =
      runPlayer({"--doctor", "--library", REAL_LIBRARY},
                Setting{.environment = {{"ASAN_OPTIONS", "detect_leaks=0"}}, .stubLibrary = false});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, StartsWith("framesink-play " FRAMESINK_PLAY_VERSION "\n"));
  for (const char* part : {"library: " REAL_LIBRARY "\n",
                           "  version: " FRAMESINK_PLAY_VERSION " of ",
                           "all 14",
                           "SDL: 2.",
                           "  video drivers:",
                           " dummy",
                           "SDL_VIDEODRIVER: dummy",
                           "  double: 0 to 1\n",
                           "  single: 0 to 1\n",
                           "  int8: -128 to 127\n",
                           "  uint8: 0 to 255\n",
                           "  int16: -32768 to 32767\n",
                           "  uint16: 0 to 65535\n",
                           "  int32: -2147483648 to 2147483647\n",
                           "  uint32: 0 to 4294967295\n",
                           "  boolean: 0 to 1\n",
                           "test window: open after a second, 320x240 at ",
                           "  video driver in use: dummy\n",
                           "    SDL_FRAMEBUFFER_ACCELERATION: 0\n",
                           "    SDL_NO_SIGNAL_HANDLERS: 1\n",
                           "  host time   "}) {
    EXPECT_THAT(outcome.out, HasSubstr(part));
  }
  EXPECT_THAT(outcome.out, EndsWith("verdict: all is well\n"));
}

TEST(PlayDoctor, FindsALibraryThatIsMissing) {
  const Outcome outcome = runPlayer({"--doctor", "--library", "/nonexistent/libframesink.so.1"},
                                    Setting{.stubLibrary = false});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("verdict: cannot load the library: "));
}

TEST(PlayDoctor, FindsAnExportThatIsMissing) {
  const Outcome outcome =
      runPlayer({"--doctor", "--library", STUB_WITHOUT_UPDATE}, Setting{.stubLibrary = false});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, EndsWith("is not framesink: it has no libUpdate\n"));
}

TEST(PlayDoctor, FindsThatThereIsNoDisplay) {
  const Outcome outcome = runPlayer(
      {"--doctor"},
      Setting{.environment = {{"SDL_VIDEODRIVER", ""}, {"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}}});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.out, HasSubstr("verdict: no display: set DISPLAY"));
  EXPECT_THAT(outcome.calls, Not(Contains(StartsWith("libCreate"))));
}

// The stub reports an open window, but the window has no size.
TEST(PlayDoctor, FindsAWindowThatIsNotThere) {
  const Outcome outcome = runPlayer({"--doctor"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.out, EndsWith("verdict: the test window did not stay open\n"));
}

}  // namespace
}  // namespace framesink::play
