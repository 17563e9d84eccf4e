// Named windows on a user's desktop. Run each test in a separate process, because a process has one
// server of each kind.
#include <gtest/gtest.h>

#include "display/server_instances.hpp"
#include "display/video_window_registry.hpp"
#include "display_helpers.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

const WindowRequest kRequest{.title = "name",
                             .frameSize = kFrameSize,
                             .geometry = {kPlace, {320, 240}},
                             .useWindowSize = true};

class RegistryWindowsTest : public ManagedXTest {
 protected:
  WindowSetup setup() const {
    return {.name = "name",
            .window = {.title = "title", .frameSize = kFrameSize, .geometry = {kPlace, {320, 240}}},
            .openNow = true};
  }
  VideoWindow& record() const { return *registry.findVideoWindow("name"); }
  Window apply(const WindowSetup& wish) {
    registry.setupVideoWindow(wish);
    return x.waitForWindow(wish.window.title);
  }
  // The position and size that the registry reports.
  Geometry reported() const {
    std::int32_t position[2];
    std::int32_t size[2];
    registry.getVideoWindowPosSize(record(), position, size);
    return {position[0], position[1], size[0], size[1]};
  }
  void userMovesAndResizes(Window window) {
    ASSERT_TRUE(x.move(window, 400, 300));
    ASSERT_TRUE(x.resize(window, 200, 100));
    const auto isReported = [&] {
      const Geometry place = x.geometry(window);
      return place.width == 200 && place.x >= 400 && reported() == place;
    };
    ASSERT_TRUE(waitUntil(isReported)) << reported() << " reported for " << x.geometry(window);
  }
  void userCloses(Window window) {
    ASSERT_TRUE(x.closeButton(window));
    ASSERT_TRUE(waitUntil([&] { return !x.exists(window); }));
  }

  VideoWindowRegistry registry;
};

TEST_F(RegistryWindowsTest, AnUnchangedSetupKeepsTheVerySameWindow) {
  const Window window = apply(setup());
  EXPECT_EQ(apply(setup()), window);
  EXPECT_TRUE(staysSo([&] { return x.windows("title") == std::vector{window}; }));
}

TEST_F(RegistryWindowsTest, AKeptWindowKeepsItsPicture) {
  const Window window = apply(setup());
  const Frame frame = noiseFrame(kFrameSize, 1);
  threadedServer().deliverFrame(record().playerId, frame.data(), frame.size);
  ASSERT_TRUE(shows(x, window, pictureOf(frame)));
  apply(setup());
  EXPECT_TRUE(shows(x, window, pictureOf(frame)));
}

TEST_F(RegistryWindowsTest, AChangedFrameSizeGivesAFreshWindowWhereTheUserLeftTheOldOne) {
  WindowSetup wish = setup();
  wish.window.useWindowSize = true;
  const Window window = apply(wish);
  userMovesAndResizes(window);
  const Geometry left = x.geometry(window);
  SdlRecorder recorder;
  wish.window.frameSize = {32, 24};
  registry.setupVideoWindow(wish);
  ASSERT_TRUE(waitUntil([&] { return !x.exists(window); }));
  const Window fresh = x.waitForWindow("title");
  EXPECT_EQ(x.geometry(fresh).width, 200);
  EXPECT_EQ(x.geometry(fresh).height, 100);
  // Compares the request, because the window manager adds its decoration to the requested place.
  const auto asked = recorder.last("SDL_CreateWindow").arguments;
  EXPECT_EQ((Geometry{static_cast<int>(asked[1]), static_cast<int>(asked[2]),
                      static_cast<int>(asked[3]), static_cast<int>(asked[4])}),
            left);
}

TEST_F(RegistryWindowsTest, AChangedSynchronousFlagGivesAFreshWindow) {
  const Window window = apply(setup());
  WindowSetup wish = setup();
  wish.synchronous = true;
  registry.setupVideoWindow(wish);
  ASSERT_TRUE(waitUntil([&] { return !x.exists(window); }));
  EXPECT_TRUE(x.waitForWindow("title") != window);
  EXPECT_TRUE(synchronousServer().hasOpenPlayer(0));
}

TEST_F(RegistryWindowsTest, AChangedFullScreenFlagGivesAFreshWindow) {
  const Window window = apply(setup());
  WindowSetup wish = setup();
  wish.window.fullscreen = true;
  registry.setupVideoWindow(wish);
  ASSERT_TRUE(waitUntil([&] { return !x.exists(window); }));
  const Window fresh = x.waitForWindow("title");
  EXPECT_TRUE(waitUntil([&] { return x.isFullscreen(fresh); }));
}

TEST_F(RegistryWindowsTest, AResizedWindowIsMadeAfreshAtTheFramesSize) {
  const Window window = apply(setup());
  userMovesAndResizes(window);
  registry.setupVideoWindow(setup());
  ASSERT_TRUE(waitUntil([&] { return !x.exists(window); }));
  const Geometry fresh = x.geometry(x.waitForWindow("title"));
  EXPECT_EQ(fresh.width, 64);
  EXPECT_EQ(fresh.height, 48);
}

TEST_F(RegistryWindowsTest, AWindowThatTheUserClosedIsKnownAsClosed) {
  const Window window = apply(setup());
  EXPECT_TRUE(registry.isVideoWindowOpen(record()));
  userCloses(window);
  EXPECT_FALSE(registry.isVideoWindowOpen(record()));
  EXPECT_EQ(reported(), (Geometry{-2, -2, -2, -2}));
}

TEST_F(RegistryWindowsTest, AWindowThatTheUserClosedIsOpenedAgain) {
  userCloses(apply(setup()));
  registry.openVideoWindow(record(), kRequest);
  const Window window = x.waitForWindow("name");
  EXPECT_EQ(x.geometry(window).width, 320);
}

TEST_F(RegistryWindowsTest, OpeningAnOpenWindowRaisesIt) {
  const Window window = apply(setup());
  WindowSetup other = setup();
  other.name = "other";
  other.window.title = "other title";
  const Window otherWindow = apply(other);
  ASSERT_TRUE(waitUntil([&] { return x.stackingTop() == otherWindow; }));
  registry.openVideoWindow(record(), kRequest);
  EXPECT_TRUE(waitUntil([&] { return x.stackingTop() == window; }));
}

TEST_F(RegistryWindowsTest, ARenamedWindowBearsItsNewTitle) {
  const Window window = apply(setup());
  registry.renameVideoWindowCore("name", "new", "new\ntitle");
  EXPECT_TRUE(waitUntil([&] { return x.title(window) == "new title"; }));
}

TEST_F(RegistryWindowsTest, AClosedRecordsWindowGoes) {
  const Window window = apply(setup());
  registry.closeVideoWindow("name");
  EXPECT_TRUE(waitUntil([&] { return !x.exists(window); }));
}

TEST_F(RegistryWindowsTest, AClosedRecordsSynchronousWindowStays) {
  WindowSetup wish = setup();
  wish.synchronous = true;
  const Window window = apply(wish);
  registry.closeVideoWindow("name");
  deliver(synchronousServer(), kNoPlayer, plainFrame(kFrameSize, 0));
  EXPECT_TRUE(x.isViewable(window));
}

TEST_F(RegistryWindowsTest, AWindowOutlivesARegistrysForgetting) {
  const Window window = apply(setup());
  registry.unregisterVideoWindow("name");
  EXPECT_TRUE(staysSo([&] { return x.isViewable(window); }));
}

}  // namespace
}  // namespace framesink::test
