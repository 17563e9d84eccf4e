// What setupVideoWindow does with a window when its block is created again, rule by rule, without a
// screen. Run each test in a separate process, because a process has one server of each kind.
#include <gtest/gtest.h>

#include <new>

#include "display/server_instances.hpp"
#include "display/video_window_registry.hpp"
#include "events.hpp"
#include "server_fixtures.hpp"
#include "support/capture_stderr.hpp"

namespace framesink::test {
namespace {

constexpr Size kWindowSize{320, 240};
constexpr Size kUsersSize{400, 300};
constexpr Position kUsersPlace{500, 600};

// The parameter: whether the window is synchronous.
class RegistrySetupTest : public DummyVideoTest, public testing::WithParamInterface<bool> {
 protected:
  WindowSetup setup() const {
    return {
        .name = "name",
        .window = {.title = "title", .frameSize = kFrameSize, .geometry = {kPlace, kWindowSize}},
        .openNow = true,
        .synchronous = GetParam()};
  }

  // Sets the window up. If the record then has a player, waits until that player has its window.
  void apply(const WindowSetup& wish) {
    registry.setupVideoWindow(wish);
    if (record() != nullptr && record()->playerId != kNoPlayer) geometry();
  }
  VideoWindow* record() const { return registry.findVideoWindow("name"); }
  PlayerId player() const { return record()->playerId; }
  SdlServer& server() const { return serverFor(record()->synchronous); }
  std::optional<WindowGeometry> geometry() const { return server().windowGeometry(player()); }
  bool isOpen() const { return registry.isVideoWindowOpen(*record()); }
  bool isFullscreen() const { return server().isPlayerFullscreen(player()); }
  std::size_t windowsMade() const { return recorder.count("SDL_CreateWindow"); }
  // x, y, width and height of the newest window.
  Numbers madeAt() const {
    const Numbers arguments = recorder.last("SDL_CreateWindow").arguments;
    return {arguments.begin() + 1, arguments.end() - 1};
  }

  // Delivers an event of the user's; a synchronous server drains it at once.
  void happens(const SDL_Event& event) {
    push(event);
    if (record()->synchronous) deliver(server(), kNoPlayer, plainFrame(kFrameSize, 0));
  }
  std::uint32_t lastWindowId() const {
    return static_cast<std::uint32_t>(recorder.last("SDL_GetWindowID").result);
  }
  void userMovesAndResizes() {
    SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
    happens(windowEvent(lastWindowId(), SDL_WINDOWEVENT_MOVED, kUsersPlace.x, kUsersPlace.y));
    happens(
        windowEvent(lastWindowId(), SDL_WINDOWEVENT_RESIZED, kUsersSize.width, kUsersSize.height));
    EXPECT_TRUE(waitUntil([&] { return geometry()->size == kUsersSize; }));
    EXPECT_EQ(geometry()->position, kUsersPlace);
  }
  void userPressesEscape() {
    SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
    happens(keyEvent(lastWindowId(), SDLK_ESCAPE));
    EXPECT_TRUE(waitUntil([&] { return !isFullscreen(); }));
  }
  void userCloses() {
    SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
    happens(windowEvent(lastWindowId(), SDL_WINDOWEVENT_CLOSE));
    EXPECT_TRUE(waitUntil([&] { return !isOpen(); }));
  }

