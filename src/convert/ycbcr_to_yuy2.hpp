// YCbCr 4:2:2 planes repacked as YUY2: groups of four bytes Y0, Cb, Y1, Cr.
#pragma once

#include "convert/kernel_table.hpp"

namespace framesink {

// Plane 0 is Y with width * height samples, planes 1 and 2 are Cb and Cr with half as many. Samples
// are scaled to 8 bits, chroma like luma, and copied into the groups without colour arithmetic.
//
// layout non-zero: column-major planes; (width + 1) / 2 groups a line. The last group of an odd
// width reads its second luma, and its chroma, from the column after the last. This is deliberate,
// because widths are expected to be even. For an odd width, Y must therefore have
// (width + 1) * height readable samples, and Cb and Cr (width + 1) / 2 * height. Nothing is written
// if width or height is below 1.
//
// layout zero: row-major planes taken as one run of n = width * height samples, regardless of
// lines; (n + 1) / 2 groups. The last group of an odd n reads one luma sample past n and one chroma
// sample past n / 2. Nothing is written if n, a wrapping 32-bit product, is below 1.
extern const KernelTable ycbcrToYuy2Kernels;

}  // namespace framesink
