#include "plain_loop.hpp"

namespace framesink::bench {

void rgbToYuy2PlainLoop(const std::uint8_t* red, const std::uint8_t* green,
                        const std::uint8_t* blue, std::uint8_t* out, int width, int height) {
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; column += 2) {
      const int p = row + column * height;
      const int q = p + height;
      *out++ = static_cast<std::uint8_t>(
          ((65 * red[p] + 129 * green[p] + 25 * blue[p] + 128) >> 8) + 16);
      *out++ = static_cast<std::uint8_t>(
          ((-38 * red[p] - 74 * green[p] + 112 * blue[p] + 128) >> 8) + 128);
      *out++ = static_cast<std::uint8_t>(
          ((65 * red[q] + 129 * green[q] + 25 * blue[q] + 128) >> 8) + 16);
      *out++ = static_cast<std::uint8_t>(
          ((112 * red[p] - 94 * green[p] - 18 * blue[p] + 128) >> 8) + 128);
    }
  }
}

}  // namespace framesink::bench
