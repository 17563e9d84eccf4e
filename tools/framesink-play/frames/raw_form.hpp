// The form of raw samples: "640x480:double:rgb".
#pragma once

#include <cstddef>

#include "frames/picture.hpp"
#include "frames/sample_type.hpp"

namespace framesink::play {

struct RawForm {
  int width;
  int height;
  const SampleType* type;
  Kind kind;
  // False: plane after plane, each column by column, as --dump-frame writes them. True: row by row
  // with the components of a pixel together; YCbCr 4:2:2 as Y Cb Y Cr for each pair of pixels.
  bool packed;

  std::size_t frameBytes() const;
};

// The samples of plane `plane` within a frame of that form that begins at `frame`.
SampleGrid planeOf(const RawForm& form, const std::byte* frame, int plane);

}  // namespace framesink::play
