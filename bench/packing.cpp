#include "packing.hpp"

#include <random>

#include "simd/texture_packing.hpp"

namespace framesink::bench {

Packing::Packing() {
  std::mt19937 random(1);
  for (std::uint8_t& byte : frame) byte = static_cast<std::uint8_t>(random());
}

void Packing::run() { copyPlanesToTexture(frame.data(), pixels.data(), kWidth, kHeight); }

bool Packing::isRight() {
  run();
  for (std::size_t e = 0; e < kPixels; ++e) {
    const std::uint32_t expected = 0xFF000000U | std::uint32_t{frame[e]} << 16 |
                                   std::uint32_t{frame[kPixels + e]} << 8 | frame[2 * kPixels + e];
    if (pixels[e % kHeight * kWidth + e / kHeight] != expected) return false;
  }
  return true;
}

}  // namespace framesink::bench
