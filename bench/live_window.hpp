// A window that is opened, and gets its frames, through the library's exports, as in a host.
#pragma once

#include <string>

#include "column_major_frame.hpp"
#include "support/x_image.hpp"

namespace framesink::bench {

// The requested place of a window. With width 0 the window gets the frame's size.
struct WindowPlace {
  test::Geometry geometry;
  bool fullscreen = false;
};

// A threaded window. The constructor returns when it is on the screen, the destructor when it is gone.
class LiveWindow {
 public:
  LiveWindow(const std::string& name, FrameSize size, FramesinkDataType dataType,
             const WindowPlace& place = {});
  ~LiveWindow();
  LiveWindow(const LiveWindow&) = delete;
  LiveWindow& operator=(const LiveWindow&) = delete;

  const std::string& name() const { return name_; }
  // Calls libUpdate once.
  void update(const ColumnMajorFrame& frame);

 private:
  std::string name_;
  void* block_;
};

}  // namespace framesink::bench
