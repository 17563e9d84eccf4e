// YCbCr 4:2:2 planes to the three 8-bit planes that windows show.
#pragma once

#include <cstdint>

#include "convert/kernel_table.hpp"

namespace framesink {

// Plane 0 is Y with width * height samples. Planes 1 and 2 are Cb and Cr with p * height samples,
// where p = width / 2. All samples are scaled to 8 bits first. Both pixels of a pair take the
// pair's chroma.
//
// layout non-zero: column-major planes. `out` receives R, G and B planes of n = width * height
// bytes each, in the order of the Y plane. The last column of an odd width is deliberately neither
// read nor written.
//
// layout zero: row-major planes. Each pair becomes six bytes B0 G0 R0 B1 G1 R1. Line r starts at
// out + r * width although it is 6p bytes long, so every line overwrites the part of the previous
// line that it overlaps: the last two thirds if width is even. That stride is the library's own
// decision.
//
// Nothing is written if p or height is below 1.
extern const KernelTable ycbcrToRgbKernels;

// Converts one triple in place, (Y, Cb, Cr) to (R, G, B), not clamped. Values up to +-16000 do not
// overflow.
void ycbcrToRgb(std::int32_t& y, std::int32_t& cb, std::int32_t& cr);

}  // namespace framesink
