// Converts runs of 8-bit pixels from one colour space to another, on the vectors of this machine.
// Reads and writes nothing beyond the runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace framesink {

// Runs of two columns of pixels that share their chroma: Y of the first, Y of the second, Cb, Cr.
using YcbcrPair = std::array<const std::uint8_t*, 4>;

// R, G, B of the first column, R, G, B of the second.
using RgbPair = std::array<std::uint8_t*, 6>;
using RgbPairSources = std::array<const std::uint8_t*, 6>;

// The parts of a YUY2 group: Y of the first column, Cb, Y of the second column, Cr.
using Yuy2Targets = std::array<std::uint8_t*, 4>;

// Converts `count` pixels of each column to RGB, clamped to 0..255. Gives the same as ycbcrToRgb
// for each pixel.
void ycbcrPairToRgb(const YcbcrPair& ycbcr, const RgbPair& rgb, std::size_t count);

// Converts `count` pixels of each column as rgbToYcbcr does; chroma is the first column's only.
void rgbPairToYcbcr(const RgbPairSources& rgb, const Yuy2Targets& out, std::size_t count);

// Converts `count` intensities to luma as intensityToLuma does.
void intensityRowToLuma(const std::uint8_t* intensity, std::uint8_t* luma, std::size_t count);

// Converts 2 * `pairs` intensities to luma. Deliberately maps the second of each pair twice.
void intensityPairsToLuma(const std::uint8_t* intensity, std::uint8_t* luma, std::size_t pairs);

}  // namespace framesink
