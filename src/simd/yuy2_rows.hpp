// Packs 8-bit luma and chroma into groups of four bytes Y0, Cb, Y1, Cr, on the vectors of this
// machine. Reads and writes nothing beyond the runs.
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

// Packs `count` groups, one after another.
void packGroups(const Yuy2Runs& runs, std::uint8_t* out, std::size_t count);

// Packs `count` rows, which are lineBytes apart. Each row gets one group from every column, side by
// side. There are at most four columns.
void packColumns(std::span<const Yuy2Runs> columns, std::uint8_t* out, std::ptrdiff_t lineBytes,
                 std::size_t count);

// Packs `count` groups, one after another, from 2 * count bytes of luma in which Y0 and Y1
// alternate.
void packPairs(const std::uint8_t* luma, const std::uint8_t* cb, const std::uint8_t* cr,
               std::uint8_t* out, std::size_t count);

}  // namespace framesink