  VideoWindowRegistry registry;
};
INSTANTIATE_TEST_SUITE_P(Display, RegistrySetupTest, testing::Bool(), [](const auto& parameter) {
  return std::string(parameter.param ? "Synchronous" : "Threaded");
});

// ---- A name that is new ----

TEST_P(RegistrySetupTest, RegistersWithoutOpening) {
  WindowSetup wish = setup();
  wish.openNow = false;
  apply(wish);
  ASSERT_NE(record(), nullptr);
  EXPECT_EQ(player(), -1);
  EXPECT_EQ(record()->frameSize(), kFrameSize);
  EXPECT_EQ(record()->synchronous, GetParam());
  EXPECT_EQ(recorder.order(), Names{});
  EXPECT_EQ(existingServer(GetParam()), nullptr);
}

TEST_P(RegistrySetupTest, OpensAtTheFramesSizeUnderTheTitle) {
  apply(setup());
  EXPECT_EQ(player(), 0);
  EXPECT_EQ(recorder.last("SDL_CreateWindow").texts, Names{"title"});
  EXPECT_EQ(madeAt(), (Numbers{60, 80, 64, 48}));
  EXPECT_FALSE(isFullscreen());
}

TEST_P(RegistrySetupTest, OpensAtTheWindowSizeWhenThatIsUsed) {
  WindowSetup wish = setup();
  wish.window.useWindowSize = true;
  apply(wish);
  EXPECT_EQ(madeAt(), (Numbers{60, 80, 320, 240}));
}

TEST_P(RegistrySetupTest, OpensAtTheFramesSizeWhenTheUsedWindowSizeIsTheMarkerTwice) {
  WindowSetup wish = setup();
  wish.window.useWindowSize = true;
  wish.window.geometry.size = {0x7FFFFFFF, 0x7FFFFFFF};
  apply(wish);
  EXPECT_EQ(madeAt(), (Numbers{60, 80, 64, 48}));
}

TEST_P(RegistrySetupTest, OpensFullScreenWithTheWindowSizeToReturnTo) {
  WindowSetup wish = setup();
  wish.window.fullscreen = true;
  apply(wish);
  EXPECT_TRUE(isFullscreen());
  EXPECT_EQ(madeAt(), (Numbers{60, 80, 320, 240}));
}

TEST_P(RegistrySetupTest, TakesNameAndTitleWithBlanksForLineFeeds) {
  WindowSetup wish = setup();
  wish.name = "a\nb";
  wish.window.title = "c\nd";
  registry.setupVideoWindow(wish);
  ASSERT_NE(registry.findVideoWindow("a b"), nullptr);
  EXPECT_TRUE(waitUntil([&] { return windowsMade() == 1; }));
  EXPECT_EQ(recorder.last("SDL_CreateWindow").texts, Names{"c d"});
}

TEST_P(RegistrySetupTest, TakesAFrameWithoutPixels) {
  WindowSetup wish = setup();
  wish.window.frameSize = {0, 0};
  const CaptureStderr said;
  apply(wish);
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(madeAt(), (Numbers{60, 80, 1, 1}));
}

TEST_P(RegistrySetupTest, AFrameTooLargeIsOutOfMemoryAndLeavesNoRecord) {
  WindowSetup wish = setup();
  wish.window.frameSize = {0x8000, 0x8000};
  EXPECT_THROW(registry.setupVideoWindow(wish), std::bad_alloc);
  EXPECT_EQ(record(), nullptr);
}

// ---- A window that is kept ----

TEST_P(RegistrySetupTest, AnUnchangedWindowStays) {
  apply(setup());
  const VideoWindow* before = record();
  before->frameBuffer[0] = 77;
  apply(setup());
  EXPECT_EQ(record(), before);
  EXPECT_EQ(record()->frameBuffer[0], 77);
  EXPECT_EQ(player(), 0);
  EXPECT_EQ(windowsMade(), 1U);
  EXPECT_TRUE(isOpen());
}

TEST_P(RegistrySetupTest, AnUnchangedWindowStaysWhateverTitlePlaceOrOpeningIsAskedFor) {
  apply(setup());
  WindowSetup wish = setup();
  wish.window.title = "another";
  wish.window.geometry.position = {1, 2};
  wish.window.geometry.size = {3, 4};
  wish.openNow = false;
  apply(wish);
  EXPECT_EQ(player(), 0);
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(geometry()->position, kPlace);
  EXPECT_EQ(recorder.count("SDL_SetWindowTitle"), 0U);
}

TEST_P(RegistrySetupTest, AMovedWindowStays) {
  apply(setup());
  SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
  happens(windowEvent(lastWindowId(), SDL_WINDOWEVENT_MOVED, 500, 600));
  ASSERT_TRUE(waitUntil([&] { return geometry()->position == kUsersPlace; }));
  apply(setup());
  EXPECT_EQ(player(), 0);
}

TEST_P(RegistrySetupTest, AResizedWindowStaysWhenItsOwnSizeIsUsed) {
  WindowSetup wish = setup();
  wish.window.useWindowSize = true;
  apply(wish);
  userMovesAndResizes();
  apply(wish);
  EXPECT_EQ(player(), 0);
  EXPECT_EQ(windowsMade(), 1U);
}

TEST_P(RegistrySetupTest, AnUnchangedFullScreenWindowStays) {
  WindowSetup wish = setup();
  wish.window.fullscreen = true;
  apply(wish);
  apply(wish);
  EXPECT_EQ(player(), 0);
  EXPECT_TRUE(isFullscreen());
}

// ---- A window that is made afresh ----

TEST_P(RegistrySetupTest, AChangedFrameSizeGivesAFreshWindowInTheUsersPlace) {
  apply(setup());
  userMovesAndResizes();
  WindowSetup wish = setup();
  wish.window.frameSize = {50, 40};
  apply(wish);
  EXPECT_EQ(player(), 1);
  EXPECT_EQ(madeAt(), (Numbers{500, 600, 50, 40}));
  EXPECT_EQ(record()->frameSize(), (Size{50, 40}));
  EXPECT_FALSE(server().hasOpenPlayer(0));
}

TEST_P(RegistrySetupTest, AChangedFrameSizeKeepsTheUsersWindowSizeWhenOneIsUsed) {
  WindowSetup wish = setup();
  wish.window.useWindowSize = true;
  apply(wish);
  userMovesAndResizes();
  wish.window.frameSize = {50, 40};
  apply(wish);
  EXPECT_EQ(player(), 1);
  EXPECT_EQ(madeAt(), (Numbers{500, 600, 400, 300}));
}

TEST_P(RegistrySetupTest, EitherSideOfTheFrameCounts) {
  apply(setup());
  WindowSetup wish = setup();
  wish.window.frameSize = {kFrameSize.width, 40};
  apply(wish);
  EXPECT_EQ(player(), 1);
  wish.window.frameSize = {50, 40};
  apply(wish);
  EXPECT_EQ(player(), 2);
}

TEST_P(RegistrySetupTest, AResizedWindowIsMadeAfreshAtTheFramesSize) {
  apply(setup());
  userMovesAndResizes();
  apply(setup());
  EXPECT_EQ(player(), 1);
  EXPECT_EQ(madeAt(), (Numbers{500, 600, 64, 48}));
}

TEST_P(RegistrySetupTest, AWindowThatIsToBeFullScreenIsMadeAfreshInTheUsersPlaceAndSize) {
  apply(setup());
  userMovesAndResizes();
  WindowSetup wish = setup();
  wish.window.fullscreen = true;
  apply(wish);
  EXPECT_EQ(player(), 1);
  EXPECT_TRUE(isFullscreen());
  EXPECT_EQ(madeAt(), (Numbers{500, 600, 400, 300}));
}

TEST_P(RegistrySetupTest, AFullScreenWindowThatIsToBeWindowedIsMadeAfreshAsAskedFor) {
  WindowSetup wish = setup();
  wish.window.fullscreen = true;
  apply(wish);
  wish = setup();
  wish.window.geometry.position = {11, 22};
  apply(wish);
  EXPECT_EQ(player(), 1);
  EXPECT_FALSE(isFullscreen());
  EXPECT_EQ(madeAt(), (Numbers{11, 22, 64, 48}));
}

TEST_P(RegistrySetupTest, AFullScreenWindowThatTheUserLeftIsMadeFullScreenAfresh) {
  WindowSetup wish = setup();
  wish.window.fullscreen = true;
  apply(wish);
  userPressesEscape();
  apply(wish);
  EXPECT_EQ(player(), 1);
  EXPECT_TRUE(isFullscreen());
}

TEST_P(RegistrySetupTest, AChangedSynchronousFlagGivesAFreshWindowInTheUsersPlaceAndSize) {
  WindowSetup wish = setup();
  wish.window.useWindowSize = true;
  apply(wish);
  userMovesAndResizes();
  SdlServer& before = server();
  wish.synchronous = !GetParam();
  apply(wish);
  EXPECT_NE(&server(), &before);
  EXPECT_FALSE(before.hasOpenPlayer(0));
  EXPECT_TRUE(server().hasOpenPlayer(0));
  EXPECT_EQ(player(), 0) << "each server counts its own players";
  EXPECT_EQ(madeAt(), (Numbers{500, 600, 400, 300}));
  EXPECT_EQ(record()->synchronous, !GetParam());
}

TEST_P(RegistrySetupTest, AnOpenWindowIsReopenedEvenWhenNoOpeningIsAskedFor) {
  apply(setup());
  WindowSetup wish = setup();
  wish.window.frameSize = {50, 40};
  wish.openNow = false;
  apply(wish);
  EXPECT_EQ(player(), 1);
  EXPECT_TRUE(isOpen());
}

TEST_P(RegistrySetupTest, TheOldWindowIsClosed) {
  apply(setup());
  WindowSetup wish = setup();
  wish.window.frameSize = {50, 40};
  apply(wish);
  EXPECT_TRUE(waitUntil([&] { return recorder.count("SDL_DestroyWindow") == 1; }));
}

TEST_P(RegistrySetupTest, AFreshRecordHasAZeroedFrameBuffer) {
  apply(setup());
  record()->frameBuffer[0] = 77;
  WindowSetup wish = setup();
  wish.window.frameSize = {50, 40};
  apply(wish);
  EXPECT_EQ(record()->frameBuffer[0], 0);
}

// ---- A window that the user closed ----

TEST_P(RegistrySetupTest, AClosedWindowIsNotReopenedUnasked) {
  apply(setup());
  userCloses();
  WindowSetup wish = setup();
  wish.openNow = false;
  apply(wish);
  EXPECT_EQ(player(), -1);
  EXPECT_EQ(windowsMade(), 1U);
}

TEST_P(RegistrySetupTest, AClosedWindowIsReopenedAsAskedFor) {
  apply(setup());
  userMovesAndResizes();
  userCloses();
  apply(setup());
  EXPECT_EQ(player(), 1);
  EXPECT_EQ(madeAt(), (Numbers{60, 80, 64, 48}));
}

}  // namespace
}  // namespace framesink::test
