// A block's life through the host's six calls, with real windows.
#include <gtest/gtest.h>

#include <cstring>
#include <new>

#include "host_block.hpp"
#include "recorded_frame.hpp"
#include "shown_picture.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

constexpr Size kFrame{64, 48};
constexpr std::uint32_t kMarker = 0x7FFFFFFF;

// ---- Without a window ----

TEST(LibCreate, RejectsUnsupportedTypesWithAText) {
  for (const std::uint32_t type : {9U, 10U, 0x80000000U, 4294967295U}) {
    for (const bool planeBuffers : {false, true}) {
      ErrorBuffer error;
      const BlockRequest request{
          .openAtStart = 1, .inputConversion = 2, .allocatePlaneBuffers = planeBuffers};
      const InputDescription input = describe(kRgb, type, kFrame);
      EXPECT_EQ(createBlock(error.data(), request, &input), nullptr) << type;
      EXPECT_STREQ(error.data(), "Unsupported video data type");
      EXPECT_TRUE(recordedFrame(request.name).empty());
    }
  }
}

TEST(LibCreate, LeavesTheErrorBufferUntouchedOnSuccess) {
  ErrorBuffer error;
  const InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  void* block = createBlock(error.data(), {}, &input);
  EXPECT_NE(block, nullptr);
  EXPECT_TRUE(error.isUntouched());
  libDestroy(block);
}

// 3 x 715827883 bytes are more than 2147483647. Some of the larger sizes wrap around in 32 bits,
// the largest even in 64.
TEST(LibCreate, LetsBadAllocPassWhenTheFrameIsTooLarge) {
  for (const Size size : {Size{715827883, 1}, Size{1, 715827883}, Size{26755, 26755},
                          Size{65536, 65536}, Size{0xFFFFFFFF, 0xFFFFFFFF}}) {
    for (const bool synchronous : {false, true}) {
      ErrorBuffer error;
      const BlockRequest request{.openAtStart = 1, .synchronous = synchronous};
      const InputDescription input = describe(kRgb, FRAMESINK_UINT8, size);
      EXPECT_THROW(createBlock(error.data(), request, &input), std::bad_alloc);
      EXPECT_TRUE(error.isUntouched());
      EXPECT_TRUE(recordedFrame(request.name).empty());
      EXPECT_EQ(isPlayerOpen(request.name.c_str()), 0);
    }
  }
}

TEST(LibStart, LeavesTheErrorBufferUntouched) {
  const HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame));
  ErrorBuffer error;
  libStart(block.handle(), error.data());
  EXPECT_TRUE(error.isUntouched());
}

TEST(LibUpdate, LeavesTheErrorBufferUntouched) {
  const HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame));
  ErrorBuffer error;
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  libUpdate(block.handle(), error.data(), planes[0], planes[1], planes[2], kFrame.width,
            kFrame.height);
  libUpdate(block.handle(), error.data(), nullptr, nullptr, nullptr, 5, 5);
  EXPECT_TRUE(error.isUntouched());
}

TEST(LibDestroy, IgnoresNull) { libDestroy(nullptr); }

