// Whether a frame is on the screen, asked of the X server.
#pragma once

#include <functional>
#include <string>

#include "column_major_frame.hpp"
#include "support/x_client.hpp"

namespace framesink::bench {

class ScreenWatch {
 public:
  // The window of that title. Throws std::runtime_error when it does not come.
  explicit ScreenWatch(const std::string& title);

  // True when the window shows the frame: every pixel where the window has the frame's size;
  // otherwise the middle of every block of the frame, as large as fits, in the window's middle.
  bool shows(const ColumnMajorFrame& frame);
  // Looks at one block that no two frames have in the same colour. Cheap.
  bool hasArrived(const ColumnMajorFrame& frame);

  // Calls `pump` and looks, until the frame is there. Throws std::runtime_error after a deadline.
  void awaitArrival(const ColumnMajorFrame& frame, const std::function<void()>& pump);
  void requireShown(const ColumnMajorFrame& frame, const std::function<void()>& pump);

 private:
  void await(const std::function<bool()>& holds, const std::function<void()>& pump);

  std::string title_;
  test::XClient x_;
  test::Window window_;
};

}  // namespace framesink::bench
