// Memory may run out at any point of an export.
#include <gtest/gtest.h>

#include <new>

#include "host_block.hpp"
#include "recorded_frame.hpp"
#include "support/allocations.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

constexpr Size kFrame{64, 48};
constexpr std::size_t kEnough = 1000;

class ExhaustedMemory : public BareXTest, public testing::WithParamInterface<std::uint8_t> {
 protected:
  const BlockRequest request{
      .openAtStart = 1, .allocatePlaneBuffers = 1, .synchronous = GetParam()};
  const InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
};

std::string displayName(const testing::TestParamInfo<std::uint8_t>& test) {
  return test.param != 0 ? "Synchronous" : "Threaded";
}
INSTANTIATE_TEST_SUITE_P(Display, ExhaustedMemory, testing::Values(0, 1), displayName);

TEST_P(ExhaustedMemory, PassesFromLibCreateToTheHostAndLeavesNothingBehind) {
  ErrorBuffer error;
  void* block = nullptr;
  std::size_t left = 0;
  for (; block == nullptr && left < kEnough; ++left) {
    try {
      const OutOfMemory exhausted(left);
      block = createBlock(error.data(), request, &input);
    } catch (const std::bad_alloc&) {
    }
    if (block != nullptr) break;
    ASSERT_TRUE(recordedFrame(request.name).empty()) << left;
    ASSERT_EQ(isPlayerOpen(request.name.c_str()), 0) << left;
  }
  EXPECT_GT(left, 5U);
  EXPECT_TRUE(error.isUntouched());
  EXPECT_EQ(isPlayerOpen(request.name.c_str()), 1);
  EXPECT_EQ(x.geometry(x.waitForWindow(request.title)), (Geometry{60, 80, 64, 48}));
  libDestroy(block);
}

// Each control either does all of its work or nothing.
TEST_P(ExhaustedMemory, IsTakenSilentlyByTheWindowControls) {
  BlockRequest closed = request;
  closed.openAtStart = 0;
  const HostBlock block(input, closed);
  const std::uint32_t pair[2] = {60, 80};
  for (std::size_t left = 0; left < 20; ++left) {
    const OutOfMemory exhausted(left);
    std::int32_t position[2];
    std::int32_t size[2];
    createVideoWindow(closed.name.c_str(), 0, pair, pair, 0);
    getWindowPosSize(closed.name.c_str(), position, size);
    isPlayerOpen(closed.name.c_str());
    renameVideoWindow(closed.name.c_str(), closed.name.c_str(), closed.name.c_str());
    destroyVideoWindow(
        "a name so long that it has to be allocated to be looked up in the registry");
  }
  createVideoWindow(closed.name.c_str(), 0, pair, pair, 0);
  EXPECT_EQ(isPlayerOpen(closed.name.c_str()), 1);
}

}  // namespace
}  // namespace framesink::test
