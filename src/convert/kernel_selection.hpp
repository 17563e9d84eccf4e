// Chooses the kernel that converts a block's planes to 8-bit output, once, when the block starts.
#pragma once

#include <cstdint>

#include "convert/kernel_table.hpp"

namespace framesink {

// What a frame's planes hold.
inline constexpr std::int32_t kInputRgb = 1;        // three planes of equal size: R, G, B
inline constexpr std::int32_t kInputIntensity = 2;  // one plane, shown as R = G = B
inline constexpr std::int32_t kInputYcbcr422 = 3;   // Y, then Cb and Cr of half the width

// What a kernel writes.
inline constexpr std::int32_t kOutputRgbPlanes = 1;  // three 8-bit planes R, G, B
inline constexpr std::int32_t kOutputYuy2 = 3;       // packed 4:2:2: Y0, Cb, Y1, Cr

// Returns the kernel for a kInput..., a kOutput... and a DataTypeId (0..8), or null for any other
// value. Any thread.
ConversionKernel selectConversionKernel(std::int32_t inputKind, std::int32_t outputFormat,
                                        std::uint32_t dataType);

}  // namespace framesink
