// RGB and intensity planes to the three 8-bit planes that windows show.
#pragma once

#include "convert/kernel_table.hpp"

namespace framesink {

// Scales each sample to 8 bits. Reads n = width * height samples of every plane.
//
// layout non-zero: out[e], out[n + e] and out[2n + e] are R, G and B of element e, so the output
// keeps the order of the input. Nothing is written if n < 1.
//
// layout zero: reads the planes column by column and writes every column to the same places 0,
// width, 2 * width, ... of each output plane. Each column overwrites the one before, so only the
// last column remains; all other bytes keep their values. The library's own decision: the output
// position deliberately does not depend on the column, so this is no transposition. Nothing is
// written if width < 1 or height < 1.
extern const KernelTable rgbToRgbKernels;

// These call the RGB kernel of the same type with plane 0 as all three planes, so R = G = B.
extern const KernelTable intensityToRgbKernels;

}  // namespace framesink
