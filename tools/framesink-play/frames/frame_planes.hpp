// The planes of one frame as a host sends them, with their description.
#pragma once

#include <array>
#include <cstddef>
#include <ostream>
#include <vector>

#include "frames/picture.hpp"
#include "frames/sample_type.hpp"
#include "framesink/framesink.h"

namespace framesink::play {

class FramePlanes {
 public:
  // Sizes in pixels. `width` must be even for YCbCr 4:2:2.
  FramePlanes(Kind kind, const SampleType& type, Layout layout, int width, int height);

  // Returns the record that libCreate requires.
  InputDescription description() const;

  // Converts a picture of the same kind and size into samples.
  void fill(const Picture& picture);

  // Copies samples of the same type into plane `index`.
  void copy(std::size_t index, const SampleGrid& samples);

  // Returns the samples of plane 0 to 2, or null if the kind has no such plane.
  const void* plane(std::size_t index) const;

  // Writes all samples, plane after plane.
  void dump(std::ostream& out) const;

  Kind kind() const { return kind_; }
  const SampleType& type() const { return type_; }

 private:
  Kind kind_;
  const SampleType& type_;
  Layout layout_;
  int width_;
  int height_;
  std::vector<std::vector<std::byte>> planes_;
};

}  // namespace framesink::play
