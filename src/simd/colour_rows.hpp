// Runs of 8-bit pixels from one colour space to another, as fast as the machine's vectors go.
// Nothing beyond the runs is read or written.
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

// What a group of YUY2 is made of: Y of the first column, Cb, Y of the second, Cr.
using Yuy2Targets = std::array<std::uint8_t*, 4>;

// `count` pixels of each column to RGB clamped to 0..255: ycbcrToRgb pixel by pixel.
void ycbcrPairToRgb(const YcbcrPair& ycbcr, const RgbPair& rgb, std::size_t count);

// `count` pixels of each column: rgbToYcbcr pixel by pixel, with the first column's chroma.
void rgbPairToYcbcr(const RgbPairSources& rgb, const Yuy2Targets& out, std::size_t count);

// `count` intensities to luma: intensityToLuma one by one.
void intensityRowToLuma(const std::uint8_t* intensity, std::uint8_t* luma, std::size_t count);

// Two times `pairs` intensities to luma; the second of each pair is mapped twice.
void intensityPairsToLuma(const std::uint8_t* intensity, std::uint8_t* luma, std::size_t pairs);

}  // namespace framesink
