#include "screen_watch.hpp"

#include <algorithm>
#include <stdexcept>

namespace framesink::bench {
namespace {

using test::Geometry;
using test::Image;

// Maps the frame's pixels to the window's.
class Placement {
 public:
  Placement(int width, int height, FrameSize frame)
      : scale_(std::min(static_cast<double>(width) / frame.width,
                        static_cast<double>(height) / frame.height)),
        left_((width - frame.width * scale_) / 2),
        top_((height - frame.height * scale_) / 2) {}

  int x(int column) const { return static_cast<int>(left_ + (column + 0.5) * scale_); }
  int y(int row) const { return static_cast<int>(top_ + (row + 0.5) * scale_); }

 private:
  double scale_;
  double left_;
  double top_;
};

bool showsFrame(const Image& image, const ColumnMajorFrame& frame) {
  const FrameSize size = frame.size();
  const bool isUnscaled = image.width == size.width && image.height == size.height;
  const int step = isUnscaled ? 1 : ColumnMajorFrame::kBlock;
  const Placement place(image.width, image.height, size);
  for (int y = step / 2; y < size.height; y += step) {
    for (int x = step / 2; x < size.width; x += step) {
      if (image.at(place.x(x), place.y(y)) != frame.colourAt(x, y)) return false;
    }
  }
  return true;
}

}  // namespace

ScreenWatch::ScreenWatch(const std::string& title)
    : title_(title), window_(x_.waitForWindow(title)) {}

bool ScreenWatch::shows(const ColumnMajorFrame& frame) {
  const Image image = x_.pixels(window_);
  return !image.empty() && showsFrame(image, frame);
}

bool ScreenWatch::hasArrived(const ColumnMajorFrame& frame) {
  const Geometry window = x_.geometry(window_);
  const FrameSize size = frame.size();
  const int x = size.width - ColumnMajorFrame::kBlock / 2;
  const int y = size.height - ColumnMajorFrame::kBlock / 2;
  const Placement place(window.width, window.height, size);
  const Image image = x_.pixels(window_, {place.x(x), place.y(y), 1, 1});
  return !image.empty() && image.at(0, 0) == frame.colourAt(x, y);
}

void ScreenWatch::awaitArrival(const ColumnMajorFrame& frame, const std::function<void()>& pump) {
  await([&] { return hasArrived(frame); }, pump);
}

void ScreenWatch::requireShown(const ColumnMajorFrame& frame, const std::function<void()>& pump) {
  await([&] { return shows(frame); }, pump);
}

void ScreenWatch::await(const std::function<bool()>& holds, const std::function<void()>& pump) {
  const auto pumpAndLook = [&] {
    pump();
    return holds();
  };
  if (test::waitUntil(pumpAndLook)) return;
  throw std::runtime_error("the window \"" + title_ + "\" does not show its frame");
}

}  // namespace framesink::bench
