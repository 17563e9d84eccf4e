// RGB and intensity planes to the three 8-bit planes that windows show.
#pragma once

#include "convert/kernel_table.hpp"

namespace framesink {

// Each sample is scaled to 8 bits; n = width * height samples are read from every plane.
//
// layout non-zero: out[e], out[n + e], out[2n + e] are R, G, B of element e, so the output keeps
// the order of the input. Nothing is written when n < 1. layout zero: the planes are read column by
// column, and every column is written to the same places 0, width, 2 * width, ... of each output
// plane: the last column stays, all other bytes keep what they held. The column is left out of the
// position on purpose; this is no transposition. Nothing is written when width < 1 or height < 1.
extern const KernelTable rgbToRgbKernels;

// Call the RGB kernel of the same type with plane 0 as all three planes: R = G = B.
extern const KernelTable intensityToRgbKernels;

}  // namespace framesink
