// What a user sees: every pixel that the X server shows is compared.
#include <gtest/gtest.h>

#include <string>

#include "display_helpers.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

enum class Mode { kThreaded, kSynchronous };

// No window manager runs, so windows get exactly the place and size that the test requests.
class DisplayPixelsTest : public BareXTest, public testing::WithParamInterface<Mode> {
 protected:
  Window open(const Opening& opening) {
    player = addPlayer(display, opening);
    const Window window = x.waitForWindow(opening.title);
    if (display.hasOpenPlayer(player)) deliver(display, player, plainFrame(opening.frameSize, 0));
    return window;
  }
  // Waits until the window shows `picture`. Drains meanwhile if the server is synchronous, because
  // such a server handles events only inside its calls.
  testing::AssertionResult showsSoon(Window window, const Image& picture) {
    const auto end = std::chrono::steady_clock::now() + kDeadline;
    for (;;) {
      if (GetParam() == Mode::kSynchronous) drain();
      const auto seen = shows(x, window, picture, std::chrono::milliseconds(20));
      if (seen || std::chrono::steady_clock::now() > end) return seen;
    }
  }
  void drain() { deliver(display, kNoPlayer, plainFrame({1, 1}, 0)); }

  SdlServer display{GetParam() == Mode::kThreaded};
  std::uint32_t player = 0;
};
INSTANTIATE_TEST_SUITE_P(Display, DisplayPixelsTest,
                         testing::Values(Mode::kThreaded, Mode::kSynchronous),
                         [](const auto& parameter) {
                           return std::string(parameter.param == Mode::kThreaded ? "Threaded"
                                                                                 : "Synchronous");
                         });

// ---- Unscaled ----

TEST_P(DisplayPixelsTest, AnUnscaledWindowShowsTheFrameExactly) {
  for (const Size size : {Size{1, 1}, Size{2, 1}, Size{1, 2}, Size{3, 5}, Size{320, 240},
                          Size{641, 479}, Size{1000, 3}, Size{3, 900}}) {
    const std::string title = std::to_string(size.width) + "x" + std::to_string(size.height);
    const Window window = open({.title = title, .frameSize = size});
    const Frame frame = noiseFrame(size, size.width + size.height);
    deliver(display, player, frame);
    EXPECT_TRUE(showsSoon(window, pictureOf(frame))) << title;
    display.closePlayer(player);
  }
}

TEST_P(DisplayPixelsTest, APixelHasItsRedGreenAndBlueWhereTheyBelong) {
  const Window window = open({.frameSize = {3, 2}});
  Image corners = pictureOf(plainFrame({3, 2}, 0));
  Frame frame = plainFrame({3, 2}, 0);
  frame.planes[0] = 0xFF;       // red, upper left
  frame.planes[6 + 4] = 0x80;   // green, upper right
  frame.planes[12 + 1] = 0x01;  // blue, lower left
  corners.pixels = {0xFF0000, 0, 0x008000, 0x000001, 0, 0};
  deliver(display, player, frame);
  EXPECT_TRUE(showsSoon(window, corners));
}

TEST_P(DisplayPixelsTest, ShowsFrameAfterFrame) {
  const Window window = open({});
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    const Frame frame = noiseFrame(kFrameSize, seed);
    deliver(display, player, frame);
    ASSERT_TRUE(showsSoon(window, pictureOf(frame))) << "frame " << seed;
  }
}

TEST_P(DisplayPixelsTest, SeveralWindowsShowTheirOwnFrames) {
  std::vector<Window> windows;
  for (std::uint32_t i = 0; i < 4; ++i) {
    windows.push_back(
        open({.title = "window " + std::to_string(i), .position = {10 + 100 * i, 20}}));
    deliver(display, player, noiseFrame(kFrameSize, i));
  }
  for (std::uint32_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(showsSoon(windows[i], pictureOf(noiseFrame(kFrameSize, i)))) << "window " << i;
  }
}

TEST_P(DisplayPixelsTest, AWindowIsWhereAndAsLargeAsAsked) {
  const Window window = open({.windowSize = Size{200, 100}, .position = {321, 123}});
  EXPECT_EQ(x.geometry(window), (Geometry{321, 123, 200, 100}));
}

TEST_P(DisplayPixelsTest, AWidthOf0OpensAWindow1PixelWide) {
  const Window window = open({.windowSize = Size{0, 100}});
  EXPECT_EQ(x.geometry(window).width, 1);
  EXPECT_EQ(x.geometry(window).height, 100);
}

