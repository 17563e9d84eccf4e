// Reads the frame buffer into which the blocks of a name convert.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "display/video_window_registry.hpp"
#include "test_frame.hpp"

namespace framesink::test {

// A copy of the buffer; empty if the name is not registered.
inline Bytes recordedFrame(const std::string& name) {
  const VideoWindow* window = videoWindowRegistry().findVideoWindow(name);
  if (window == nullptr) return {};
  const std::uint8_t* frame = window->frameBuffer.get();
  return {frame, frame + frameBytes(window->frameSize())};
}

// The frame buffer's content before the first frame: zeroes.
inline Bytes blankFrame(Size size) { return Bytes(frameBytes(size)); }

}  // namespace framesink::test
