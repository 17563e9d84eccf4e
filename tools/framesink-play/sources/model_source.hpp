// The built-in model, computed live: a field of spiral waves. RGB shows it in false colour,
// intensity the square of its amplitude, YCbCr its phase as hue and its amplitude as brightness.
#pragma once

#include <memory>

#include "sources/source.hpp"

namespace framesink::play {

inline constexpr int kModelWidth = 400;
inline constexpr int kModelHeight = 300;
inline constexpr int kSmallestModel = 16;
inline constexpr int kLargestModel = 4096;

// Sizes in pixels, one per cell of the field, from kSmallestModel to kLargestModel.
std::unique_ptr<Source> makeModelSource(int width, int height);

}  // namespace framesink::play
