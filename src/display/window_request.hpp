// What a host asks of a window: made once where the host's call comes in, and read by whoever makes
// the window.
#pragma once

#include <cstdint>
#include <string>

#include "display/geometry.hpp"

namespace framesink {

// As window width and height together: the frame's size.
inline constexpr std::uint32_t kFrameSizeMarker = 0x7FFFFFFF;

struct WindowRequest {
  std::string title{};
  Size frameSize{};
  WindowGeometry geometry{};  // its size counts with useWindowSize or fullscreen only
  bool useWindowSize = false;
  bool fullscreen = false;

  // The size to open the window with, or to go back to from full screen.
  Size windowSize() const {
    const bool hasOwnSize = useWindowSize || fullscreen;
    const bool isMarker = geometry.size == Size{kFrameSizeMarker, kFrameSizeMarker};
    return hasOwnSize && !isMarker ? geometry.size : frameSize;
  }
};

// What a block asks of its window when it is created.
struct WindowSetup {
  std::string name;
  WindowRequest window;
  bool openNow = false;
  bool synchronous = false;
};

}  // namespace framesink
