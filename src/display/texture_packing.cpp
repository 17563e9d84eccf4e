#include "display/texture_packing.hpp"

namespace framesink {

void copyPlanesToTexture(const std::uint8_t* frame, void* pixels, Size size) {
  const std::size_t width = size.width;
  const std::size_t height = size.height;
  const std::uint8_t* red = frame;
  const std::uint8_t* green = red + width * height;
  const std::uint8_t* blue = green + width * height;
  auto* pixel = static_cast<std::uint32_t*>(pixels);
  for (std::size_t row = 0; row < height; ++row) {
    for (std::size_t column = 0; column < width; ++column) {
      const std::size_t e = column * height + row;
      *pixel++ = 0xFF000000U | std::uint32_t{red[e]} << 16 | std::uint32_t{green[e]} << 8 | blue[e];
    }
  }
}

}  // namespace framesink
