#include <CImg.h>

#include "peer_host.hpp"

namespace framesink::test {
namespace {

using Image = cimg_library::CImg<unsigned char>;

class CImgWindow : public PeerWindow {
 public:
  // 0 shows samples as they are.
  CImgWindow(const char* name, int x, int y, const PeerPicture& picture)
      : display_(picture.width, picture.height, name, 0) {
    display_.move(x, y);
  }

  void show(const PeerPicture& picture) override {
    Image image(picture.width, picture.height, 1, 3);
    cimg_forXYC(image, x, y, c) {
      image(static_cast<unsigned>(x), static_cast<unsigned>(y), 0, static_cast<unsigned>(c)) =
          picture.sample(c, static_cast<unsigned>(y), static_cast<unsigned>(x));
    }
    display_.display(image);
  }

 private:
  cimg_library::CImgDisplay display_;
};

}  // namespace

std::unique_ptr<PeerWindow> PeerWindow::open(const char* name, int x, int y,
                                             const PeerPicture& picture) {
  return std::make_unique<CImgWindow>(name, x, y, picture);
}

}  // namespace framesink::test
