// Sizes and positions as the host passes them. Each pair is aligned to its size, so that an atomic
// pair is a single word.
#pragma once

#include <cstddef>
#include <cstdint>

namespace framesink {

// Pixels.
struct alignas(8) Size {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool operator==(const Size&) const = default;
};

// Screen coordinates; signed values in unsigned fields.
struct alignas(8) Position {
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  bool operator==(const Position&) const = default;
};

// A window's place and size while it is not full screen.
struct WindowGeometry {
  Position position;
  Size size;
};

// Bytes of a frame: red, green and blue planes of 8-bit samples, one after another, each
// column-major. Frame sizes are computed only here. Throws std::bad_alloc above 2147483647 bytes.
std::size_t frameBytes(Size frame);

}  // namespace framesink
