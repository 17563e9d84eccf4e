// How the block treats its description and the planes it gets, as seen in the frame buffer of its
// window's record.
#include "block/frame_sink_block.hpp"

#include <gtest/gtest.h>

#include <cstring>

#include "host_block.hpp"
#include "recorded_frame.hpp"

namespace framesink::test {
namespace {

constexpr Size kFrame{6, 4};

std::string name() { return BlockRequest::testName(); }

std::int32_t kindOf(std::uint32_t inputCount, std::uint32_t componentCount, const char* fourcc) {
  InputDescription input{};
  input.inputCount = inputCount;
  input.componentCount = componentCount;
  std::memcpy(input.fourcc, fourcc, 4);
  return FrameSinkBlock({}, &input).inputKind();
}

TEST(FrameSinkBlock, OneBufferOfOneComponentIsIntensityEvenWhenDeclaredYuy2) {
  EXPECT_EQ(kindOf(1, 1, "YUY2"), kInputIntensity);
  EXPECT_EQ(kindOf(1, 1, "RGB "), kInputIntensity);
}

TEST(FrameSinkBlock, ThreePlanesDeclaredYuy2AreYcbcr422) {
  EXPECT_EQ(kindOf(3, 3, "YUY2"), kInputYcbcr422);
}

TEST(FrameSinkBlock, OtherCountsDeclaredYuy2AreYcbcr422) {
  EXPECT_EQ(kindOf(1, 3, "YUY2"), kInputYcbcr422);
  EXPECT_EQ(kindOf(3, 1, "YUY2"), kInputYcbcr422);
  EXPECT_EQ(kindOf(0, 0, "YUY2"), kInputYcbcr422);
}

TEST(FrameSinkBlock, AnythingElseIsRgb) {
  EXPECT_EQ(kindOf(3, 3, "RGB "), kInputRgb);
  EXPECT_EQ(kindOf(1, 3, "RGB "), kInputRgb);
  EXPECT_EQ(kindOf(3, 1, "RGB "), kInputRgb);
  EXPECT_EQ(kindOf(3, 3, "yuy2"), kInputRgb);
}

TEST(FrameSinkBlock, UnsupportedTypeIsThrownAsATextByTheStartStep) {
  for (const std::uint32_t type : {9U, 0x80000000U, 0xFFFFFFFFU}) {
    const InputDescription input = describe(kRgb, type, kFrame);
    BlockSettings settings;
    settings.setup.name = name();
    FrameSinkBlock block(settings, &input);
    try {
      block.start();
      FAIL() << type;
    } catch (const char* text) {
      EXPECT_STREQ(text, "Unsupported video data type");
    }
    EXPECT_TRUE(recordedFrame(name()).empty());
  }
}

TEST(FrameSinkBlock, RegistersABlankFrameOfTheConfiguredSize) {
  const HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame));
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
  EXPECT_EQ(videoWindowRegistry().playerIdOf(name()), kNoPlayer);
}

// The block has no scratch planes here, so a frame that requires centring would be dropped.
TEST(FrameSinkBlock, MarkersForTheConfiguredSizeMeanItAndNothingIsCentred) {
  HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame));
  for (const Size size : {Size{FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE},
                          Size{FRAMESINK_CONFIGURED_SIZE, kFrame.height},
                          Size{kFrame.width, FRAMESINK_CONFIGURED_SIZE}, kFrame}) {
    const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
    block.update(planes, size);
    EXPECT_EQ(recordedFrame(name()), converted(kRgb, FRAMESINK_UINT8, planes, kFrame));
  }
}

TEST(FrameSinkBlock, MarkerForOneSideLeavesTheOtherAsGiven) {
  HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame), {.allocatePlaneBuffers = 1});
  const Size narrow{2, kFrame.height};
  const HostPlanes planes = randomWholePlanes(FRAMESINK_UINT8, narrow);
  block.update(planes, {2, FRAMESINK_CONFIGURED_SIZE});
  EXPECT_EQ(
      recordedFrame(name()),
      converted(kRgb, FRAMESINK_UINT8, centred(planes, FRAMESINK_UINT8, narrow, kFrame), kFrame));
}

