// Chooses the routine that turns a block's planes into 8-bit output: once, when the block starts.
#pragma once

#include <cstdint>

namespace framesink {

// What a frame's planes hold.
inline constexpr std::int32_t kInputRgb = 1;        // three planes of equal size: R, G, B
inline constexpr std::int32_t kInputIntensity = 2;  // one plane, shown as R = G = B
inline constexpr std::int32_t kInputYcbcr422 = 3;   // Y, then Cb and Cr of half the width

// What a kernel writes.
inline constexpr std::int32_t kOutputRgbPlanes = 1;  // three 8-bit planes R, G, B
inline constexpr std::int32_t kOutputYuy2 = 3;       // packed 4:2:2: Y0, Cb, Y1, Cr

// One conversion of a whole frame. `width` is columns, `height` rows, in pixels; `layout` non-zero
// means column-major planes (row r, column c is sample r + c * height), zero selects the family's
// second path. Each family's header says what is read and written.
//
// Re-entrant; keeps no state, allocates nothing, checks nothing: pointers, sizes and the room at
// `out` are the caller's duty. Planes need the alignment of their sample type only.
using ConversionKernel = void (*)(const void* plane0, const void* plane1, const void* plane2,
                                  std::uint8_t* out, std::int32_t width, std::int32_t height,
                                  std::int32_t layout);

// The kernel for (kInput..., kOutput..., DataTypeId 0..8); null for anything else. Any thread.
ConversionKernel selectConversionKernel(std::int32_t inputKind, std::int32_t outputFormat,
                                        std::uint32_t dataType);

}  // namespace framesink
