// What a user does to windows under a window manager, and how the servers react.
#include <gtest/gtest.h>

#include <string>

#include "display_helpers.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

// The parameter: whether the server is threaded.
class UserHandsTest : public ManagedXTest, public testing::WithParamInterface<bool> {
 protected:
  void open(const Opening& opening = {}) {
    player = addPlayer(display, opening);
    window = x.waitForWindow(opening.title);
    shown = noiseFrame(opening.frameSize, 1);
    deliver(display, player, shown);
    EXPECT_TRUE(becomes([&] { return x.isViewable(window); }));
  }
  // Waits for `holds`, and calls a synchronous server meanwhile: it takes events only in its calls.
  template <class Predicate>
  bool becomes(Predicate holds, std::chrono::milliseconds deadline = kDeadline) {
    return waitUntil(
        [&] {
          live();
          return holds();
        },
        deadline);
  }
  void live() {
    if (!GetParam()) deliver(display, kNoPlayer, plainFrame({1, 1}, 0));
  }
  WindowGeometry stored(std::uint32_t which) const {
    return display.windowGeometry(which).value_or(WindowGeometry{});
  }
  WindowGeometry stored() const { return stored(player); }
  bool isFullscreen() { return x.isFullscreen(window) && display.isPlayerFullscreen(player); }
  bool isWindowed() { return !x.isFullscreen(window) && !display.isPlayerFullscreen(player); }
  // The window's size according to the X server.
  Size sizeOnScreen() {
    const Geometry place = x.geometry(window);
    return {static_cast<std::uint32_t>(place.width), static_cast<std::uint32_t>(place.height)};
  }

  SdlServer display{GetParam()};
  std::uint32_t player = 0;
  Window window = kNoWindow;
  Frame shown;
};
INSTANTIATE_TEST_SUITE_P(Display, UserHandsTest, testing::Bool(), [](const auto& parameter) {
  return std::string(parameter.param ? "Threaded" : "Synchronous");
});

// ---- Title and close button ----

TEST_P(UserHandsTest, AWindowBearsItsTitle) {
  open({.title = "Schräger Titel"});
  EXPECT_EQ(x.title(window), "Schräger Titel");
}

TEST_P(UserHandsTest, ARenamedWindowBearsItsNewTitle) {
  open();
  display.renamePlayer(player, "another");
  EXPECT_TRUE(becomes([&] { return x.title(window) == "another"; }));
}

TEST_P(UserHandsTest, TheCloseButtonClosesTheWindow) {
  open();
  ASSERT_TRUE(x.closeButton(window));
  EXPECT_TRUE(becomes([&] { return !x.exists(window); }));
  EXPECT_FALSE(display.hasOpenPlayer(player));
}

TEST_P(UserHandsTest, TheCloseButtonClosesThatWindowAlone) {
  open({.title = "first"});
  const std::uint32_t first = player;
  const Window firstWindow = window;
  open({.title = "second"});
  ASSERT_TRUE(x.closeButton(firstWindow));
  EXPECT_TRUE(becomes([&] { return !x.exists(firstWindow); }));
  EXPECT_FALSE(display.hasOpenPlayer(first));
  EXPECT_TRUE(display.hasOpenPlayer(player));
  shown = noiseFrame(kFrameSize, 2);
  deliver(display, player, shown);
  EXPECT_TRUE(becomes([&] { return x.pixels(window) == pictureOf(shown); }));
}

TEST_P(UserHandsTest, AClosedWindowTakesFramesWithoutAnError) {
  open();
  ASSERT_TRUE(x.closeButton(window));
  ASSERT_TRUE(becomes([&] { return !x.exists(window); }));
  for (int i = 0; i < 10; ++i) deliver(display, player, shown);
  EXPECT_EQ(x.findWindow("player"), std::nullopt);
}

// ---- Moving and resizing ----

TEST_P(UserHandsTest, AMoveIsStored) {
  open();
  ASSERT_TRUE(x.move(window, 400, 300));
  const auto isStored = [&] {
    const Geometry place = x.geometry(window);
    const auto position = stored().position;
    return place.x >= 400 && static_cast<int>(position.x) == place.x &&
           static_cast<int>(position.y) == place.y;
  };
  EXPECT_TRUE(becomes(isStored));
  EXPECT_EQ(stored().size, kFrameSize);
}

TEST_P(UserHandsTest, AResizeIsStoredAndTheFrameDrawnAgain) {
  open({.frameSize = {40, 40}, .windowSize = Size{40, 40}});
  ASSERT_TRUE(x.resize(window, 200, 120));
  EXPECT_TRUE(becomes([&] { return stored().size == Size{200, 120}; }));
  const Image wanted = letterboxed(enlarged(pictureOf(shown), 3), 200, 120);
  EXPECT_TRUE(becomes([&] { return x.pixels(window) == wanted; }));
}

TEST_P(UserHandsTest, AMaximisedAndRestoredWindowIsDrawnEachTime) {
  open();
  ASSERT_TRUE(x.maximise(window));
  ASSERT_TRUE(becomes([&] { return x.isMaximised(window) && stored().size == sizeOnScreen(); }));
  EXPECT_GT(stored().size.width, kFrameSize.width);
  ASSERT_TRUE(x.restore(window));
  EXPECT_TRUE(becomes([&] { return stored().size == kFrameSize; }));
  EXPECT_TRUE(becomes([&] { return x.pixels(window) == pictureOf(shown); }));
}

