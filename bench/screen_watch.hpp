// Asks the X server whether a frame is on the screen.
#pragma once

#include <functional>
#include <string>

#include "column_major_frame.hpp"
#include "support/x_client.hpp"

namespace framesink::bench {

class ScreenWatch {
 public:
  // Waits for the window with this title. Throws std::runtime_error if it does not open.
  explicit ScreenWatch(const std::string& title);

  // True if the window shows the frame. In a window of the frame's size it compares every pixel. In
  // any other window it compares the middle of every block of the scaled and centred frame.
  bool shows(const ColumnMajorFrame& frame);
  // Compares one block only, whose colour differs from frame to frame. Fast.
  bool hasArrived(const ColumnMajorFrame& frame);

  // These call `pump` and hasArrived() or shows() until the frame is on the screen. They throw
  // std::runtime_error after a deadline.
  void awaitArrival(const ColumnMajorFrame& frame, const std::function<void()>& pump);
  void requireShown(const ColumnMajorFrame& frame, const std::function<void()>& pump);

 private:
  void await(const std::function<bool()>& holds, const std::function<void()>& pump);

  std::string title_;
  test::XClient x_;
  test::Window window_;
};

}  // namespace framesink::bench
