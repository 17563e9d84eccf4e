// A frame to pack for the screen.
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

  // Packs once and compares with the layout's own words.
  bool isRight();
};

}  // namespace framesink::bench
