// Runs of 8-bit pixels from one colour space to another, as fast as the machine's vectors go.
// Nothing beyond the runs is read or written.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace framesink {

using ByteSources = std::array<const std::uint8_t*, 3>;
using ByteTargets = std::array<std::uint8_t*, 3>;

// `count` pixels (Y, Cb, Cr), each with a chroma of its own, to (R, G, B) clamped to 0..255:
// ycbcrToRgb pixel by pixel.
void ycbcrRowToRgb(const ByteSources& ycbcr, const ByteTargets& rgb, std::size_t count);

// `count` pixels (R, G, B) to (Y, Cb, Cr): rgbToYcbcr pixel by pixel.
void rgbRowToYcbcr(const ByteSources& rgb, const ByteTargets& ycbcr, std::size_t count);

// `count` intensities to luma: intensityToLuma one by one.
void intensityRowToLuma(const std::uint8_t* intensity, std::uint8_t* luma, std::size_t count);

}  // namespace framesink
