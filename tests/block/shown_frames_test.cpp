// Frames on their way from the host's planes to the pixels of the X server.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "host_block.hpp"
#include "pixkit/pixkit.h"
#include "recorded_frame.hpp"
#include "shown_picture.hpp"
#include "support/allocations.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

// The kind of the planes, and whether the window is synchronous.
using Path = std::tuple<const Kind*, std::uint8_t>;

std::string nameOf(const testing::TestParamInfo<Path>& info) {
  const auto& [kind, synchronous] = info.param;
  return std::string(kind->name) + (synchronous != 0 ? "Synchronous" : "Threaded");
}

class ShownFrames : public BareXTest, public testing::WithParamInterface<Path> {
 protected:
  // Requests an open window for block i; no window covers another.
  BlockRequest open(std::uint32_t i) const {
    const std::string name = BlockRequest::testName() + " " + std::to_string(i);
    return {.name = name,
            .title = name,
            .openAtStart = 1,
            .windowX = 20 + 100 * (i % 5),
            .windowY = 20 + 100 * (i / 5),
            .synchronous = synchronous};
  }

  testing::AssertionResult showsIn(const BlockRequest& request, const Image& picture) {
    return shows(x, request.title, picture);
  }

  const Kind& kind = *std::get<0>(GetParam());
  const std::uint8_t synchronous = std::get<1>(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Paths, ShownFrames,
                         testing::Combine(testing::ValuesIn(kKinds), testing::Values(0, 1)),
                         nameOf);

TEST_P(ShownFrames, EqualTheOraclesInEveryTypeToThePixel) {
  constexpr Size kSize{62, 47};
  for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
    const BlockRequest request = open(type);
    HostBlock block(describe(kind, type, kSize), request);
    for (int frame = 0; frame < 2; ++frame) {
      const HostPlanes planes = randomPlanes(kind, type, kSize);
      block.update(planes);
      EXPECT_TRUE(showsIn(request, picture(converted(kind, type, planes, kSize), kSize)))
          << oracle::typeName(type);
    }
  }
}

TEST_P(ShownFrames, SmallerThanConfiguredAreCentredInEveryType) {
  constexpr Size kSize{40, 31};
  constexpr Size kSmall{18, 12};
  for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
    BlockRequest request = open(type);
    request.allocatePlaneBuffers = 1;
    HostBlock block(describe(kind, type, kSize), request);
    const HostPlanes planes = randomWholePlanes(type, kSmall);
    block.update(planes, kSmall);
    const HostPlanes expected = centred(planes, type, kSmall, kSize);
    EXPECT_TRUE(showsIn(request, picture(converted(kind, type, expected, kSize), kSize)))
        << oracle::typeName(type);
  }
}

TEST_P(ShownFrames, OfOneColumnOrOneRowAreShown) {
  for (const Size size : {Size{1, 1}, Size{1, 50}, Size{50, 1}, Size{2, 1}, Size{1, 2}}) {
    const BlockRequest request = open(size.width > 1);
    HostBlock block(describe(kind, FRAMESINK_UINT8, size), request);
    const HostPlanes planes = randomPlanes(kind, FRAMESINK_UINT8, size);
    block.update(planes);
    EXPECT_TRUE(showsIn(request, picture(converted(kind, FRAMESINK_UINT8, planes, size), size)))
        << size.width << "x" << size.height;
  }
}

// Covers centring, conversion and delivery to an open window.
TEST_P(ShownFrames, AllocateNothingOnTheHostsThread) {
  constexpr Size kSize{62, 47};
  BlockRequest request = open(0);
  request.allocatePlaneBuffers = 1;
  HostBlock block(describe(kind, FRAMESINK_SINGLE, kSize), request);
  const HostPlanes planes = randomWholePlanes(FRAMESINK_SINGLE, kSize);
  const auto update = [&] {
    block.update(planes);
    block.update(planes, {20, 20});
    block.update(nullptr, nullptr, nullptr);
  };
  update();
  x.waitForWindow(request.title);
  const std::size_t before = allocationCount();
  for (int i = 0; i < 100; ++i) update();
  EXPECT_EQ(allocationCount() - before, 0U);
}

TEST_P(ShownFrames, AllocateNothingWithAnInputConversionEither) {
  if (PK_GetDoubleToFixFcn(PK_DOUBLE_TO_INT16) == nullptr) GTEST_SKIP() << "no such routine";
  constexpr Size kSize{62, 47};
  BlockRequest request = open(0);
  request.inputConversion = PK_DOUBLE_TO_INT16;
  HostBlock block(describe(kind, FRAMESINK_INT16, kSize), request);
  const HostPlanes planes = randomDoubles(kSize);
  block.update(planes);
  x.waitForWindow(request.title);
  const std::size_t before = allocationCount();
  for (int i = 0; i < 100; ++i) block.update(planes);
  EXPECT_EQ(allocationCount() - before, 0U);
}

TEST_P(ShownFrames, OfNoPixelsAreHarmless) {
  for (const Size size : {Size{0, 0}, Size{0, 20}, Size{20, 0}}) {
    BlockRequest request = open(0);
    request.allocatePlaneBuffers = 1;
    HostBlock block(describe(kind, FRAMESINK_DOUBLE, size), request);
    const double sample = 0;
    for (int i = 0; i < 3; ++i) {
      block.update(&sample, &sample, &sample);
      block.update(&sample, &sample, &sample, {0, 0});
      block.update(&sample, &sample, &sample, {1, 1});
    }
    EXPECT_EQ(isPlayerOpen(request.name.c_str()), 1);
    x.waitForWindow(request.title);
  }
}

