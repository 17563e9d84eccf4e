// Frames as the host hands them over, and the pictures that they must make.
#pragma once

#include <cstdint>
#include <vector>

#include "display/geometry.hpp"
#include "support/x_image.hpp"

namespace framesink::test {

// Three planes, red, green, blue, one after another, each column by column.
struct Frame {
  Size size;
  std::vector<std::uint8_t> planes;

  const std::uint8_t* data() const { return planes.data(); }
};

// Reproducible noise: frames of different seeds differ in about every sample.
Frame noiseFrame(Size size, std::uint32_t seed);

// Every pixel 0xRRGGBB.
Frame plainFrame(Size size, std::uint32_t colour);

// The frame unscaled: row by row, 0x00RRGGBB.
Image pictureOf(const Frame& frame);

// Every pixel as a square of `factor` pixels.
Image enlarged(const Image& image, int factor);

// `inner` in the middle of a black picture.
Image letterboxed(const Image& inner, int width, int height);

}  // namespace framesink::test