TEST(NullPointers, AreHarmlessInTheLifeOfABlock) {
  const InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  void* block = libCreate(nullptr, 0, nullptr, nullptr, 0, &input, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  ASSERT_NE(block, nullptr);
  libStart(block, nullptr);
  libUpdate(block, nullptr, planes[0], planes[1], planes[2], kFrame.width, kFrame.height);
  libUpdate(block, nullptr, nullptr, nullptr, nullptr, kFrame.width, kFrame.height);
  libOutputs(block);
  libTerminate(block);
  libDestroy(block);
}

TEST(NullPointers, HandleIsIgnored) {
  ErrorBuffer error;
  libStart(nullptr, error.data());
  libUpdate(nullptr, error.data(), nullptr, nullptr, nullptr, 1, 1);
  libOutputs(nullptr);
  libTerminate(nullptr);
  libDestroy(nullptr);
  EXPECT_TRUE(error.isUntouched());
}

TEST(NullPointers, NameAndTitleCountAsEmpty) {
  const InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  void* block = libCreate(nullptr, 0, nullptr, nullptr, 0, &input, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  EXPECT_EQ(recordedFrame(""), blankFrame(kFrame));
  renameVideoWindow(nullptr, BlockRequest::testName().c_str(), nullptr);
  EXPECT_EQ(recordedFrame(BlockRequest::testName()), blankFrame(kFrame));
  libDestroy(block);
}

TEST(NullPointers, ErrorBufferDropsTheText) {
  const InputDescription input = describe(kRgb, 9, kFrame);
  EXPECT_EQ(createBlock(nullptr, {}, &input), nullptr);
}

TEST(NullPointers, DescriptionIsOfABlockThatIgnoresFrames) {
  ErrorBuffer error;
  void* block = createBlock(error.data(), {}, nullptr);
  EXPECT_TRUE(error.isUntouched());
  const double sample = 1;
  libUpdate(block, error.data(), &sample, &sample, &sample, 1, 1);
  libDestroy(block);
}

// ---- With windows ----

class LifeOfABlock : public XTest, public testing::WithParamInterface<std::uint8_t> {
 protected:
  explicit LifeOfABlock(bool managed = false) : XTest(managed) {}
  BlockRequest open() const { return {.openAtStart = 1, .synchronous = GetParam()}; }
  InputDescription input() const { return describe(kRgb, FRAMESINK_UINT8, kFrame); }
  Window window() { return x.waitForWindow(name); }
  bool isOpen() const { return isPlayerOpen(name.c_str()) == 1; }

  // Shows two frames, by which time a threaded or a synchronous server has handled pending events.
  void settle(HostBlock& block) {
    block.update(plainPlanes(0x4080C0, kFrame));
    EXPECT_TRUE(shows(x, window(), plainPicture(0x4080C0, kFrame)));
    block.update(plainPlanes(0xC08040, kFrame));
    EXPECT_TRUE(shows(x, window(), plainPicture(0xC08040, kFrame)));
  }

  const std::string name = BlockRequest::testName();
};

using ThreadedLifeOfABlock = BareXTest;

class LifeOfABlockOnADesktop : public LifeOfABlock {
 protected:
  LifeOfABlockOnADesktop() : LifeOfABlock(true) {}
};

std::string displayName(const testing::TestParamInfo<std::uint8_t>& test) {
  return test.param != 0 ? "Synchronous" : "Threaded";
}
INSTANTIATE_TEST_SUITE_P(Display, LifeOfABlock, testing::Values(0, 1), displayName);
INSTANTIATE_TEST_SUITE_P(Display, LifeOfABlockOnADesktop, testing::Values(0, 1), displayName);

TEST_P(LifeOfABlock, OpensTheWindowAtStartOnlyWhenAskedTo) {
  const HostBlock closed(input(), {.synchronous = GetParam()});
  EXPECT_FALSE(isOpen());
  EXPECT_TRUE(staysSo([&] { return !x.findWindow(name); }));
  const HostBlock opened(input(), open());
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(x.geometry(window()), (Geometry{60, 80, 64, 48}));
}

TEST_P(LifeOfABlock, OutputsAndTerminateChangeNothing) {
  HostBlock block(input(), open());
  block.update(plainPlanes(0x4080C0, kFrame));
  const Window before = window();
  libOutputs(block.handle());
  libTerminate(block.handle());
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(shows(x, before, plainPicture(0x4080C0, kFrame)));
  settle(block);
  EXPECT_EQ(window(), before);
}

TEST_P(LifeOfABlock, WindowOutlivesTheBlock) {
  auto block = std::make_unique<HostBlock>(input(), open());
  block->update(plainPlanes(0x4080C0, kFrame));
  const Window before = window();
  block.reset();
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(shows(x, before, plainPicture(0x4080C0, kFrame)));
}

TEST_P(LifeOfABlock, CreatedAgainUnchangedKeepsItsWindow) {
  const HostBlock first(input(), open());
  const Window before = window();
  BlockRequest again = open();
  again.openAtStart = 0;
  again.windowX = 500;
  HostBlock second(input(), again);
  settle(second);
  EXPECT_EQ(window(), before);
  EXPECT_EQ(x.geometry(before), (Geometry{60, 80, 64, 48}));
}

TEST_P(LifeOfABlock, CreatedAgainInAnotherSizeGetsAFreshWindowEvenWhenNotAskedTo) {
  HostBlock first(input(), open());
  settle(first);
  const Window before = window();
  BlockRequest again = open();
  again.openAtStart = 0;
  again.windowX = 500;
  constexpr Size kOther{80, 50};
  HostBlock second(describe(kRgb, FRAMESINK_UINT8, kOther), again);
  EXPECT_TRUE(waitUntil([&] { return !x.exists(before) && x.findWindow(name); }));
  EXPECT_EQ(x.geometry(window()), (Geometry{60, 80, 80, 50}));
  second.update(plainPlanes(0x123456, kOther));
  EXPECT_TRUE(shows(x, window(), plainPicture(0x123456, kOther)));
}

TEST_P(LifeOfABlock, WindowSizeIsUsedWhenAskedFor) {
  BlockRequest request = open();
  request.windowWidth = 200;
  request.windowHeight = 100;
  const HostBlock without(input(), request);
  EXPECT_EQ(x.geometry(window()), (Geometry{60, 80, 64, 48}));
  request.name = request.title = name + " sized";
  request.useWindowSize = 0x80;
  const HostBlock with(input(), request);
  EXPECT_EQ(x.geometry(x.waitForWindow(request.title)), (Geometry{60, 80, 200, 100}));
}

TEST_P(LifeOfABlock, MarkerAsWindowSizeMeansTheFramesSize) {
  BlockRequest request = open();
  request.windowWidth = request.windowHeight = kMarker;
  request.useWindowSize = 1;
  const HostBlock block(input(), request);
  EXPECT_EQ(x.geometry(window()), (Geometry{60, 80, 64, 48}));
}

TEST_P(LifeOfABlockOnADesktop, FlagsAboveOneAreTrue) {
  BlockRequest request = open();
  request.openAtStart = 0xFF;
  request.fullscreen = 2;
  if (request.synchronous != 0) request.synchronous = 0x80;
  HostBlock block(input(), request);
  EXPECT_TRUE(waitUntil([&] {
    block.update(plainPlanes(0xFFFFFF, kFrame));
    return x.isFullscreen(window());
  }));
}

TEST_P(LifeOfABlock, TitleIsTheWindowTitleWithBlanksForLineFeeds) {
  BlockRequest request = open();
  request.title = "two\nlines of " + name;
  const HostBlock block(input(), request);
  EXPECT_EQ(x.title(x.waitForWindow("two lines of " + name)), "two lines of " + name);
}

TEST_P(LifeOfABlock, StringsAreCopied) {
  std::string playerName = name;
  std::string title = name;
  const InputDescription description = input();
  ErrorBuffer error;
  void* block = libCreate(error.data(), 0, playerName.data(), title.data(), 0, &description, 1, 60,
                          80, 0, 0, 0, 0, 0, GetParam());
  std::fill(playerName.begin(), playerName.end(), 'x');
  std::fill(title.begin(), title.end(), 'x');
  const HostPlanes planes = plainPlanes(0x4080C0, kFrame);
  libUpdate(block, error.data(), planes[0], planes[1], planes[2], kFrame.width, kFrame.height);
  EXPECT_TRUE(shows(x, window(), plainPicture(0x4080C0, kFrame)));
  libDestroy(block);
}

// A changed synchronous flag counts as a changed setting.
TEST_P(LifeOfABlock, CreatedAgainForTheOtherDisplayGetsAFreshWindow) {
  HostBlock first(input(), open());
  settle(first);
  const Window before = window();
  BlockRequest again = open();
  again.synchronous = GetParam() == 0;
  HostBlock second(input(), again);
  EXPECT_TRUE(waitUntil([&] { return !x.exists(before) && x.findWindow(name); }));
  settle(second);
  EXPECT_EQ(x.geometry(window()), (Geometry{60, 80, 64, 48}));
}

TEST_P(LifeOfABlock, RejectedTypeLeavesAnOpenWindowOfTheNameAlone) {
  HostBlock block(input(), open());
  const Window before = window();
  ErrorBuffer error;
  const InputDescription unsupported = describe(kRgb, 9, kFrame);
  EXPECT_EQ(createBlock(error.data(), open(), &unsupported), nullptr);
  settle(block);
  EXPECT_EQ(window(), before);
}

// A synchronous window draws nothing before its first frame.
TEST_F(ThreadedLifeOfABlock, ShowsZeroesBeforeTheFirstFrame) {
  const std::string name = BlockRequest::testName();
  const HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame), {.openAtStart = 1});
  EXPECT_TRUE(shows(x, x.waitForWindow(name), plainPicture(0, kFrame)));
}

}  // namespace
}  // namespace framesink::test
