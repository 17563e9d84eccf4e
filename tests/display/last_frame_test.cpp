// The last frame of a run stays on the screen, however fast the frames came.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "display_helpers.hpp"
#include "support/scoped_variable.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

constexpr int kUsualBursts = 200;

int bursts() {
  const auto wanted = environmentVariable("FRAMESINK_LAST_FRAME_BURSTS");
  return wanted ? std::atoi(wanted->c_str()) : kUsualBursts;
}

class LastFrameTest : public BareXTest {
 protected:
  SdlServer display{/*threaded=*/true};
};

// Uses no SdlRecorder, because its wrappers would slow the display down.
TEST_F(LastFrameTest, IsOnTheScreenAfterEveryBurst) {
  const std::uint32_t player = addPlayer(display);
  const Window window = x.waitForWindow("player");
  const std::vector<Frame> passing{noiseFrame(kFrameSize, 1), noiseFrame(kFrameSize, 2),
                                   noiseFrame(kFrameSize, 3)};
  for (int burst = 0; burst < bursts(); ++burst) {
    // The bursts range from one frame to more than the display can show, so that the last frame
    // arrives in every part of a pass.
    for (int i = 0; i < burst * 7 % 400; ++i) {
      deliver(display, player, passing[static_cast<std::size_t>(i) % passing.size()]);
    }
    const Frame last = noiseFrame(kFrameSize, 1000U + static_cast<std::uint32_t>(burst));
    deliver(display, player, last);
    ASSERT_TRUE(shows(x, window, pictureOf(last), std::chrono::seconds(3))) << "burst " << burst;
  }
}

}  // namespace
}  // namespace framesink::test
