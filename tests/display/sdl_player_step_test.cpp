// The hand-off of frames while host or display is interrupted at any instruction by the other.
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
  // As a display does in its passes, until it knows of no new frame.
  void draw() {
    while (player->hasNewFrame()) player->showNewestFrame();
  }

  // The host submits so many frames after so many instructions of the display. False when the
  // display had chosen its buffer before.
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

  // The display draws after so many instructions of the host's that submits the first frame, and
  // when it has submitted it. False when the host was ready first.
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

// Were the buffer chosen before the new frame is taken, a frame that comes in between would be taken
// and never drawn.
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

// Were the frame reported before its buffer is marked, a display that comes in between would draw
// the one before it and know of no new one.
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
