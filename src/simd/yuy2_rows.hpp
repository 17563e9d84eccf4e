// 8-bit luma and chroma to groups of four bytes Y0, Cb, Y1, Cr, as fast as the machine's vectors
// go. Nothing beyond the runs is read or written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace framesink {

// Runs of equal length.
struct Yuy2Runs {
  const std::uint8_t* y0;
  const std::uint8_t* cb;
  const std::uint8_t* y1;
  const std::uint8_t* cr;
};

// `count` groups, one behind the other.
void packGroups(const Yuy2Runs& runs, std::uint8_t* out, std::size_t count);

// Groups that stand side by side in `count` rows, lineBytes apart: as many as there are columns, at
// most four.
void packColumns(std::span<const Yuy2Runs> columns, std::uint8_t* out, std::ptrdiff_t lineBytes,
                 std::size_t count);

// Groups one behind the other from 2 * count bytes of luma, Y0 and Y1 by turns.
void packPairs(const std::uint8_t* luma, const std::uint8_t* cb, const std::uint8_t* cr,
               std::uint8_t* out, std::size_t count);

}  // namespace framesink
