// Frames as a host delivers them, and the pictures that windows must show for them.
#pragma once

#include <cstdint>
#include <vector>

#include "display/geometry.hpp"
#include "support/x_image.hpp"

namespace framesink::test {

// A red, a green and a blue plane, one after another; each is column-major, one byte a sample.
struct Frame {
  Size size;
  std::vector<std::uint8_t> planes;

  const std::uint8_t* data() const { return planes.data(); }
};

// Reproducible noise: frames of different seeds differ in about every sample.
Frame noiseFrame(Size size, std::uint32_t seed);

// A frame whose every pixel is `colour`, 0xRRGGBB.
Frame plainFrame(Size size, std::uint32_t colour);

// The unscaled picture of the frame: row-major pixels, 0x00RRGGBB.
Image pictureOf(const Frame& frame);

// Turns every pixel into a square of `factor` × `factor` pixels.
Image enlarged(const Image& image, int factor);

// Puts `inner` in the middle of a black picture of width × height pixels.
Image letterboxed(const Image& inner, int width, int height);

}  // namespace framesink::test
