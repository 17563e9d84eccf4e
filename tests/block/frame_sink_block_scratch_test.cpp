// Centring and input conversion: how the block uses its scratch planes.
#include <gtest/gtest.h>

#include <cstring>

#include "host_block.hpp"
#include "pixkit/pixkit.h"
#include "recorded_frame.hpp"

namespace framesink::test {
namespace {

constexpr Size kFrame{10, 7};

std::string name() { return BlockRequest::testName(); }

// ---- Frames of another size ----

TEST(Centring, SmallerFramesAreSurroundedByTheMinimumOfTheirType) {
  for (const Kind* kind : kKinds) {
    for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
      HostBlock block(describe(*kind, type, kFrame), {.allocatePlaneBuffers = 1});
      constexpr Size kSmall{4, 3};
      const HostPlanes planes = randomWholePlanes(type, kSmall);
      block.update(planes, kSmall);
      EXPECT_EQ(recordedFrame(name()),
                converted(*kind, type, centred(planes, type, kSmall, kFrame), kFrame))
          << kind->name << " " << oracle::typeName(type);
    }
  }
}

TEST(Centring, ClearsWhatTheFrameBeforeLeft) {
  HostBlock block(describe(kRgb, FRAMESINK_UINT16, kFrame), {.allocatePlaneBuffers = 1});
  block.update(randomWholePlanes(FRAMESINK_UINT16, {8, 7}), {8, 7});
  const HostPlanes planes = randomWholePlanes(FRAMESINK_UINT16, {1, 1});
  block.update(planes, {1, 1});
  EXPECT_EQ(
      recordedFrame(name()),
      converted(kRgb, FRAMESINK_UINT16, centred(planes, FRAMESINK_UINT16, {1, 1}, kFrame), kFrame));
}

// Chroma planes have half the width, but they too are centred in planes of the frame's full size.
TEST(Centring, ChromaScratchPlanesHoldAWholeFrame) {
  for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
    HostBlock block(describe(kYcbcr, type, kFrame), {.allocatePlaneBuffers = 1});
    const Size almost{kFrame.width, kFrame.height - 1};
    const HostPlanes planes = randomWholePlanes(type, almost);
    block.update(planes, almost);
    EXPECT_EQ(recordedFrame(name()),
              converted(kYcbcr, type, centred(planes, type, almost, kFrame), kFrame))
        << oracle::typeName(type);
  }
}

// The description may even declare the second and the third plane empty.
TEST(Centring, ScratchPlanesHoldAWholeFrameWhateverTheirOwnSize) {
  InputDescription input = describe(kRgb, FRAMESINK_DOUBLE, kFrame);
  for (const int plane : {1, 2}) input.widths[plane] = input.heights[plane] = 0;
  HostBlock block(input, {.allocatePlaneBuffers = 1});
  const HostPlanes planes = randomWholePlanes(FRAMESINK_DOUBLE, {9, 7});
  block.update(planes, {9, 7});
  EXPECT_EQ(
      recordedFrame(name()),
      converted(kRgb, FRAMESINK_DOUBLE, centred(planes, FRAMESINK_DOUBLE, {9, 7}, kFrame), kFrame));
}

TEST(Centring, FrameWithoutScratchPlanesIsDropped) {
  for (const Kind* kind : kKinds) {
    HostBlock block(describe(*kind, FRAMESINK_UINT8, kFrame));
    block.update(randomWholePlanes(FRAMESINK_UINT8, {4, 3}), {4, 3});
    EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame)) << kind->name;
  }
}

// Three planes are passed, but with one component only the first has a scratch plane.
TEST(Centring, FrameWithoutAllTheScratchPlanesItNeedsIsDropped) {
  InputDescription input = describe(kRgb, FRAMESINK_UINT8, kFrame);
  input.componentCount = 1;
  HostBlock block(input, {.allocatePlaneBuffers = 1});
  block.update(randomWholePlanes(FRAMESINK_UINT8, {4, 3}), {4, 3});
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
}

class FrameThatWouldWriteOutside : public testing::TestWithParam<Size> {};

TEST_P(FrameThatWouldWriteOutside, IsDropped) {
  constexpr Size kMost{24, 24};
  HostBlock block(describe(kRgb, FRAMESINK_UINT8, kFrame), {.allocatePlaneBuffers = 1});
  block.update(randomWholePlanes(FRAMESINK_UINT8, kMost), GetParam());
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
}

