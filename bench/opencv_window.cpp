#include <array>
#include <opencv2/core.hpp>
#include <opencv2/highgui.hpp>

#include "peer_windows.hpp"

// Shows column-major planes as a user of OpenCV does: convert doubles to bytes, transpose, merge,
// imshow, waitKey. OpenCV draws in waitKey(1), so the picture is on the screen when that returns.
namespace framesink::bench {
namespace {

class OpenCvWindow : public PeerWindow {
 public:
  OpenCvWindow(const std::string& title, const WindowPlace& place) : title_(title) {
    const auto [x, y, width, height] = place.geometry;
    const bool isScaled = width != 0 || place.fullscreen;
    cv::setNumThreads(1);
    cv::namedWindow(
        title_, cv::WINDOW_GUI_NORMAL |
                    (isScaled ? cv::WINDOW_NORMAL | cv::WINDOW_KEEPRATIO : cv::WINDOW_AUTOSIZE));
    if (width != 0) cv::resizeWindow(title_, width, height);
    cv::moveWindow(title_, x, y);
    if (place.fullscreen) {
      cv::setWindowProperty(title_, cv::WND_PROP_FULLSCREEN, cv::WINDOW_FULLSCREEN);
    }
  }
  ~OpenCvWindow() override {
    cv::destroyWindow(title_);
    cv::waitKey(1);
  }

  void show(const ColumnMajorFrame& frame) override {
    for (std::size_t i = 0; i < 3; ++i) cv::transpose(bytesOf(frame, i), rows_[2 - i]);
    cv::merge(rows_, picture_);
    cv::imshow(title_, picture_);
    pump();
  }

  void pump() override { cv::waitKey(1); }

 private:
  // OpenCV reads a column as a row. Doubles become bytes first, so that transposing moves less.
  const cv::Mat& bytesOf(const ColumnMajorFrame& frame, std::size_t plane) {
    const auto [width, height] = frame.size();
    void* const samples = const_cast<void*>(frame.plane(plane));
    if (frame.dataType() == FRAMESINK_DOUBLE) {
      cv::Mat(width, height, CV_64F, samples).convertTo(bytes_, CV_8U, 255);
    } else {
      bytes_ = cv::Mat(width, height, CV_8U, samples);
    }
    return bytes_;
  }

  std::string title_;
  std::array<cv::Mat, 3> rows_;  // blue, green, red
  cv::Mat picture_;
  cv::Mat bytes_;
};

std::unique_ptr<PeerWindow> openWindow(const std::string& title, FrameSize,
                                       const WindowPlace& place) {
  return std::make_unique<OpenCvWindow>(title, place);
}

}  // namespace

const Peer kOpenCv{"OpenCV", openWindow};

}  // namespace framesink::bench
