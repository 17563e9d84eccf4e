// The calls that a window makes to SDL. The windows here belong to no server.
#include "display/sdl_window.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "display_helpers.hpp"
#include "process/sdl_session.hpp"
#include "support/capture_stderr.hpp"
#include "support/frames.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {
namespace {

using Numbers = std::vector<std::int64_t>;
using Names = std::vector<std::string>;

constexpr std::uint32_t kUndefined = 0x1FFF0000;

// A coordinate as the host passes it: unsigned, in two's complement.
std::uint32_t coordinate(std::int32_t value) { return static_cast<std::uint32_t>(value); }

struct WindowWish {
  Size textureSize = kFrameSize;
  Size size = kFrameSize;
  Position position = kPlace;
  bool fullscreen = false;
};

class SdlWindowTest : public DummyVideoTest {
 protected:
  SdlWindowTest() { initVideo(); }
  ~SdlWindowTest() override { quitSdl(); }

  static std::unique_ptr<SdlWindow> open(const WindowWish& wish = {}) {
    return std::make_unique<SdlWindow>(requestFor({.title = "title",
                                                   .frameSize = wish.textureSize,
                                                   .windowSize = wish.size,
                                                   .position = wish.position,
                                                   .fullscreen = wish.fullscreen}));
  }

  // x, y, width, height and flags as SDL gets them. SDL may fail to make a window of that size.
  Numbers createdWith(const WindowWish& wish) {
    const CaptureStderr failure;
    open(wish);
    const Numbers arguments = recorder.last("SDL_CreateWindow").arguments;
    return {arguments.begin() + 1, arguments.end()};
  }
  Numbers placedAt(std::int32_t x, std::int32_t y) {
    const Numbers created = createdWith({.position = {coordinate(x), coordinate(y)}});
    return {created[0], created[1]};
  }
  Numbers sizedAs(std::uint32_t width, std::uint32_t height) {
    const Numbers created = createdWith({.size = {width, height}});
    return {created[2], created[3]};
  }

  Numbers logicalSize(Size textureSize, Size windowSize) {
    const CaptureStderr failure;
    open({.textureSize = textureSize, .size = windowSize});
    const Numbers arguments = recorder.last("SDL_RenderSetLogicalSize").arguments;
    return {arguments[1], arguments[2]};
  }

  // What the library prints on standard error while it makes a window.
  std::string saidWhileOpening(const WindowWish& wish = {}) {
    const CaptureStderr said;
    window = open(wish);
    return said.text();
  }

  // The recorded calls to `functions`, in order.
  Names callsFor(Names functions) const {
    Names found;
    for (const std::string& name : recorder.order()) {
      if (std::find(functions.begin(), functions.end(), name) != functions.end()) {
        found.push_back(name);
      }
    }
    return found;
  }

