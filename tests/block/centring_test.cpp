#include "block/centring.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "test_frame.hpp"

namespace framesink::test {
namespace {

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

// Fills the destination with other bytes first, all of which the call has to replace.
Bytes centre(std::uint32_t dataType, const Bytes& source, PlaneSize sourceSize, PlaneSize frame) {
  const auto samples = static_cast<std::size_t>(frame.width) * frame.height;
  Bytes destination(samples * oracle::sampleBytes(dataType), 0xA5);
  centreIntoFrame(dataType, source.data(), sourceSize, destination.data(), frame);
  return destination;
}

// Centres into a frame that lies between other samples, and returns all of them.
Bytes centreBetweenMargins(const Bytes& source, PlaneSize sourceSize, PlaneSize frame) {
  constexpr std::size_t kMargin = 64;
  const auto samples = static_cast<std::size_t>(frame.width * frame.height);
  Bytes all(samples + 2 * kMargin, 0xA5);
  centreIntoFrame(FRAMESINK_UINT8, source.data(), sourceSize, all.data() + kMargin, frame);
  return all;
}

bool staysInside(const Bytes& betweenMargins) {
  const auto isMargin = [&](std::size_t i) { return betweenMargins[i] == 0xA5; };
  for (std::size_t i = 0; i < 64; ++i) {
    if (!isMargin(i) || !isMargin(betweenMargins.size() - 1 - i)) return false;
  }
  return true;
}

TEST(CentreIntoFrame, TwoByTwoInFourByFiveLandsAtOffsetSix) {
  const Bytes frame = centre(FRAMESINK_UINT8, {11, 12, 21, 22}, {2, 2}, {4, 5});
  const std::uint8_t m = minimumOf(FRAMESINK_UINT8)[0];
  EXPECT_EQ(frame, (Bytes{m, m,  m,  m, m,  //
                          m, 11, 12, m, m,  //
                          m, 21, 22, m, m,  //
                          m, m,  m,  m, m}));
}

TEST(CentreIntoFrame, OddRemaindersLeaveTheLargerMarginBehind) {
  const Bytes frame = centre(FRAMESINK_UINT8, {1}, {1, 1}, {2, 4});
  const std::uint8_t m = minimumOf(FRAMESINK_UINT8)[0];
  EXPECT_EQ(frame, (Bytes{m, 1, m, m, m, m, m, m}));
}

TEST(CentreIntoFrame, SurroundsEveryTypeWithItsMinimum) {
  for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
    const Bytes source = randomWholePlanes(type, {3, 2}).bytes[0];
    EXPECT_EQ(centre(type, source, {3, 2}, {6, 7}), centred(source, type, {3, 2}, {6, 7}))
        << oracle::typeName(type);
  }
}

TEST(CentreIntoFrame, FrameOfTheSameSizeIsCopied) {
  for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
    const Bytes source = randomWholePlanes(type, {3, 5}).bytes[0];
    EXPECT_EQ(centre(type, source, {3, 5}, {3, 5}), source) << oracle::typeName(type);
  }
}

TEST(CentreIntoFrame, WidthBelowOneFillsOnly) {
  for (const std::int32_t width : {0, -1, kSmallest}) {
    EXPECT_EQ(centre(FRAMESINK_INT16, {}, {width, 2}, {2, 1}),
              centred(Bytes{}, FRAMESINK_INT16, {0, 0}, {2, 1}))
        << width;
  }
}

TEST(CentreIntoFrame, HeightZeroFillsOnly) {
  EXPECT_EQ(centre(FRAMESINK_INT16, {}, {2, 0}, {2, 1}),
            centred(Bytes{}, FRAMESINK_INT16, {0, 0}, {2, 1}));
}

// Six rows in a frame of four are not clipped: each column runs on into the next.
TEST(CentreIntoFrame, DoesNotClip) {
  const std::uint8_t m = minimumOf(FRAMESINK_UINT8)[0];
  const Bytes tall = centre(FRAMESINK_UINT8, {1, 2, 3, 4, 5, 6}, {1, 6}, {5, 4});
  EXPECT_EQ(tall, (Bytes{m, m, m, m,  //
                         m, m, m, 1,  //
                         2, 3, 4, 5,  //
                         6, m, m, m,  //
                         m, m, m, m}));
  const Bytes large = centreBetweenMargins(Bytes(5 * 5, 7), {5, 5}, {3, 3});
  EXPECT_FALSE(staysInside(large));
}

// (2 - 5) / 2 is -1, not -2.
TEST(CentreIntoFrame, HalvesTruncateTowardZero) {
  Bytes between(64, 0xA5);
  centreIntoFrame(FRAMESINK_UINT8, Bytes{1, 2, 3, 4, 5}.data(), {1, 5}, between.data() + 32,
                  {2, 2});
  EXPECT_EQ(between[30], 0xA5);
  EXPECT_EQ(between[31], 1);
  EXPECT_EQ(between[35], 5);
  EXPECT_EQ(between[36], 0xA5);
}

TEST(CentreIntoFrame, OtherTypesAreIgnored) {
  Bytes destination(16, 0xA5);
  for (const std::uint32_t type : {9U, 10U, 0x80000000U, 0xFFFFFFFFU}) {
    centreIntoFrame(type, Bytes(16, 1).data(), {1, 1}, destination.data(), {1, 1});
  }
  EXPECT_EQ(destination, Bytes(16, 0xA5));
}

TEST(FitsWhenCentred, IsTrueExactlyWhenCentringStaysInside) {
  const Bytes source(8 * 8, 1);
  for (int i = 0; i < 9 * 9 * 6 * 6; ++i) {
    const PlaneSize size{i % 9, i / 9 % 9};
    const PlaneSize frame{i / 81 % 6, i / 486};
    const Bytes result = centreBetweenMargins(source, size, frame);
    ASSERT_EQ(fitsWhenCentred(size, frame), staysInside(result))
        << size.width << "x" << size.height << " in " << frame.width << "x" << frame.height;
  }
}

// Heights above 2147483647 arrive here as negative numbers.
TEST(FitsWhenCentred, NothingFitsIntoAFrameWithoutPixels) {
  EXPECT_FALSE(fitsWhenCentred({3, 1}, {0, -1}));
  EXPECT_FALSE(fitsWhenCentred({3, 1}, {0, -5}));
  EXPECT_FALSE(fitsWhenCentred({1, 1}, {0, 0}));
  EXPECT_FALSE(fitsWhenCentred({1, 1}, {-1, 0}));
}

TEST(FitsWhenCentred, KnowsTheLargestSizes) {
  EXPECT_TRUE(fitsWhenCentred({kLargest, kLargest}, {kLargest, kLargest}));
  EXPECT_FALSE(fitsWhenCentred({kLargest, kLargest}, {kLargest, kLargest - 1}));
  EXPECT_FALSE(fitsWhenCentred({kLargest, 1}, {1, 1}));
  EXPECT_FALSE(fitsWhenCentred({1, kLargest}, {1, 1}));
  EXPECT_TRUE(fitsWhenCentred({kSmallest, kLargest}, {1, 1}));
}

}  // namespace
}  // namespace framesink::test