TEST_P(UserHandsTest, AWindowThatComesBackFromItsIconIsDrawn) {
  open();
  ASSERT_TRUE(becomes([&] { return x.pixels(window) == pictureOf(shown); }));
  ASSERT_TRUE(x.iconify(window));
  ASSERT_TRUE(becomes([&] { return x.isIconified(window); }));
  shown = noiseFrame(kFrameSize, 2);
  deliver(display, player, shown);
  ASSERT_TRUE(x.restore(window));
  EXPECT_TRUE(becomes([&] { return x.pixels(window) == pictureOf(shown); }));
}

TEST_P(UserHandsTest, ARaisedWindowComesToTheTop) {
  open({.title = "first"});
  const std::uint32_t first = player;
  const Window firstWindow = window;
  open({.title = "second"});
  ASSERT_TRUE(becomes([&] { return x.stackingTop() == window; }));
  display.raisePlayer(first);
  EXPECT_TRUE(becomes([&] { return x.stackingTop() == firstWindow; }));
}

// ---- Full screen ----

TEST_P(UserHandsTest, AFullScreenWindowCoversTheScreen) {
  open({.fullscreen = true});
  EXPECT_TRUE(becomes([&] { return isFullscreen(); }));
  EXPECT_TRUE(becomes([&] { return x.geometry(window) == x.screenGeometry(); }));
}

TEST_P(UserHandsTest, AFullScreenWindowShowsItsFrameLetterboxed) {
  open({.frameSize = {1024, 1024}, .windowSize = Size{256, 256}, .fullscreen = true});
  ASSERT_TRUE(becomes([&] { return x.geometry(window) == x.screenGeometry(); }));
  const Image wanted = letterboxed(pictureOf(shown), 1280, 1024);
  EXPECT_TRUE(becomes([&] { return x.pixels(window) == wanted; }));
}

TEST_P(UserHandsTest, EscapeReturnsAFullScreenWindowToItsStoredSize) {
  open({.windowSize = Size{300, 200}, .fullscreen = true});
  ASSERT_TRUE(becomes([&] { return isFullscreen(); }));
  ASSERT_TRUE(becomes([&] { return x.geometry(window) == x.screenGeometry(); }));
  ASSERT_TRUE(x.pressKey(window, "Escape"));
  EXPECT_TRUE(becomes([&] { return isWindowed(); }));
  EXPECT_TRUE(becomes([&] { return sizeOnScreen() == Size{300, 200}; })) << x.geometry(window);
  EXPECT_EQ(stored().size, (Size{300, 200}));
}

TEST_P(UserHandsTest, EscapeInAWindowedWindowDoesNothing) {
  open({.windowSize = Size{300, 200}});
  const SdlRecorder recorder;
  ASSERT_TRUE(x.pressKey(window, "Escape"));
  // Events arrive in order: once the later resize has arrived, the key has arrived too.
  ASSERT_TRUE(x.resize(window, 310, 210));
  ASSERT_TRUE(becomes([&] { return stored().size == Size{310, 210}; }));
  EXPECT_EQ(recorder.count("SDL_SetWindowFullscreen"), 0U);
  EXPECT_EQ(recorder.count("SDL_SetWindowSize"), 0U);
  EXPECT_EQ(sizeOnScreen(), (Size{310, 210}));
}

TEST_P(UserHandsTest, OtherKeysLeaveAWindowFullScreen) {
  open({.windowSize = Size{300, 200}, .fullscreen = true});
  ASSERT_TRUE(becomes([&] { return isFullscreen(); }));
  ASSERT_TRUE(x.pressKey(window, "Return"));
  ASSERT_TRUE(x.pressKey(window, "a"));
  ASSERT_TRUE(x.pressKey(window, "ctrl+q"));
  EXPECT_FALSE(becomes([&] { return isWindowed(); }, std::chrono::milliseconds(50)));
}

TEST_P(UserHandsTest, FullScreenDoesNotChangeTheStoredSize) {
  open({.windowSize = Size{300, 200}, .fullscreen = true});
  ASSERT_TRUE(becomes([&] { return x.geometry(window) == x.screenGeometry(); }));
  shown = noiseFrame(kFrameSize, 3);
  deliver(display, player, shown);
  EXPECT_FALSE(becomes(
      [&] {
        return stored().size != Size{300, 200};
      },
      std::chrono::milliseconds(50)));
}

TEST_P(UserHandsTest, OnlyOneWindowIsFullScreen) {
  open({.title = "first", .windowSize = Size{300, 200}, .fullscreen = true});
  ASSERT_TRUE(becomes([&] { return isFullscreen(); }));
  const std::uint32_t first = player;
  const Window firstWindow = window;
  open({.title = "second", .windowSize = Size{400, 300}, .fullscreen = true});
  EXPECT_TRUE(becomes([&] { return isFullscreen(); }));
  EXPECT_TRUE(becomes([&] { return !x.isFullscreen(firstWindow); }));
  EXPECT_FALSE(display.isPlayerFullscreen(first));
  EXPECT_EQ(stored(first).size, (Size{300, 200}));
}

}  // namespace
}  // namespace framesink::test
