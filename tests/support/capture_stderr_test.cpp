#include "support/capture_stderr.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "support/os_facts.hpp"

namespace framesink::test {
namespace {

TEST(CaptureStderr, HoldsWhatEveryWayOfWritingWrote) {
  const CaptureStderr capture;
  std::fprintf(stderr, "stdio ");
  std::cerr << "iostream ";
  ASSERT_EQ(write(STDERR_FILENO, "descriptor", 10), 10);
  EXPECT_EQ(capture.text(), "stdio iostream descriptor");
}

TEST(CaptureStderr, RestoresTheStream) {
  const CaptureStderr outer;
  {
    const CaptureStderr inner;
    std::fprintf(stderr, "inside");
  }
  std::fprintf(stderr, "after");
  EXPECT_EQ(outer.text(), "after");
}

TEST(CaptureStderr, KeepsNoDescriptor) {
  const std::size_t before = openFileDescriptors();
  { const CaptureStderr capture; }
  EXPECT_EQ(openFileDescriptors(), before);
}

}  // namespace
}  // namespace framesink::test