TEST_P(DisplayPixelsTest, APositionOf20000IsWhere10000Is) {
  const Window window = open({.position = {20000, static_cast<std::uint32_t>(-20000)}});
  EXPECT_EQ(x.geometry(window).x, 10000);
  EXPECT_EQ(x.geometry(window).y, -10000);
}

// ---- Scaled ----

TEST_P(DisplayPixelsTest, AWiderWindowHasBlackBarsLeftAndRight) {
  const Window window = open({.frameSize = {10, 10}, .windowSize = Size{40, 20}});
  const Frame frame = noiseFrame({10, 10}, 1);
  deliver(display, player, frame);
  EXPECT_TRUE(showsSoon(window, letterboxed(enlarged(pictureOf(frame), 2), 40, 20)));
}

TEST_P(DisplayPixelsTest, AHigherWindowHasBlackBarsAboveAndBelow) {
  const Window window = open({.frameSize = {10, 10}, .windowSize = Size{20, 40}});
  const Frame frame = noiseFrame({10, 10}, 1);
  deliver(display, player, frame);
  EXPECT_TRUE(showsSoon(window, letterboxed(enlarged(pictureOf(frame), 2), 20, 40)));
}

TEST_P(DisplayPixelsTest, AWindowOfTheFramesProportionsIsFilled) {
  const Window window = open({.frameSize = {16, 9}, .windowSize = Size{160, 90}});
  const Frame frame = noiseFrame({16, 9}, 1);
  deliver(display, player, frame);
  EXPECT_TRUE(showsSoon(window, enlarged(pictureOf(frame), 10)));
}

TEST_P(DisplayPixelsTest, A640x480FrameInAWindowOf1000x500Fills666x500OfIt) {
  const Window window = open({.frameSize = {640, 480}, .windowSize = Size{1000, 500}});
  deliver(display, player, plainFrame({640, 480}, 0xFFFFFF));
  EXPECT_TRUE(
      showsSoon(window, letterboxed(pictureOf(plainFrame({666, 500}, 0xFFFFFF)), 1000, 500)));
}

TEST_P(DisplayPixelsTest, A640x480FrameInAWindowOf500x1000Fills500x375OfIt) {
  const Window window =
      open({.frameSize = {640, 480}, .windowSize = Size{500, 1000}, .position = {0, 0}});
  deliver(display, player, plainFrame({640, 480}, 0xFFFFFF));
  EXPECT_TRUE(
      showsSoon(window, letterboxed(pictureOf(plainFrame({500, 375}, 0xFFFFFF)), 500, 1000)));
}

// ---- Redrawn ----

TEST_P(DisplayPixelsTest, AnUncoveredWindowIsDrawnAgain) {
  const Window window = open({});
  const Frame frame = noiseFrame(kFrameSize, 1);
  deliver(display, player, frame);
  ASSERT_TRUE(showsSoon(window, pictureOf(frame)));
  ASSERT_TRUE(x.cover(window));
  const Image covered = pictureOf(plainFrame(kFrameSize, XClient::kCoverColour));
  ASSERT_EQ(x.rootPixels(x.geometry(window)), covered);
  ASSERT_TRUE(x.uncover());
  EXPECT_TRUE(showsSoon(window, pictureOf(frame)));
}

TEST_P(DisplayPixelsTest, AResizedWindowIsDrawnAgainLetterboxed) {
  const Window window = open({.frameSize = {10, 10}, .windowSize = Size{20, 20}});
  const Frame frame = noiseFrame({10, 10}, 1);
  deliver(display, player, frame);
  ASSERT_TRUE(showsSoon(window, enlarged(pictureOf(frame), 2)));
  ASSERT_TRUE(x.resize(window, 80, 40));
  EXPECT_TRUE(showsSoon(window, letterboxed(enlarged(pictureOf(frame), 4), 80, 40)));
  ASSERT_TRUE(x.resize(window, 30, 50));
  EXPECT_TRUE(showsSoon(window, letterboxed(enlarged(pictureOf(frame), 3), 30, 50)));
}

TEST_P(DisplayPixelsTest, AResizedWindowShowsNewFrames) {
  const Window window = open({.frameSize = {10, 10}, .windowSize = Size{20, 20}});
  ASSERT_TRUE(x.resize(window, 80, 40));
  ASSERT_TRUE(
      showsSoon(window, letterboxed(enlarged(pictureOf(plainFrame({10, 10}, 0)), 4), 80, 40)));
  const Frame frame = noiseFrame({10, 10}, 2);
  deliver(display, player, frame);
  EXPECT_TRUE(showsSoon(window, letterboxed(enlarged(pictureOf(frame), 4), 80, 40)));
}

}  // namespace
}  // namespace framesink::test
