// Converts decoded frames to RGB, grey or YCbCr 4:2:2 pictures of one size with swscale.
#pragma once

#include <memory>
#include <tuple>

#include "frames/picture.hpp"

struct AVFrame;
struct SwsContext;

namespace framesink::play {

class PictureScaler {
 public:
  // Returns the frame as a picture of `width` x `height`, where `width` is a sentWidth. A frame that
  // is one column wider loses that column; any other size is scaled. `deep` asks for 16 bits per
  // component instead of 8. The codes stay valid until the next call. Throws Failure if swscale
  // cannot read the frame.
  //
  // 8-bit pictures are swscale's RGB24, GRAY8 in full range, or YUV422P in BT.601 studio range, with
  // bicubic interpolation of chroma, accurate rounding and full chroma interpolation.
  Picture scale(const AVFrame& frame, Kind kind, bool deep, int width, int height);

 private:
  // What decides the conversion: width, height, format, colour space and range of the source;
  // format, width and height of the result.
  using Setup = std::tuple<int, int, int, int, int, int, int, int>;

  struct Free {
    void operator()(AVFrame* frame) const;
    void operator()(SwsContext* context) const;
  };

  void prepare(const Setup& setup, Kind kind);
  Picture view(Kind kind, bool deep) const;

  Setup setup_{};
  std::unique_ptr<SwsContext, Free> context_;
  std::unique_ptr<AVFrame, Free> result_;
};

}  // namespace framesink::play
