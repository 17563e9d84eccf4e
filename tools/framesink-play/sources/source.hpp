// The interface of everything that produces frames.
#pragma once

#include <string>

#include "frames/frame_planes.hpp"
#include "frames/picture.hpp"

namespace framesink::play {

class Source {
 public:
  virtual ~Source() = default;

  // Moves on to the next frame; the first call moves to the first. Returns false after the last one.
  virtual bool advance() = 0;

  // Size of all frames in pixels, valid once there is a frame.
  virtual int width() const = 0;
  virtual int height() const = 0;

  // When the current frame is due and how long it lasts, in seconds. The first frame is due at 0.
  virtual double time() const = 0;
  virtual double interval() const = 0;

  // Writes the current frame into planes of sentWidth(kind, width()) x height().
  virtual void fill(FramePlanes& planes) = 0;

  // Describes damage found so far; empty if there is none.
  virtual std::string trouble() const { return {}; }
};

// A source of pictures, which can become samples of any kind and type.
class PictureSource : public Source {
 public:
  void fill(FramePlanes& planes) final {
    planes.fill(picture(planes.kind(), planes.type().bytes > 1));
  }

 private:
  // Returns the current frame, sentWidth(kind, width()) x height(). Its codes stay valid until the
  // next call of picture or advance. `deep` asks for more than 8 bits if the source has them.
  virtual Picture picture(Kind kind, bool deep) = 0;
};

}  // namespace framesink::play
