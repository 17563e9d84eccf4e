// The form of raw samples: size, type, kind and order.
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
  // False: one plane after another, each column by column, as --dump-frame writes them. True: row
  // by row with the components of a pixel together, YCbCr 4:2:2 as Y Cb Y Cr per pixel pair.
  bool packed;

  std::size_t frameBytes() const;
};

// Returns the samples of plane `plane` in the frame at `frame`, which has this form.
SampleGrid planeOf(const RawForm& form, const std::byte* frame, int plane);

}  // namespace framesink::play
