#include "display/geometry.hpp"

#include <gtest/gtest.h>

#include <new>

namespace framesink::test {
namespace {

TEST(FrameByteCount, IsThreeBytesAPixel) {
  EXPECT_EQ(frameBytes({1, 1}), 3U);
  EXPECT_EQ(frameBytes({640, 480}), 921'600U);
  EXPECT_EQ(frameBytes({1920, 1080}), 6'220'800U);
}

TEST(FrameByteCount, IsZeroForAFrameWithoutPixels) {
  EXPECT_EQ(frameBytes({0, 0}), 0U);
  EXPECT_EQ(frameBytes({0, 0xFFFFFFFF}), 0U);
  EXPECT_EQ(frameBytes({0xFFFFFFFF, 0}), 0U);
}

TEST(FrameByteCount, GoesUpTo2147483647) {
  EXPECT_EQ(frameBytes({715'827'882, 1}), 2'147'483'646U);
  EXPECT_THROW(frameBytes({715'827'883, 1}), std::bad_alloc);
  EXPECT_THROW(frameBytes({1, 715'827'883}), std::bad_alloc);
}

TEST(FrameByteCount, DoesNotWrapAround) {
  EXPECT_THROW(frameBytes({0x10000, 0x10000}), std::bad_alloc);
  EXPECT_THROW(frameBytes({0x80000000, 2}), std::bad_alloc);
  EXPECT_THROW(frameBytes({0xFFFFFFFF, 0xFFFFFFFF}), std::bad_alloc);
}

}  // namespace
}  // namespace framesink::test
