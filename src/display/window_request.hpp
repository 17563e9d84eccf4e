// What a host asks of a window: made once, in the export, and read wherever the window is made.
#pragma once

#include <cstdint>
#include <string>

#include "display/geometry.hpp"

namespace framesink {

// As both window width and window height: use the frame's size.
inline constexpr std::uint32_t kFrameSizeMarker = 0x7FFFFFFF;

struct WindowRequest {
  std::string title{};
  Size frameSize{};
  WindowGeometry geometry{};  // its size is used with useWindowSize or fullscreen only
  bool useWindowSize = false;
  bool fullscreen = false;

  // The size in which the window opens, or to which it returns from full screen.
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
