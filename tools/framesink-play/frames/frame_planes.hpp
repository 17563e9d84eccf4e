// The planes of one frame as a host would send them, with their description.
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
  // `width` must be even for YCbCr 4:2:2. Sizes in pixels.
  FramePlanes(Kind kind, const SampleType& type, Layout layout, int width, int height);

  // The record that libCreate takes.
  InputDescription description() const;

  // Takes the samples over from a picture of the same kind and size.
  void fill(const Picture& picture);

  // Takes plane `index` over as it is.
  void copy(std::size_t index, const SampleGrid& samples);

  // The samples of plane 0 to 2; null for a plane that the kind does not have.
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
