// The kinds of frames, and pictures as sources hold them before they become a host's planes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <variant>
#include <vector>

namespace framesink::play {

// Larger frames are not read, so that a wrong size cannot take all memory.
inline constexpr std::int64_t kMostFramePixels = 1 << 27;

// What the planes of a frame hold.
enum class Kind { kRgb, kIntensity, kYcbcr422 };

struct KindInfo {
  Kind kind;
  const char* name;   // on the command line
  const char* label;  // in titles
  int planeCount;
  char fourcc[4];  // in the description
};

inline constexpr std::array<KindInfo, 3> kKinds{{
    {Kind::kRgb, "rgb", "RGB", 3, {0, 0, 0, 0}},
    {Kind::kIntensity, "intensity", "intensity", 1, {0, 0, 0, 0}},
    {Kind::kYcbcr422, "ycbcr422", "YUY2", 3, {'Y', 'U', 'Y', '2'}},
}};

constexpr const KindInfo& infoOf(Kind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

// The width at which a picture of `width` columns is sent. YCbCr 4:2:2 drops an odd last column.
constexpr int sentWidth(Kind kind, int width) {
  return kind == Kind::kYcbcr422 ? width & ~1 : width;
}

constexpr int planeWidth(Kind kind, int plane, int width) {
  return kind == Kind::kYcbcr422 && plane > 0 ? width / 2 : width;
}

// One component of a picture. The source owns `codes`.
template <class Code>
struct Grid {
  const Code* codes;
  std::ptrdiff_t rowStep;     // codes from one row to the next
  std::ptrdiff_t columnStep;  // codes from one column to the next
  int width;
  int height;
  double one;  // the code of 1.0, which becomes the maximum of a sample type

  Code at(int row, int column) const { return codes[row * rowStep + column * columnStep]; }
};

using Component = std::variant<Grid<std::uint8_t>, Grid<std::uint16_t>, Grid<double>>;
using Picture = std::vector<Component>;

}  // namespace framesink::play