TEST(FrameSinkBlock, DescriptionThatIsNotValidIgnoresEveryUpdate) {
  InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  input.valid = 0;
  HostBlock block(input);
  block.update(randomPlanes(kRgb, FRAMESINK_UINT8, kFrame));
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
}

TEST(FrameSinkBlock, DescriptionIsCopied) {
  InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  HostBlock block(input);
  std::memset(&input, 0xFF, sizeof input);
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  block.update(planes);
  EXPECT_EQ(recordedFrame(name()), converted(kRgb, FRAMESINK_UINT8, planes, kFrame));
}

TEST(FrameSinkBlock, LayoutGoesToTheKernelUnchanged) {
  InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  input.layout = 0;
  HostBlock block(input);
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  block.update(planes);
  Bytes expected = blankFrame(kFrame);
  oracle::convert(kRgb, FRAMESINK_UINT8, {planes[0], planes[1], planes[2]}, expected.data(),
                  {6, 4, 0});
  EXPECT_EQ(recordedFrame(name()), expected);
}

TEST(FrameSinkBlock, AnyNonZeroLayoutIsColumnMajor) {
  InputDescription input = describe(kYcbcr, FRAMESINK_UINT8, kFrame);
  input.layout = -7;
  HostBlock block(input);
  const HostPlanes planes = randomPlanes(kYcbcr, FRAMESINK_UINT8, kFrame);
  block.update(planes);
  EXPECT_EQ(recordedFrame(name()), converted(kYcbcr, FRAMESINK_UINT8, planes, kFrame));
}

TEST(FrameSinkBlock, LastColumnOfAnOddYcbcrFrameKeepsItsBytes) {
  constexpr Size kOdd{5, 3};
  HostBlock block(describe(kYcbcr, FRAMESINK_UINT8, kOdd));
  const HostPlanes planes = randomPlanes(kYcbcr, FRAMESINK_UINT8, kOdd);
  block.update(planes);
  EXPECT_EQ(recordedFrame(name()), converted(kYcbcr, FRAMESINK_UINT8, planes, kOdd));
  EXPECT_EQ(recordedFrame(name())[4 * 3], 0);
}

// ---- Planes in one buffer ----

TEST(FrameSinkBlock, PlanesInOneBufferFollowOneAnother) {
  for (const Kind* kind : {&kRgb, &kYcbcr}) {
    for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
      InputDescription input = describe(*kind, type, kFrame);
      input.inputCount = 1;
      HostBlock block(input);
      const HostPlanes planes = randomWholePlanes(type, kFrame);
      const Bytes buffer = joined(planes);
      block.update(buffer.data(), nullptr, nullptr);
      EXPECT_EQ(recordedFrame(name()), converted(*kind, type, planes, kFrame))
          << kind->name << " " << oracle::typeName(type);
    }
  }
}

TEST(FrameSinkBlock, PlanesInOneBufferTakeThePlaceOfThoseGiven) {
  InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  input.inputCount = 1;
  HostBlock block(input);
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  const HostPlanes others = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  block.update(joined(planes).data(), others[1], others[2]);
  EXPECT_EQ(recordedFrame(name()), converted(kRgb, FRAMESINK_UINT8, planes, kFrame));
}

TEST(FrameSinkBlock, PlanesInOneBufferAreAsLargeAsThisFrame) {
  InputDescription input = describe(kRgb, FRAMESINK_INT16, kFrame);
  input.inputCount = 1;
  HostBlock block(input, {.allocatePlaneBuffers = 1});
  constexpr Size kSmall{2, 2};
  const HostPlanes planes = randomWholePlanes(FRAMESINK_INT16, kSmall);
  block.update(joined(planes).data(), nullptr, nullptr, kSmall);
  EXPECT_EQ(
      recordedFrame(name()),
      converted(kRgb, FRAMESINK_INT16, centred(planes, FRAMESINK_INT16, kSmall, kFrame), kFrame));
}