// ---- Frames that go astray ----

class AstrayFrames : public BareXTest {
 protected:
  const std::string name = BlockRequest::testName();
};

constexpr Size kSize{30, 20};

// The block's player has the id of a synchronous player with another name and size.
TEST_F(AstrayFrames, DoNotReachAPlayerOfAnotherSizeWithTheSameId) {
  const BlockRequest other{.name = name + " other",
                           .title = name + " other",
                           .openAtStart = 1,
                           .windowX = 300,
                           .synchronous = 1};
  HostBlock shown(describe(kRgb, FRAMESINK_UINT8, {16, 8}), other);
  shown.update(plainPlanes(0x0000C0, {16, 8}));

  HostBlock astray(describe(kRgb, FRAMESINK_UINT8, kSize), {.synchronous = 1});
  const HostBlock owner(describe(kRgb, FRAMESINK_UINT8, kSize), {.openAtStart = 1});
  ASSERT_EQ(videoWindowRegistry().playerIdOf(name), videoWindowRegistry().playerIdOf(other.name));
  astray.update(plainPlanes(0xFF0000, kSize));
  EXPECT_TRUE(shows(x, x.waitForWindow(other.title), plainPicture(0x0000C0, {16, 8})));
}

TEST_F(AstrayFrames, WithoutARecordStillDrainTheEventsOfSynchronousWindows) {
  const BlockRequest open{.openAtStart = 1, .synchronous = 1};
  const HostBlock shown(describe(kRgb, FRAMESINK_UINT8, kSize), open);
  HostBlock astray(describe(kRgb, FRAMESINK_UINT8, kSize),
                   {.name = name + " gone", .synchronous = 1});
  destroyVideoWindow((name + " gone").c_str());
  ASSERT_TRUE(x.closeButton(x.waitForWindow(name)));
  EXPECT_TRUE(waitUntil([&] {
    astray.update(plainPlanes(0, kSize));
    return isPlayerOpen(name.c_str()) == 0;
  }));
}

TEST_F(AstrayFrames, ThatAreDroppedStillDrainTheEventsOfSynchronousWindows) {
  HostBlock block(describe(kRgb, FRAMESINK_UINT8, kSize), {.openAtStart = 1, .synchronous = 1});
  ASSERT_TRUE(x.closeButton(x.waitForWindow(name)));
  EXPECT_TRUE(waitUntil([&] {
    block.update(nullptr, nullptr, nullptr);
    return isPlayerOpen(name.c_str()) == 0;
  }));
}

TEST_F(AstrayFrames, OfASizeThatIsNotTheRecordsStillDrainTheEventsOfSynchronousWindows) {
  HostBlock first(describe(kRgb, FRAMESINK_UINT8, {50, 40}), {.synchronous = 1});
  const HostBlock second(describe(kRgb, FRAMESINK_UINT8, kSize),
                         {.openAtStart = 1, .synchronous = 1});
  ASSERT_TRUE(x.closeButton(x.waitForWindow(name)));
  EXPECT_TRUE(waitUntil([&] {
    first.update(plainPlanes(0xFFFFFF, {50, 40}));
    return isPlayerOpen(name.c_str()) == 0;
  }));
}

// The block neither converts nor delivers the frame, and handles no events.
TEST_F(AstrayFrames, OfADescriptionThatIsNotValidTouchNothing) {
  HostBlock block(describe(kRgb, FRAMESINK_UINT8, kSize), {.openAtStart = 1, .synchronous = 1});
  block.update(plainPlanes(0x00C000, kSize));
  InputDescription invalid = describe(kRgb, FRAMESINK_UINT8, kSize);
  invalid.valid = 0;
  HostBlock ignored(invalid, {.synchronous = 1});  // same name, same window
  const Window window = x.waitForWindow(name);
  ASSERT_TRUE(x.closeButton(window));
  for (int i = 0; i < 20; ++i) ignored.update(plainPlanes(0xFF0000, kSize));
  EXPECT_EQ(isPlayerOpen(name.c_str()), 1);
  EXPECT_TRUE(shows(x, window, plainPicture(0x00C000, kSize)));
}

TEST_F(AstrayFrames, AfterTheUserClosedTheWindowAreDropped) {
  for (const bool synchronous : {false, true}) {
    HostBlock block(describe(kRgb, FRAMESINK_UINT8, kSize),
                    {.openAtStart = 1, .synchronous = synchronous});
    ASSERT_TRUE(x.closeButton(x.waitForWindow(name)));
    EXPECT_TRUE(waitUntil([&] {
      block.update(plainPlanes(0, kSize));
      return isPlayerOpen(name.c_str()) == 0;
    }));
    block.update(plainPlanes(0xFF0000, kSize));
    EXPECT_TRUE(x.waitForNoWindow(name));
    EXPECT_EQ(recordedFrame(name),
              converted(kRgb, FRAMESINK_UINT8, plainPlanes(0xFF0000, kSize), kSize));
  }
}

// The second block's last frame stays on the screen.
TEST_F(AstrayFrames, OfTwoBlocksWithOneNameDoNotReplaceTheOther) {
  HostBlock first(describe(kRgb, FRAMESINK_UINT8, {50, 40}), {.openAtStart = 1});
  HostBlock second(describe(kRgb, FRAMESINK_UINT8, kSize));
  const HostPlanes planes = plainPlanes(0x00C000, kSize);
  second.update(planes);
  for (int i = 0; i < 20; ++i) first.update(plainPlanes(0xFF0000, {50, 40}));
  EXPECT_TRUE(shows(x, name, plainPicture(0x00C000, kSize)));
}

}  // namespace
}  // namespace framesink::test
