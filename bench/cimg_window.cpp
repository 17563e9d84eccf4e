// The build compiles this file twice, into separate libraries: without cimg_use_xshm and with it.
// cimg_use_xshm lets CImg share memory with the X server. Without it a picture is on the screen when
// display() returns; with it CImg's own thread sends the request up to 8 ms later.
#include <CImg.h>

#include <algorithm>
#include <limits>

#include "peer_windows.hpp"

namespace framesink::bench {
namespace {

using cimg_library::CImg;
using cimg_library::CImgDisplay;

FrameSize windowSize(FrameSize frame, const WindowPlace& place) {
  const auto [x, y, width, height] = place.geometry;
  if (!place.fullscreen) return width == 0 ? frame : FrameSize{width, height};
  const double scale = std::min(static_cast<double>(CImgDisplay::screen_width()) / frame.width,
                                static_cast<double>(CImgDisplay::screen_height()) / frame.height);
  return {static_cast<int>(frame.width * scale), static_cast<int>(frame.height * scale)};
}

class CImgWindow : public PeerWindow {
 public:
  CImgWindow(const std::string& title, FrameSize size, const WindowPlace& place)
      : display_(static_cast<unsigned>(size.width), static_cast<unsigned>(size.height),
                 title.c_str(), kNormaliseFloats, place.fullscreen) {
    if (!place.fullscreen) display_.move(place.geometry.x, place.geometry.y);
  }

  void show(const ColumnMajorFrame& frame) override {
    if (frame.dataType() == FRAMESINK_DOUBLE) {
      display_.display(pictureOf<double>(frame));
    } else {
      display_.display(pictureOf<unsigned char>(frame));
    }
  }

  // Does nothing, because CImg's own thread draws.
  void pump() override {}

 private:
  // CImg's default: it shows bytes unchanged and scales floats from the picture's range to 0..255.
  static constexpr unsigned kNormaliseFloats = 3;

  // Transposes, because CImg's planes are row-major.
  template <class Sample>
  static CImg<Sample> pictureOf(const ColumnMajorFrame& frame) {
    const auto [width, height] = frame.size();
    return CImg<Sample>(static_cast<const Sample*>(frame.plane(0)), static_cast<unsigned>(height),
                        static_cast<unsigned>(width), 1, 3, /*is_shared=*/true)
        .get_transpose();
  }

  CImgDisplay display_;
};

std::unique_ptr<PeerWindow> openWindow(const std::string& title, FrameSize size,
                                       const WindowPlace& place) {
  return std::make_unique<CImgWindow>(title, windowSize(size, place), place);
}

}  // namespace

#ifdef cimg_use_xshm
const Peer kCImgSharing{"CImg sharing memory", openWindow};
#else
const Peer kCImg{"CImg", openWindow};
#endif

}  // namespace framesink::bench
