#include "process/video_driver.hpp"

#include <gtest/gtest.h>

namespace framesink::test {
namespace {

TEST(VideoDriver, DrawsThroughOpenGlUnlessItIsKnownToDrawInSoftware) {
  for (const char* driver : {"x11", "dummy", "evdummy", "offscreen", "windows"}) {
    EXPECT_FALSE(drawsThroughOpenGl(driver)) << driver;
  }
  for (const char* driver : {"wayland", "KMSDRM", "cocoa", "x11,wayland", "a later one", ""}) {
    EXPECT_TRUE(drawsThroughOpenGl(driver)) << driver;
  }
  EXPECT_FALSE(drawsThroughOpenGl(nullptr));
}

}  // namespace
}  // namespace framesink::test
