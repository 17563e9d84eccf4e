// Interrupts the host's or the display's part of handing a frame over at every instruction, and
// runs the other part there.
#include "support/interruption.hpp"

#if defined(FRAMESINK_TESTS_CAN_INTERRUPT)

#include <gtest/gtest.h>

#include <array>
#include <optional>

#include "display/sdl_player.hpp"
#include "display_helpers.hpp"
#include "shown_frames.hpp"
#include "support/frames.hpp"

namespace framesink::test {
namespace {

constexpr Size kSmall{4, 4};

class InterruptedHandOff : public DummyVideoTest {
 protected:
  InterruptedHandOff() {
    initVideo();
    player.emplace(initial.data(), requestFor({.frameSize = kSmall}), 0);
    player->createWindow();
  }
  ~InterruptedHandOff() override {
    player.reset();
    quitSdl();
  }

  void submit(const Frame& frame) { player->submitFrame(frame.data()); }
  // Draws, as the display thread does, until the player has no new frame.
  void draw() {
    while (player->hasNewFrame()) player->showNewestFrame();
  }

  // Interrupts the display after `instructions` instructions and submits `number` frames there.
  // False if the display chose its buffer before that.
  bool isDisplayInterruptedAfter(int instructions, std::size_t number) {
    submit(initial);
    const ShownFrames shown(recorder, kSmall);
    Interruption submission(instructions, [&] {
      for (std::size_t i = 0; i < number; ++i) submit(frames.at(i));
    });
    submission.endAt(&SDL_LockTexture);
    draw();
    lastShown = shown.last();
    return submission.end();
  }

  // Submits the first frame, interrupts that after `instructions` instructions and draws there;
  // draws again at the end. False if the frame was submitted before that.
  bool isHostInterruptedAfter(int instructions) {
    submit(initial);
    draw();
    const ShownFrames shown(recorder, kSmall);
    Interruption drawing(instructions, [&] { draw(); });
    submit(frames[0]);
    const bool interrupted = drawing.end();
    draw();
    lastShown = shown.last();
    return interrupted;
  }

  const Frame initial = noiseFrame(kSmall, 0);
  const std::array<Frame, 3> frames{noiseFrame(kSmall, 1), noiseFrame(kSmall, 2),
                                    noiseFrame(kSmall, 3)};
  std::optional<SdlPlayer> player;
  Image lastShown;
};

// If the display chose its buffer before it takes newFrame, it would never draw a frame that
// arrives in between.
TEST_F(InterruptedHandOff, ToAnInterruptedDisplayEndsWithTheLastFrameDrawn) {
  for (std::size_t number = 1; number <= frames.size(); ++number) {
    int instructions = 0;
    for (bool interrupted = true; interrupted; ++instructions) {
      interrupted = isDisplayInterruptedAfter(instructions, number);
      ASSERT_EQ(lastShown, pictureOf(interrupted ? frames.at(number - 1) : initial))
          << number << " frames after " << instructions << " instructions";
    }
    EXPECT_GT(instructions, 10);
  }
}

// If the host set newFrame before it marks the buffer, a display that draws in between would draw
// the previous frame and then find no new one.
TEST_F(InterruptedHandOff, ByAnInterruptedHostEndsWithTheLastFrameDrawn) {
  int instructions = 0;
  for (bool interrupted = true; interrupted; ++instructions) {
    interrupted = isHostInterruptedAfter(instructions);
    ASSERT_EQ(lastShown, pictureOf(frames[0])) << "after " << instructions << " instructions";
  }
  EXPECT_GT(instructions, 10);
}

}  // namespace
}  // namespace framesink::test

#endif
