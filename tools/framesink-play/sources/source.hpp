// Where frames come from.
#pragma once

#include <string>

#include "frames/frame_planes.hpp"
#include "frames/picture.hpp"

namespace framesink::play {

class Source {
 public:
  virtual ~Source() = default;

  // Moves on to the next frame, at first to the first; false at the end.
  virtual bool advance() = 0;

  // Size of all frames in pixels; known once there is a frame.
  virtual int width() const = 0;
  virtual int height() const = 0;

  // When the current frame is due, and how long it lasts; seconds, the first frame being due at 0.
  virtual double time() const = 0;
  virtual double interval() const = 0;

  // Puts the current frame into planes of the size sentWidth(kind, width()) x height().
  virtual void fill(FramePlanes& planes) = 0;

  // What was found damaged on the way; empty when all is well.
  virtual std::string trouble() const { return {}; }
};

// A source whose frames are pictures, which become samples of any kind and type.
class PictureSource : public Source {
 public:
  void fill(FramePlanes& planes) final {
    planes.fill(picture(planes.kind(), planes.type().bytes > 1));
  }

 private:
  // The current frame, sentWidth(kind, width()) x height(). Its codes stay until the next call of
  // picture or advance. `deep` asks for more than 8 bits where the source has them.
  virtual Picture picture(Kind kind, bool deep) = 0;
};

}  // namespace framesink::play
