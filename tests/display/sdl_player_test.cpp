#include "display/sdl_player.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "display_helpers.hpp"
#include "process/sdl_session.hpp"
#include "shown_frames.hpp"
#include "support/allocations.hpp"
#include "support/frames.hpp"
#include "support/sdl_recorder.hpp"

namespace framesink::test {
namespace {

using Numbers = std::vector<std::int64_t>;
using Names = std::vector<std::string>;

class SdlPlayerTest : public DummyVideoTest {
 protected:
  SdlPlayerTest() { initVideo(); }
  ~SdlPlayerTest() override {
    player.reset();
    quitSdl();
  }

  void make(const Frame& initialFrame, bool fullscreen = false) {
    player = std::make_unique<SdlPlayer>(initialFrame.data(),
                                         requestFor({.title = "title",
                                                     .frameSize = initialFrame.size,
                                                     .windowSize = Size{320, 240},
                                                     .fullscreen = fullscreen}),
                                         5);
  }
  // Makes the player and its window, and shows the initial frame.
  void open(const Frame& initialFrame) {
    make(initialFrame);
    player->createWindow();
    player->showNewestFrame();
  }
  Frame frame(std::uint32_t seed) const { return noiseFrame(kFrameSize, seed); }

  std::unique_ptr<SdlPlayer> player;
};

// ---- Construction ----

TEST_F(SdlPlayerTest, HasNoWindowAtFirst) {
  make(frame(1));
  EXPECT_EQ(player->window(), nullptr);
  EXPECT_FALSE(player->isWindowImpossible());
  EXPECT_FALSE(player->isCloseRequested());
  EXPECT_EQ(recorder.count("SDL_CreateWindow"), 0U);
}

TEST_F(SdlPlayerTest, KnowsWhatItWasMadeWith) {
  make(frame(1), true);
  EXPECT_EQ(player->playerId(), 5U);
  EXPECT_EQ(player->frameSize(), kFrameSize);
  EXPECT_TRUE(player->isFullscreenWanted());
}

TEST_F(SdlPlayerTest, HasItsInitialFrameToShow) {
  make(frame(1));
  EXPECT_TRUE(player->hasNewFrame());
  player->createWindow();
  const ShownFrames shown(recorder, kFrameSize);
  player->showNewestFrame();
  EXPECT_EQ(shown.all(), std::vector<Image>{pictureOf(frame(1))});
}

TEST_F(SdlPlayerTest, AFrameTooLargeForABufferIsOutOfMemory) {
  const Frame frame = plainFrame({1, 1}, 0);
  const auto construct = [&] {
    return SdlPlayer(frame.data(), requestFor({.frameSize = {0x8000, 0x8000}}), 0);
  };
  EXPECT_THROW(construct(), std::bad_alloc);
}

TEST_F(SdlPlayerTest, TakesFramesWithoutPixels) {
  const std::vector<std::uint8_t> none;
  const SdlPlayer empty(none.data(), requestFor({.frameSize = {0, 0}, .windowSize = Size{64, 48}}),
                        0);
  EXPECT_TRUE(empty.hasNewFrame());
}

// ---- Hand-off ----

TEST_F(SdlPlayerTest, ShowsOnlyTheThirdOfThreeFramesSubmittedInOnePass) {
  open(frame(0));
  const ShownFrames shown(recorder, kFrameSize);
  for (const std::uint32_t seed : {1, 2, 3}) player->submitFrame(frame(seed).data());
  EXPECT_TRUE(player->hasNewFrame());
  player->showNewestFrame();
  EXPECT_FALSE(player->hasNewFrame());
  EXPECT_EQ(shown.all(), std::vector<Image>{pictureOf(frame(3))});
}

TEST_F(SdlPlayerTest, ShowsEachFrameThatIsServedInTime) {
  open(frame(0));
  for (std::uint32_t seed = 1; seed <= 10; ++seed) {
    const ShownFrames shown(recorder, kFrameSize);
    player->submitFrame(frame(seed).data());
    player->showNewestFrame();
    EXPECT_EQ(shown.last(), pictureOf(frame(seed))) << "frame " << seed;
  }
}

TEST_F(SdlPlayerTest, ShowsTheLastOfAnyNumberOfFrames) {
  open(frame(0));
  for (std::uint32_t number = 1; number <= 10; ++number) {
    const ShownFrames shown(recorder, kFrameSize);
    for (std::uint32_t i = 1; i <= number; ++i) player->submitFrame(frame(100 * number + i).data());
    player->showNewestFrame();
    EXPECT_EQ(shown.last(), pictureOf(frame(101 * number))) << number << " frames";
  }
}

TEST_F(SdlPlayerTest, ShowsItsFrameAgainWhenThereIsNoNewOne) {
  open(frame(1));
  ASSERT_FALSE(player->hasNewFrame());
  const ShownFrames shown(recorder, kFrameSize);
  player->showNewestFrame();
  EXPECT_EQ(shown.last(), pictureOf(frame(1)));
}

TEST_F(SdlPlayerTest, AFrameSubmittedWhileAnotherIsDrawnIsShownNext) {
  open(frame(1));
  bool first = true;
  const ShownFrames shown(recorder, kFrameSize, [&] {
    if (std::exchange(first, false)) player->submitFrame(frame(2).data());
  });
  player->showNewestFrame();
  EXPECT_TRUE(player->hasNewFrame());
  player->showNewestFrame();
  EXPECT_FALSE(player->hasNewFrame());
  EXPECT_EQ(shown.last(), pictureOf(frame(2)));
}

TEST_F(SdlPlayerTest, OneFrameSubmittedWhileAnotherIsDrawnLeavesThePictureWhole) {
  open(frame(1));
  const ShownFrames shown(recorder, kFrameSize, [&] { player->submitFrame(frame(2).data()); });
  player->showNewestFrame();
  EXPECT_EQ(shown.last(), pictureOf(frame(1)));
}

TEST_F(SdlPlayerTest, KeepsACopyOfEachFrame) {
  Frame host = frame(1);
  open(host);
  host = frame(2);
  player->submitFrame(host.data());
  std::fill(host.planes.begin(), host.planes.end(), std::uint8_t{0});
  const ShownFrames shown(recorder, kFrameSize);
  player->showNewestFrame();
  EXPECT_EQ(shown.last(), pictureOf(frame(2)));
}

TEST_F(SdlPlayerTest, SubmittingAllocatesNothingAndAsksNothingOfSdl) {
  open(frame(0));
  const Frame next = frame(1);
  recorder.forget();
  const std::size_t before = allocationCount();
  for (int i = 0; i < 10; ++i) player->submitFrame(next.data());
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(recorder.order(), Names{});
}

// If the marks were changed one by one, they could be left in a state from which no frame is ever
// taken.
TEST_F(SdlPlayerTest, TakesFramesAfterSeveralThreadsSubmittedAtOnce) {
  const Size small{4, 4};
  open(noiseFrame(small, 0));
  for (int round = 0; round < 50; ++round) {
    const auto submit = [&](std::uint32_t seed) {
      const Frame own = noiseFrame(small, seed);
      for (int i = 0; i < 200; ++i) player->submitFrame(own.data());
    };
    std::thread other(submit, 1);
    submit(2);
    other.join();
    const Frame last = noiseFrame(small, 1000U + static_cast<std::uint32_t>(round));
    const ShownFrames shown(recorder, small);
    player->submitFrame(last.data());
    player->showNewestFrame();
    ASSERT_EQ(shown.last(), pictureOf(last)) << "round " << round;
  }
}

// ---- The window ----

TEST_F(SdlPlayerTest, MakesAWindowAsRequested) {
  make(frame(1));
  player->createWindow();
  const SdlCall window = recorder.last("SDL_CreateWindow");
  EXPECT_EQ(window.texts, Names{"title"});
  EXPECT_EQ(Numbers(window.arguments.begin() + 1, window.arguments.end()),
            (Numbers{60, 80, 320, 240, SDL_WINDOW_RESIZABLE}));
  const Numbers texture = recorder.last("SDL_CreateTexture").arguments;
  EXPECT_EQ(Numbers(texture.begin() + 3, texture.end()), (Numbers{64, 48}));
  EXPECT_EQ(recorder.count("SDL_SetWindowFullscreen"), 0U);
}

TEST_F(SdlPlayerTest, MakesAFullScreenWindowFullScreenAndThenShowsIt) {
  make(frame(1), true);
  player->createWindow();
  const Names order = recorder.order();
  EXPECT_EQ(recorder.last("SDL_CreateWindow").arguments[5], 0x228);
  EXPECT_EQ(Names(order.end() - 2, order.end()),
            (Names{"SDL_SetWindowFullscreen", "SDL_ShowWindow"}));
}

TEST_F(SdlPlayerTest, PublishesItsWindowWhenItIsComplete) {
  make(frame(1), true);
  bool publishedEarly = false;
  const SdlHook hook = recorder.before(
      "SDL_ShowWindow", [&](const SdlCall&) { publishedEarly = player->window() != nullptr; });
  player->createWindow();
  EXPECT_FALSE(publishedEarly);
  EXPECT_NE(player->window(), nullptr);
}

TEST_F(SdlPlayerTest, AWindowThatSdlRefusesCountsAsMade) {
  recorder.refuse("SDL_GetWindowPixelFormat");
  make(frame(1));
  player->createWindow();
  ASSERT_NE(player->window(), nullptr);
  player->showNewestFrame();
  EXPECT_FALSE(player->hasNewFrame());
  EXPECT_EQ(recorder.count("SDL_LockTexture"), 0U);
}

TEST_F(SdlPlayerTest, GivesItsWindowANewTitle) {
  open(frame(1));
  player->requestTitle("another");
  EXPECT_EQ(recorder.count("SDL_SetWindowTitle"), 0U);
  player->serveTitle();
  player->serveTitle();
  EXPECT_EQ(recorder.count("SDL_SetWindowTitle"), 1U);
  EXPECT_EQ(recorder.last("SDL_SetWindowTitle").texts, Names{"another"});
}

TEST_F(SdlPlayerTest, RemembersThatItIsToClose) {
  make(frame(1));
  player->requestClose();
  EXPECT_TRUE(player->isCloseRequested());
}

TEST_F(SdlPlayerTest, TakesItsWindowWithIt) {
  open(frame(1));
  const std::int64_t window = recorder.last("SDL_CreateWindow").result;
  player.reset();
  EXPECT_EQ(recorder.last("SDL_DestroyWindow").arguments, Numbers{window});
}

TEST_F(SdlPlayerTest, GoesWithoutAWindowToo) {
  make(frame(1));
  recorder.forget();
  player.reset();
  EXPECT_EQ(recorder.order(), Names{});
}

}  // namespace
}  // namespace framesink::test
