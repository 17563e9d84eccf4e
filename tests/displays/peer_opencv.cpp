#include <opencv2/highgui.hpp>
#include <string>

#include "peer_host.hpp"

namespace framesink::test {
namespace {

class OpenCvWindow : public PeerWindow {
 public:
  OpenCvWindow(const char* name, int x, int y) : name_(name) {
    cv::namedWindow(name_, cv::WINDOW_AUTOSIZE | cv::WINDOW_GUI_NORMAL);
    cv::moveWindow(name_, x, y);
  }
  ~OpenCvWindow() override { cv::destroyWindow(name_); }

  void show(const PeerPicture& picture) override {
    cv::Mat image(static_cast<int>(picture.height), static_cast<int>(picture.width), CV_8UC3);
    for (unsigned row = 0; row < picture.height; ++row) {
      for (unsigned column = 0; column < picture.width; ++column) {
        auto& pixel = image.at<cv::Vec3b>(static_cast<int>(row), static_cast<int>(column));
        for (int plane = 0; plane < 3; ++plane) {
          pixel[2 - plane] = picture.sample(plane, row, column);
        }
      }
    }
    cv::imshow(name_, image);
    cv::waitKey(1);
  }

 private:
  std::string name_;
};

}  // namespace

std::unique_ptr<PeerWindow> PeerWindow::open(const char* name, int x, int y, const PeerPicture&) {
  return std::make_unique<OpenCvWindow>(name, x, y);
}

}  // namespace framesink::test
