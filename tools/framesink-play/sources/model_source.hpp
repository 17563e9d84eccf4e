// The built-in model, running live: a field of spiral waves, shown in false colour (rgb), as the
// square of its amplitude (intensity), or with its phase as hue and its amplitude as brightness
// (ycbcr422).
#pragma once

#include <memory>

#include "sources/source.hpp"

namespace framesink::play {

inline constexpr int kModelWidth = 400;
inline constexpr int kModelHeight = 300;
inline constexpr int kSmallestModel = 16;
inline constexpr int kLargestModel = 4096;

// Sizes in pixels, one cell of the field each; from kSmallestModel to kLargestModel.
std::unique_ptr<Source> makeModelSource(int width, int height);

}  // namespace framesink::play
