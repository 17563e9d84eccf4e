// Packs a frame of random bytes into the texture's pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "measured_frame.hpp"

namespace framesink::bench {

struct Packing {
  std::vector<std::uint8_t> frame = std::vector<std::uint8_t>(3 * kPixels);
  std::vector<std::uint32_t> pixels = std::vector<std::uint32_t>(kPixels);

  Packing();
  void run();

  // Packs once and compares every pixel with its definition, 0xFFRRGGBB.
  bool isRight();
};

}  // namespace framesink::bench