TEST(FrameSinkBlock, NullBufferOfThreePlanesIsDropped) {
  InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  input.inputCount = 1;
  HostBlock block(input);
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  block.update(nullptr, planes[1], planes[2]);
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
}

// ---- Planes that are missing ----

class MissingPlane : public testing::TestWithParam<std::size_t> {};

TEST_P(MissingPlane, OfRgbOrYcbcrDropsTheFrame) {
  for (const Kind* kind : {&kRgb, &kYcbcr}) {
    HostBlock block(describe(*kind, FRAMESINK_UINT8, kFrame), {.allocatePlaneBuffers = 1});
    HostPlanes planes = randomWholePlanes(FRAMESINK_UINT8, kFrame);
    planes.bytes[GetParam()].clear();
    block.update(planes);
    block.update(planes, {2, 2});
    EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame)) << kind->name;
  }
}

TEST_P(MissingPlane, OfAnInputToBeConvertedDropsTheFrame) {
  HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame), {.inputConversion = PK_DOUBLE_TO_UINT8});
  HostPlanes planes = randomDoubles(kFrame);
  planes.bytes[GetParam()].clear();
  block.update(planes);
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
}

INSTANTIATE_TEST_SUITE_P(Planes, MissingPlane, testing::Values(0, 1, 2));

TEST(FrameSinkBlock, IntensityNeedsItsOnePlaneOnly) {
  HostBlock block(describe(kIntensity, FRAMESINK_UINT8, kFrame));
  const HostPlanes planes = randomPlanes(kIntensity, FRAMESINK_UINT8, kFrame);
  block.update(planes[0], nullptr, nullptr);
  EXPECT_EQ(recordedFrame(name()), converted(kIntensity, FRAMESINK_UINT8, planes, kFrame));
}

TEST(FrameSinkBlock, IntensityWithoutItsPlaneIsDropped) {
  HostBlock block(describe(kIntensity, FRAMESINK_UINT8, kFrame));
  const HostPlanes planes = randomWholePlanes(FRAMESINK_UINT8, kFrame);
  block.update(nullptr, planes[1], planes[2]);
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
}

// The other two pointers are invalid; reading through them would end the process.
TEST(FrameSinkBlock, IntensityTouchesNoOtherPlane) {
  const auto* nowhere = reinterpret_cast<const void*>(std::uintptr_t{16});
  const HostPlanes planes = randomPlanes(kIntensity, FRAMESINK_UINT8, kFrame);
  HostBlock block(describe(kIntensity, FRAMESINK_UINT8, kFrame), {.allocatePlaneBuffers = 1});
  block.update(planes[0], nowhere, nowhere);
  EXPECT_EQ(recordedFrame(name()), converted(kIntensity, FRAMESINK_UINT8, planes, kFrame));

  const HostPlanes small = randomPlanes(kIntensity, FRAMESINK_UINT8, {2, 2});
  block.update(small[0], nowhere, nowhere, {2, 2});
  EXPECT_EQ(recordedFrame(name()),
            converted(kIntensity, FRAMESINK_UINT8, centred(small, FRAMESINK_UINT8, {2, 2}, kFrame),
                      kFrame));
}

// ---- Records that are missing or another's ----

TEST(FrameSinkBlock, FrameForADestroyedRecordIsDropped) {
  for (const bool synchronous : {false, true}) {
    HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame), {.synchronous = synchronous});
    destroyVideoWindow(name().c_str());
    block.update(randomPlanes(kRgb, FRAMESINK_UINT8, kFrame));
    EXPECT_TRUE(recordedFrame(name()).empty());
  }
}

