// RGB and intensity planes to packed YUY2: groups of four bytes Y0, Cb, Y1, Cr, line after line
// without padding, BT.601 studio range.
#pragma once

#include <cstdint>

#include "convert/kernel_table.hpp"

namespace framesink {

// All samples are scaled to 8 bits first. A group takes its chroma from the first of its two
// pixels; the library's own decision is that chroma is neither averaged nor interpolated. Nothing
// is written if width or height is below 1.
//
// layout 1: column-major planes of width * height samples. Each line has width / 2 groups. An odd
// width adds one group that takes the last column's pixel twice. Writes
// 4 * ((width + 1) / 2) * height bytes.
//
// Any other layout: row-major planes. The pairs of a line overlap, (0,1), (1,2), (2,3), ...; their
// number is width rounded down to even. An odd width adds one group of the last pixel alone. So a
// line has about twice the bytes that it needs; that is the library's own decision. Reads one
// sample past the planes if width is even. Writes 4 * width * height bytes.
extern const KernelTable rgbToYuy2Kernels;

// Reads plane 0 only; both chroma bytes are 128.
//
// layout non-zero: column-major, as rgbToYuy2Kernels with layout 1.
//
// layout zero: row-major, with two decisions of the library's own:
//   - The luma of each pair's second pixel is mapped twice.
//   - Pairs are read from a position that runs on across lines. For an odd width, the last group of
//     line r reads the sample width - 1 + r * width past that position and does not advance it.
// Reads up to (height + 1) * (width - 1) + (height - 1) * width + 1 samples if width is odd,
// width * height if it is even. Writes 4 * ((width + 1) / 2) * height bytes.
extern const KernelTable intensityToYuy2Kernels;

// Converts one triple in place, 8-bit (R, G, B) to (Y, Cb, Cr). Values up to +-1000000 do not
// overflow.
void rgbToYcbcr(std::int32_t& red, std::int32_t& green, std::int32_t& blue);

// Converts an 8-bit intensity to luma. The gain is the sum of the three RGB factors.
std::uint32_t intensityToLuma(std::uint32_t intensity);

}  // namespace framesink
