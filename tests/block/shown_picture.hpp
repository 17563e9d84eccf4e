// Compares what a window shows with what it should show.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/x_client.hpp"

namespace framesink::test {

// Success if the images are equal; otherwise failure with the first difference.
inline testing::AssertionResult equals(const Image& shown, const Image& picture) {
  if (shown == picture) return testing::AssertionSuccess();
  if (shown.width != picture.width || shown.height != picture.height) {
    return testing::AssertionFailure() << "shows an " << shown << ", not an " << picture;
  }
  std::size_t i = 0;
  while (shown.pixels[i] == picture.pixels[i]) ++i;
  const auto width = static_cast<std::size_t>(picture.width);
  return testing::AssertionFailure()
         << "pixel " << i % width << "," << i / width << " is 0x" << std::hex << shown.pixels[i]
         << ", not 0x" << picture.pixels[i];
}

// Success as soon as the window shows the picture; after the deadline, failure with the first
// difference.
inline testing::AssertionResult shows(XClient& x, Window window, const Image& picture) {
  Image shown;
  waitUntil([&] { return (shown = x.pixels(window)) == picture; });
  return equals(shown, picture);
}

// Success as soon as any window with the title shows the picture: a window that is being closed may
// have the title too.
inline testing::AssertionResult shows(XClient& x, const std::string& title, const Image& picture) {
  Image shown;
  waitUntil([&] {
    for (const Window window : x.windows(title)) {
      if ((shown = x.pixels(window)) == picture) return true;
    }
    return false;
  });
  return equals(shown, picture);
}

}  // namespace framesink::test