TEST(FrameSinkBlock, FrameForARenamedRecordIsDropped) {
  HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame));
  const std::string newName = name() + " renamed";
  renameVideoWindow(name().c_str(), newName.c_str(), "");
  block.update(randomPlanes(kRgb, FRAMESINK_UINT8, kFrame));
  EXPECT_EQ(recordedFrame(newName), blankFrame(kFrame));
}

TEST(FrameSinkBlock, BlockCreatedUnderTheNewNameFindsTheRecord) {
  const HostBlock old(describe(kRgb, FRAMESINK_UINT8, kFrame));
  const std::string newName = name() + " renamed";
  renameVideoWindow(name().c_str(), newName.c_str(), "");
  HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame), {.name = newName});
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  block.update(planes);
  EXPECT_EQ(recordedFrame(newName), converted(kRgb, FRAMESINK_UINT8, planes, kFrame));
}

// The first block's frames are larger than the frame buffer that the second block registered.
TEST(FrameSinkBlock, OfTwoBlocksWithOneNameTheOneOfTheRecordsSizeIsShown) {
  HostBlock first(describe(kRgb, FRAMESINK_UINT8, {40, 30}));
  HostBlock second(describe(kRgb, FRAMESINK_UINT8, kFrame));
  first.update(randomPlanes(kRgb, FRAMESINK_UINT8, {40, 30}));
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  second.update(planes);
  first.update(randomPlanes(kRgb, FRAMESINK_UINT8, {40, 30}));
  EXPECT_EQ(recordedFrame(name()), converted(kRgb, FRAMESINK_UINT8, planes, kFrame));
}

// Both frames have the same number of pixels, so only a comparison of each side tells them apart.
TEST(FrameSinkBlock, FrameWithTheRecordsSidesExchangedIsDropped) {
  HostBlock first(describe(kRgb, FRAMESINK_UINT8, {kFrame.height, kFrame.width}));
  const HostBlock second(describe(kRgb, FRAMESINK_UINT8, kFrame));
  first.update(randomPlanes(kRgb, FRAMESINK_UINT8, {kFrame.height, kFrame.width}));
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
}

// Sends a frame of that size to a record that another block has meanwhile set up for kFrame.
void expectDroppedByTheRecordOfAnother(Size size) {
  HostBlock first(describe(kRgb, FRAMESINK_UINT8, size));
  HostBlock second(describe(kRgb, FRAMESINK_UINT8, kFrame));
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  second.update(planes);
  first.update(randomPlanes(kRgb, FRAMESINK_UINT8, size));
  EXPECT_EQ(recordedFrame(name()), converted(kRgb, FRAMESINK_UINT8, planes, kFrame))
      << size.width << "x" << size.height;
}

TEST(FrameSinkBlock, FrameOfTheRecordsHeightButAnotherWidthIsDropped) {
  for (const std::uint32_t width : {kFrame.width - 1, kFrame.width + 1, 10 * kFrame.width}) {
    expectDroppedByTheRecordOfAnother({width, kFrame.height});
  }
}

TEST(FrameSinkBlock, FrameOfTheRecordsWidthButAnotherHeightIsDropped) {
  for (const std::uint32_t height : {kFrame.height - 1, kFrame.height + 1, 10 * kFrame.height}) {
    expectDroppedByTheRecordOfAnother({kFrame.width, height});
  }
}

TEST(FrameSinkBlock, TwoBlocksWithOneNameAndSizeShareTheRecord) {
  HostBlock first(describe(kRgb, FRAMESINK_UINT8, kFrame));
  const HostBlock second(describe(kIntensity, FRAMESINK_DOUBLE, kFrame));
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_UINT8, kFrame);
  first.update(planes);
  EXPECT_EQ(recordedFrame(name()), converted(kRgb, FRAMESINK_UINT8, planes, kFrame));
}

}  // namespace
}  // namespace framesink::test
