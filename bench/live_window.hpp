// A window of the library, as a host makes and feeds it.
#pragma once

#include <string>

#include "column_major_frame.hpp"
#include "support/x_image.hpp"

namespace framesink::bench {

// Where a window is to be on the screen; without a width it gets the frame's size.
struct WindowPlace {
  test::Geometry geometry;
  bool fullscreen = false;
};

// Threaded. On the screen from the end of the constructor to the end of the destructor.
class LiveWindow {
 public:
  LiveWindow(const std::string& name, FrameSize size, FramesinkDataType dataType,
             const WindowPlace& place = {});
  ~LiveWindow();
  LiveWindow(const LiveWindow&) = delete;
  LiveWindow& operator=(const LiveWindow&) = delete;

  const std::string& name() const { return name_; }
  // One libUpdate.
  void update(const ColumnMajorFrame& frame);

 private:
  std::string name_;
  void* block_;
};

}  // namespace framesink::bench
