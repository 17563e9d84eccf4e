// Decoded frames as RGB, grey or YCbCr 4:2:2 pictures of one size, by swscale.
#pragma once

#include <memory>
#include <tuple>

#include "frames/picture.hpp"

struct AVFrame;
struct SwsContext;

namespace framesink::play {

class PictureScaler {
 public:
  // The frame as a picture of the size `width` x `height`, where width is sentWidth. A frame that
  // is one column wider loses that column; any other size is scaled. `deep`: 16 bits per component
  // instead of 8. The codes stay until the next call. Throws Failure for what swscale cannot read.
  //
  // 8-bit pictures are what swscale gives as RGB24, as GRAY8 in full range, or as YUV422P in BT.601
  // studio range, with bicubic interpolation of chroma, accurate rounding and full chroma
  // interpolation.
  Picture scale(const AVFrame& frame, Kind kind, bool deep, int width, int height);

 private:
  // All that decides about the conversion: source width, height, format, colour space and range;
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
