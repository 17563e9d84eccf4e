// RGB and intensity planes to packed YUY2: groups of four bytes Y0, Cb, Y1, Cr, line after line
// without padding, BT.601 studio range.
#pragma once

#include <cstdint>

#include "convert/kernel_table.hpp"

namespace framesink {

// All samples are scaled to 8 bits first. A group takes its chroma from the first of its two
// pixels, as the system decides: chroma is neither averaged nor interpolated. Nothing is written
// when width or height is below 1.
//
// layout 1: column-major planes of width * height samples. Each line gives width / 2 groups, and
// one more for the last column of an odd width, with that pixel as both. Writes
// 4 * ((width + 1) / 2) * height bytes.
//
// any other layout: row-major planes. The pairs of a line overlap, (0,1), (1,2), (2,3), ..., as
// many as width rounded down to even, then a group of the last pixel alone for an odd width; the
// line gets about twice the bytes it would need. That is the system's own. Reads one sample past
// the planes when width is even. Writes 4 * width * height bytes.
extern const KernelTable rgbToYuy2Kernels;

// Plane 0 only; both chroma bytes are 128.
//
// layout non-zero: column-major, as above.
//
// layout zero: row-major, read pair by pair from a position that runs on over the lines. The second
// pixel of each pair has the luma mapping applied twice. For an odd width, line r's last group
// reads its sample width - 1 + r * width past that position, which does not move past it. Both are
// the system's own. Reads up to (height + 1) * (width - 1) + (height - 1) * width + 1 samples when
// width is odd, width * height when it is even. Writes 4 * ((width + 1) / 2) * height bytes.
extern const KernelTable intensityToYuy2Kernels;

// One triple in place, 8-bit (R, G, B) to (Y, Cb, Cr). Values up to +-1000000 do not overflow.
void rgbToYcbcr(std::int32_t& red, std::int32_t& green, std::int32_t& blue);

// 8-bit intensity to luma, with the gain of the three RGB factors together.
std::uint32_t intensityToLuma(std::uint32_t intensity);

}  // namespace framesink
