// Pictures and positions in the X server's terms.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <vector>

namespace framesink::test {

// In pixels; x and y count from the upper left corner of the screen, or of a window where stated.
struct Geometry {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  bool operator==(const Geometry&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Geometry& g) {
  return out << g.width << "x" << g.height << "+" << g.x << "+" << g.y;
}

// Pixels 0x00RRGGBB, row by row.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  bool empty() const { return pixels.empty(); }
  // Throws std::out_of_range.
  std::uint32_t at(int x, int y) const {
    if (x < 0 || x >= width || y < 0) throw std::out_of_range("pixel outside of the image");
    return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                     static_cast<std::size_t>(x));
  }
  bool operator==(const Image&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Image& image) {
  return out << "image of " << image.width << "x" << image.height;
}

}  // namespace framesink::test