INSTANTIATE_TEST_SUITE_P(Sizes, FrameThatWouldWriteOutside,
                         testing::Values(Size{12, 7}, Size{10, 9}, Size{24, 24}, Size{12, 1},
                                         Size{1, 0x7FFFFFFF}, Size{0x7FFFFFFF, 1},
                                         Size{0x7FFFFFFF, 0x7FFFFFFF}));

// The source is taller than the frame, but its only column stays inside the frame's samples.
TEST(Centring, TallFrameThatStaysInsideIsShownUnclipped) {
  HostBlock block(describe(kIntensity, FRAMESINK_UINT8, {5, 4}), {.allocatePlaneBuffers = 1});
  HostPlanes planes;
  planes.bytes[0] = {1, 2, 3, 4, 5, 6};
  block.update(planes, {1, 6});
  HostPlanes frame;
  frame.bytes[0].assign(20, minimumOf(FRAMESINK_UINT8)[0]);
  for (std::uint8_t i = 0; i < 6; ++i) frame.bytes[0][7 + i] = i + 1;
  EXPECT_EQ(recordedFrame(name()), converted(kIntensity, FRAMESINK_UINT8, frame, {5, 4}));
}

// Centring works with signed sizes, so a width of 0x80000000 is negative.
TEST(Centring, FrameWithoutSamplesIsAllMinimum) {
  for (const Size size : {Size{0, 7}, Size{10, 0}, Size{0, 0}, Size{0x80000000, 7}}) {
    HostBlock block(describe(kRgb, FRAMESINK_INT32, kFrame), {.allocatePlaneBuffers = 1});
    const HostPlanes unread = randomWholePlanes(FRAMESINK_INT32, {1, 1});
    block.update(randomPlanes(kRgb, FRAMESINK_INT32, kFrame));
    block.update(unread, size);
    EXPECT_EQ(
        recordedFrame(name()),
        converted(kRgb, FRAMESINK_INT32, centred(unread, FRAMESINK_INT32, {0, 0}, kFrame), kFrame))
        << size.width << "x" << size.height;
  }
}

// ---- Input conversion ----

struct Conversion {
  std::uint32_t routine;
  std::uint32_t dataType;
  std::size_t bytes;  // per sample that the routine writes
};

constexpr Conversion kConversions[] = {
    {PK_DOUBLE_TO_INT8, FRAMESINK_INT8, 1},   {PK_DOUBLE_TO_UINT8, FRAMESINK_UINT8, 1},
    {PK_DOUBLE_TO_INT16, FRAMESINK_INT16, 2}, {PK_DOUBLE_TO_UINT16, FRAMESINK_UINT16, 2},
    {PK_DOUBLE_TO_INT32, FRAMESINK_INT32, 4}, {PK_DOUBLE_TO_UINT32, FRAMESINK_UINT32, 4},
};

// A host's own pixkit may give its routines any meaning or lack them, so the expected samples come
// from the routines themselves.
class InputConversion : public testing::TestWithParam<Conversion> {
 protected:
  void SetUp() override {
    if (routine_ == nullptr) GTEST_SKIP() << "this pixkit has no such routine";
  }

  // Converts the plane's doubles with the routine.
  Bytes fixed(const Bytes& doubles) const {
    Bytes result(doubles.size());  // room for the widest
    routine_(reinterpret_cast<const double*>(doubles.data()), result.data(),
             doubles.size() / sizeof(double));
    return result;
  }
  HostPlanes fixed(const HostPlanes& doubles) const {
    HostPlanes result;
    for (std::size_t i = 0; i < 3; ++i) result.bytes[i] = fixed(doubles.bytes[i]);
    return result;
  }

  const std::uint32_t type_ = GetParam().dataType;
  const BlockRequest request_{.inputConversion = GetParam().routine};

 private:
  const PK_DoubleToFixFcn routine_ =
      PK_GetDoubleToFixFcn(static_cast<ScaledDoubleFunctionIndex>(GetParam().routine));
};

std::string nameOf(const testing::TestParamInfo<Conversion>& test) {
  return oracle::typeName(test.param.dataType);
}
INSTANTIATE_TEST_SUITE_P(Types, InputConversion, testing::ValuesIn(kConversions), nameOf);

