#include "display/geometry.hpp"

#include <limits>
#include <new>

namespace framesink {

std::size_t frameBytes(Size frame) {
  constexpr std::uint64_t kMostPixels = std::numeric_limits<std::int32_t>::max() / 3;
  const std::uint64_t pixels = std::uint64_t{frame.width} * frame.height;
  if (pixels > kMostPixels) throw std::bad_alloc();
  return static_cast<std::size_t>(pixels * 3);
}

}  // namespace framesink
