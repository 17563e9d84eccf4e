// Calls that the host makes after the library's end: each returns at once and touches nothing. The
// library cannot start again in the same process, so each test ends it in a child process.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "display/server_instances.hpp"
#include "host_block.hpp"
#include "process/host_calls.hpp"
#include "recorded_frame.hpp"
#include "support/scoped_variable.hpp"

namespace framesink::test {
namespace {

constexpr Size kFrame{64, 48};

class LateCallsDeathTest : public testing::Test {
 protected:
  LateCallsDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

  // A block whose window is open, and then the library's end.
  void outliveTheLibrary() {
    block = createBlock(error.data(), request, &input);
    EXPECT_EQ(isPlayerOpen(name.c_str()), 1);
    EXPECT_TRUE(endHostCalls());
  }
  PlayerId playerId() const { return videoWindowRegistry().playerIdOf(name); }
  // What failed goes to standard error, where the test that started this process finds it.
  [[noreturn]] void leave() {
    libDestroy(block);
    EXPECT_TRUE(error.isUntouched());
    const testing::TestResult& result =
        *testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i) {
      std::fprintf(stderr, "%s\n", result.GetTestPartResult(i).message());
    }
    std::exit(result.Failed() ? 1 : 0);
  }

  const ScopedVariable driver{"SDL_VIDEODRIVER", "dummy"};
  const std::string name = BlockRequest::testName();
  const BlockRequest request{.openAtStart = 1};
  const InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  ErrorBuffer error;
  void* block = nullptr;
};

TEST_F(LateCallsDeathTest, LibCreateMakesNoBlockAndNoRecord) {
  const auto createLate = [&] {
    EXPECT_TRUE(endHostCalls());
    EXPECT_EQ(createBlock(error.data(), request, &input), nullptr);
    EXPECT_TRUE(recordedFrame(name).empty());
    leave();
  };
  EXPECT_EXIT(createLate(), testing::ExitedWithCode(0), "");
}

TEST_F(LateCallsDeathTest, LibUpdateConvertsNothing) {
  const auto updateLate = [&] {
    outliveTheLibrary();
    const HostPlanes planes = plainPlanes(0x4080C0, kFrame);
    libUpdate(block, error.data(), planes[0], planes[1], planes[2], kFrame.width, kFrame.height);
    EXPECT_EQ(recordedFrame(name), blankFrame(kFrame));
    leave();
  };
  EXPECT_EXIT(updateLate(), testing::ExitedWithCode(0), "");
}

TEST_F(LateCallsDeathTest, TheRestOfABlocksLifeIsHarmless) {
  const auto endLate = [&] {
    outliveTheLibrary();
    libStart(block, error.data());
    libOutputs(block);
    libTerminate(block);
    libDestroy(std::exchange(block, nullptr));
    EXPECT_EQ(recordedFrame(name), blankFrame(kFrame));
    leave();
  };
  EXPECT_EXIT(endLate(), testing::ExitedWithCode(0), "");
}

TEST_F(LateCallsDeathTest, AWindowIsNeitherOpenedNorRenamedNorForgotten) {
  const auto controlLate = [&] {
    outliveTheLibrary();
    const PlayerId before = playerId();
    const std::array<std::uint32_t, 2> pair{60, 80};
    threadedServer().closePlayer(static_cast<std::uint32_t>(before));
    createVideoWindow(name.c_str(), 0, pair.data(), pair.data(), 0);
    EXPECT_EQ(playerId(), before);
    renameVideoWindow(name.c_str(), "another", "another");
    EXPECT_TRUE(recordedFrame("another").empty());
    destroyVideoWindow(name.c_str());
    EXPECT_FALSE(recordedFrame(name).empty());
    leave();
  };
  EXPECT_EXIT(controlLate(), testing::ExitedWithCode(0), "");
}

TEST_F(LateCallsDeathTest, AnOpenWindowIsNotReported) {
  const auto askLate = [&] {
    outliveTheLibrary();
    EXPECT_EQ(isPlayerOpen(name.c_str()), 0);
    std::array<std::int32_t, 2> position{1, 2};
    std::array<std::int32_t, 2> size{3, 4};
    getWindowPosSize(name.c_str(), position.data(), size.data());
    EXPECT_EQ(position, (std::array<std::int32_t, 2>{1, 2}));
    EXPECT_EQ(size, (std::array<std::int32_t, 2>{3, 4}));
    leave();
  };
  EXPECT_EXIT(askLate(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace framesink::test