TEST_P(InputConversion, TurnsDoublesIntoSamplesOfTheType) {
  for (const Kind* kind : {&kRgb, &kIntensity}) {
    HostBlock block(describe(*kind, type_, kFrame), request_);
    const HostPlanes doubles = randomDoubles(kFrame);
    block.update(doubles);
    EXPECT_EQ(recordedFrame(name()), converted(*kind, type_, fixed(doubles), kFrame)) << kind->name;
  }
}

// Chroma planes have half the width; the conversion must not read beyond their end.
TEST_P(InputConversion, ConvertsEachPlaneInItsOwnSize) {
  HostBlock block(describe(kYcbcr, type_, kFrame), request_);
  const HostPlanes doubles = randomPlanes(kYcbcr, FRAMESINK_DOUBLE, kFrame);
  block.update(doubles);
  EXPECT_EQ(recordedFrame(name()), converted(kYcbcr, type_, fixed(doubles), kFrame));
}

TEST_P(InputConversion, FindsPlanesInOneBufferEightBytesASampleApart) {
  for (const Kind* kind : {&kRgb, &kYcbcr}) {
    InputDescription input = describe(*kind, type_, kFrame);
    input.inputCount = 1;
    HostBlock block(input, request_);
    const HostPlanes doubles = randomDoubles(kFrame);
    block.update(joined(doubles).data(), nullptr, nullptr);
    EXPECT_EQ(recordedFrame(name()), converted(*kind, type_, fixed(doubles), kFrame)) << kind->name;
  }
}

// The routine's samples may be wider than those of the type. The kernel then reads the same bytes
// as samples of the type.
TEST_P(InputConversion, MayWriteWiderSamplesThanTheType) {
  for (const std::uint32_t type : {FRAMESINK_INT8, FRAMESINK_UINT8, FRAMESINK_BOOLEAN}) {
    HostBlock block(describe(kRgb, type, kFrame), request_);
    const HostPlanes doubles = randomDoubles(kFrame);
    block.update(doubles);
    EXPECT_EQ(recordedFrame(name()), converted(kRgb, type, fixed(doubles), kFrame))
        << oracle::typeName(type);
  }
}

// The library's own decision: centring comes first and moves the doubles as if they were samples of
// the type. The conversion then works in place on as many doubles as the configured plane has.
TEST_P(InputConversion, ComesAfterCentringAndWorksInPlace) {
  constexpr Size kSmall{4, 3};
  HostBlock block(describe(kRgb, type_, kFrame), request_);
  const HostPlanes doubles = randomDoubles(kSmall);
  block.update(doubles, kSmall);
  HostPlanes expected = centred(doubles, type_, kSmall, kFrame);
  for (Bytes& plane : expected.bytes) {
    plane.resize(kFrame.width * kFrame.height * sizeof(double));  // fresh scratch planes are zero
    plane = fixed(plane);
  }
  EXPECT_EQ(recordedFrame(name()), converted(kRgb, type_, expected, kFrame));
}

TEST_P(InputConversion, FindsPlanesOfASmallerFrameInOneBuffer) {
  constexpr Size kSmall{4, 3};
  InputDescription input = describe(kRgb, type_, kFrame);
  input.inputCount = 1;
  HostBlock packed(input, request_);
  const HostPlanes doubles = randomDoubles(kSmall);
  packed.update(joined(doubles).data(), nullptr, nullptr, kSmall);
  const Bytes shown = recordedFrame(name());
  destroyVideoWindow(name().c_str());
  HostBlock separate(describe(kRgb, type_, kFrame), request_);
  separate.update(doubles, kSmall);
  EXPECT_EQ(shown, recordedFrame(name()));
}

TEST_P(InputConversion, FrameWithoutAllTheScratchPlanesItNeedsIsDropped) {
  InputDescription input = describe(kRgb, type_, kFrame);
  input.componentCount = 1;
  HostBlock block(input, request_);
  block.update(randomDoubles(kFrame));
  EXPECT_EQ(recordedFrame(name()), blankFrame(kFrame));
}

TEST(InputConversionIndex, WithoutARoutineLeavesSamplesAsTheyAre) {
  HostBlock block(describe(kRgb, FRAMESINK_INT16, kFrame), {.inputConversion = 999});
  const HostPlanes planes = randomPlanes(kRgb, FRAMESINK_INT16, kFrame);
  block.update(planes);
  EXPECT_EQ(recordedFrame(name()), converted(kRgb, FRAMESINK_INT16, planes, kFrame));
}

}  // namespace
}  // namespace framesink::test