  std::unique_ptr<SdlWindow> window;
};

// ---- Place, size and flags ----

TEST_F(SdlWindowTest, IsCreatedWithTitlePlaceAndSize) {
  window = open({.size = {320, 240}, .position = {12, 34}});
  const SdlCall call = recorder.last("SDL_CreateWindow");
  EXPECT_EQ(call.texts, Names{"title"});
  EXPECT_EQ(Numbers(call.arguments.begin() + 1, call.arguments.end()),
            (Numbers{12, 34, 320, 240, SDL_WINDOW_RESIZABLE}));
}

TEST_F(SdlWindowTest, AnUndefinedPositionLetsSdlPlaceTheWindow) {
  EXPECT_EQ(placedAt(kUndefined, kUndefined), (Numbers{kUndefined, kUndefined}));
  EXPECT_EQ(placedAt(kUndefined, 5), (Numbers{kUndefined, 5}));
  EXPECT_EQ(placedAt(5, kUndefined), (Numbers{5, kUndefined}));
}

TEST_F(SdlWindowTest, APositionOf20000Becomes10000) {
  EXPECT_EQ(placedAt(20000, 20000), (Numbers{10000, 10000}));
  EXPECT_EQ(placedAt(10001, 10000), (Numbers{10000, 10000}));
  EXPECT_EQ(placedAt(INT32_MAX, INT32_MAX), (Numbers{10000, 10000}));
}

TEST_F(SdlWindowTest, APositionOfMinus20000BecomesMinus10000) {
  EXPECT_EQ(placedAt(-20000, -20000), (Numbers{-10000, -10000}));
  EXPECT_EQ(placedAt(-10001, -10000), (Numbers{-10000, -10000}));
  EXPECT_EQ(placedAt(INT32_MIN, -1), (Numbers{-10000, -1}));
}

TEST_F(SdlWindowTest, ACentredPositionIsAPositionLikeAnyOther) {
  EXPECT_EQ(placedAt(0x2FFF0000, kUndefined + 1), (Numbers{10000, 10000}));
}

TEST_F(SdlWindowTest, AWidthOf0OpensAWindowOf1Pixel) {
  EXPECT_EQ(sizedAs(0, 48), (Numbers{1, 48}));
  EXPECT_EQ(sizedAs(64, 0), (Numbers{64, 1}));
}

TEST_F(SdlWindowTest, AWidthOf30000AsksForAWindowOf20000Pixels) {
  EXPECT_EQ(sizedAs(30000, 48), (Numbers{20000, 48}));
  EXPECT_EQ(sizedAs(64, 30000), (Numbers{64, 20000}));
  EXPECT_EQ(sizedAs(20000, 20001), (Numbers{20000, 20000}));
}

TEST_F(SdlWindowTest, ASizeIsComparedWithoutSign) {
  EXPECT_EQ(sizedAs(4294967295, 4294967295), (Numbers{20000, 20000}));
  EXPECT_EQ(sizedAs(0x80000000, 1), (Numbers{20000, 1}));
}

TEST_F(SdlWindowTest, RemembersPlaceAndSizeAsGiven) {
  const CaptureStderr failure;
  window = open({.size = {30000, 0}, .position = {coordinate(-20000), kUndefined}});
  EXPECT_EQ(window->geometry().position, (Position{coordinate(-20000), kUndefined}));
  EXPECT_EQ(window->geometry().size, (Size{30000, 0}));
}

TEST_F(SdlWindowTest, RemembersWhatEventsTell) {
  window = open();
  window->setStoredPosition({1, 2});
  window->setStoredSize({3, 4});
  EXPECT_EQ(window->geometry().position, (Position{1, 2}));
  EXPECT_EQ(window->geometry().size, (Size{3, 4}));
}

TEST_F(SdlWindowTest, AFullScreenWindowIsCreatedHidden) {
  EXPECT_EQ(createdWith({.fullscreen = true}).back(), 0x228);
  EXPECT_EQ(recorder.count("SDL_ShowWindow"), 0U);
}

TEST_F(SdlWindowTest, AFullScreenWindowIsShownOnlyAfterItHasBeenMadeFullScreen) {
  window = open({.fullscreen = true});
  recorder.forget();
  window->enterFullscreen();
  EXPECT_EQ(recorder.order(), (Names{"SDL_SetWindowFullscreen", "SDL_ShowWindow"}));
  EXPECT_EQ(recorder.last("SDL_SetWindowFullscreen").arguments[1], 0x1001);
  EXPECT_TRUE(window->isFullscreen());
}

TEST_F(SdlWindowTest, LeavesFullScreenForItsStoredSize) {
  window = open({.size = {300, 200}, .fullscreen = true});
  window->enterFullscreen();
  window->setStoredSize({310, 210});
  recorder.forget();
  EXPECT_TRUE(window->leaveFullscreen());
  EXPECT_EQ(recorder.order(), (Names{"SDL_SetWindowFullscreen", "SDL_SetWindowSize"}));
  EXPECT_EQ(recorder.last("SDL_SetWindowFullscreen").arguments[1], 0);
  const Numbers sized = recorder.last("SDL_SetWindowSize").arguments;
  EXPECT_EQ(Numbers(sized.begin() + 1, sized.end()), (Numbers{310, 210}));
  EXPECT_FALSE(window->isFullscreen());
}

TEST_F(SdlWindowTest, SaysWhenSdlRefusesToLeaveFullScreen) {
  window = open({.fullscreen = true});
  window->enterFullscreen();
  recorder.refuse("SDL_SetWindowFullscreen");
  EXPECT_FALSE(window->leaveFullscreen());
  EXPECT_TRUE(window->isFullscreen());
}

TEST_F(SdlWindowTest, AnyFullScreenFlagCounts) {
  window = open();
  EXPECT_FALSE(window->isFullscreen());
  SDL_SetWindowFullscreen(SDL_GetWindowFromID(window->windowId()), SDL_WINDOW_FULLSCREEN);
  EXPECT_TRUE(window->isFullscreen());
}

TEST_F(SdlWindowTest, GivesTheWindowItsIconAndReleasesThePicture) {
  window = open();
  const Numbers picture = recorder.last("SDL_CreateRGBSurfaceFrom").arguments;
  EXPECT_EQ(Numbers(picture.begin() + 1, picture.end()),
            (Numbers{16, 16, 16, 32, 0xF000, 0x0F00, 0x00F0, 0x000F}));
  const std::int64_t surface = recorder.last("SDL_CreateRGBSurfaceFrom").result;
  EXPECT_EQ(recorder.last("SDL_SetWindowIcon").arguments,
            (Numbers{recorder.last("SDL_CreateWindow").result, surface}));
  EXPECT_EQ(recorder.last("SDL_FreeSurface").arguments, Numbers{surface});
  EXPECT_EQ(callsFor({"SDL_CreateRGBSurfaceFrom", "SDL_SetWindowIcon", "SDL_FreeSurface"}),
            (Names{"SDL_CreateRGBSurfaceFrom", "SDL_SetWindowIcon", "SDL_FreeSurface"}));
}

TEST_F(SdlWindowTest, KnowsItsSdlId) {
  window = open();
  EXPECT_NE(window->windowId(), 0U);
  EXPECT_EQ(window->windowId(), recorder.last("SDL_GetWindowID").result);
}

TEST_F(SdlWindowTest, TakesANewTitle) {
  window = open();
  window->setTitle("another");
  const SdlCall call = recorder.last("SDL_SetWindowTitle");
  EXPECT_EQ(call.texts, Names{"another"});
  EXPECT_EQ(call.arguments[0], recorder.last("SDL_CreateWindow").result);
}

TEST_F(SdlWindowTest, IsRaised) {
  window = open();
  window->raise();
  EXPECT_EQ(recorder.last("SDL_RaiseWindow").arguments,
            Numbers{recorder.last("SDL_CreateWindow").result});
}

// ---- Renderer, texture and logical size ----

TEST_F(SdlWindowTest, DrawsInSoftwareByChoice) {
  window = open();
  ASSERT_EQ(recorder.count("SDL_CreateRenderer"), 1U);
  EXPECT_EQ(recorder.last("SDL_CreateRenderer").arguments,
            (Numbers{recorder.last("SDL_CreateWindow").result, -1, SDL_RENDERER_SOFTWARE}));
}

TEST_F(SdlWindowTest, HasOneStreamingTextureOfTheFramesSize) {
  window = open({.textureSize = {31, 17}, .size = {320, 240}});
  ASSERT_EQ(recorder.count("SDL_CreateTexture"), 1U);
  EXPECT_EQ(recorder.last("SDL_CreateTexture").arguments,
            (Numbers{recorder.last("SDL_CreateRenderer").result, 372645892, 1, 31, 17}));
}

TEST_F(SdlWindowTest, A640x480FrameInAWindowOf1000x500HasTheLogicalSize666x500) {
  EXPECT_EQ(logicalSize({640, 480}, {1000, 500}), (Numbers{666, 500}));
}

TEST_F(SdlWindowTest, A640x480FrameInAWindowOf500x1000HasTheLogicalSize500x375) {
  EXPECT_EQ(logicalSize({640, 480}, {500, 1000}), (Numbers{500, 375}));
}

TEST_F(SdlWindowTest, AFrameOfTheWindowsSizeFillsIt) {
  EXPECT_EQ(logicalSize({641, 479}, {641, 479}), (Numbers{641, 479}));
  EXPECT_EQ(logicalSize({1, 1}, {1, 1}), (Numbers{1, 1}));
}

TEST_F(SdlWindowTest, ALogicalSizeMayTruncateTo0) {
  EXPECT_EQ(logicalSize({1000, 1}, {100, 100}), (Numbers{100, 0}));
  EXPECT_EQ(logicalSize({1, 1000}, {100, 100}), (Numbers{0, 100}));
}

TEST_F(SdlWindowTest, AWindowWhoseLogicalSizeTruncatesTo0DrawsOn) {
  EXPECT_EQ(saidWhileOpening({.textureSize = {1000, 1}, .size = {100, 100}}), "");
  window->showFrame(plainFrame({1000, 1}, 0xFFFFFF).data());
  EXPECT_EQ(recorder.count("SDL_RenderPresent"), 1U);
}

TEST_F(SdlWindowTest, AFrameWithoutPixelsHasALogicalWidthOf0) {
  EXPECT_EQ(logicalSize({0, 0}, {100, 80}), (Numbers{0, 80}));
}

TEST_F(SdlWindowTest, AFrameWithoutPixelsHasNoTextureAndIsNotDrawn) {
  const std::string said = saidWhileOpening({.textureSize = {0, 0}, .size = {100, 80}});
  EXPECT_EQ(said, "Unable to create texture: Texture dimensions can't be 0\n");
  window->showFrame(nullptr);
  EXPECT_EQ(recorder.count("SDL_LockTexture"), 0U);
}

TEST_F(SdlWindowTest, ShowsAFrame) {
  window = open();
  recorder.forget();
  window->showFrame(noiseFrame(kFrameSize, 1).data());
  EXPECT_EQ(recorder.order(), (Names{"SDL_LockTexture", "SDL_UnlockTexture", "SDL_RenderClear",
                                     "SDL_RenderCopy", "SDL_RenderPresent"}));
  EXPECT_EQ(recorder.last("SDL_LockTexture").arguments[1], 0) << "the whole texture";
  const Numbers copied = recorder.last("SDL_RenderCopy").arguments;
  EXPECT_EQ(Numbers(copied.begin() + 2, copied.end()), (Numbers{0, 0}));
}

TEST_F(SdlWindowTest, ReleasesTextureRendererAndWindowInThisOrder) {
  window = open();
  const std::int64_t texture = recorder.last("SDL_CreateTexture").result;
  const std::int64_t renderer = recorder.last("SDL_CreateRenderer").result;
  const std::int64_t handle = recorder.last("SDL_CreateWindow").result;
  recorder.forget();
  window.reset();
  EXPECT_EQ(recorder.order(),
            (Names{"SDL_DestroyTexture", "SDL_DestroyRenderer", "SDL_DestroyWindow"}));
  EXPECT_EQ(recorder.last("SDL_DestroyTexture").arguments, Numbers{texture});
  EXPECT_EQ(recorder.last("SDL_DestroyRenderer").arguments, Numbers{renderer});
  EXPECT_EQ(recorder.last("SDL_DestroyWindow").arguments, Numbers{handle});
}

}  // namespace
}  // namespace framesink::test
