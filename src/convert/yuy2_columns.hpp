// The one walk from column-major planes to lines of YUY2 groups.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "simd/yuy2_rows.hpp"

namespace framesink {

// Rows that are packed at a time: many, so that columns are read in long runs, but few enough for
// the bytes of four pairs of columns to stay in the first-level cache.
constexpr std::size_t kYuy2BlockRows = 256;

// Writes `height` lines of `groups` groups. A PairRuns object makes the runs of one pair of columns
// when called with the pair's index, the first row and the number of rows. The runs stay valid
// until the object's next call.
template <class PairRuns>
void columnsToYuy2(const PairRuns& planes, std::uint8_t* out, std::ptrdiff_t groups,
                   std::ptrdiff_t height) {
  std::array<PairRuns, 4> pairs{planes, planes, planes, planes};
  std::array<Yuy2Runs, pairs.size()> runs;
  const std::ptrdiff_t lineBytes = 4 * groups;
  for (std::ptrdiff_t row = 0; row < height; row += kYuy2BlockRows) {
    const auto count = std::min<std::size_t>(kYuy2BlockRows, height - row);
    for (std::ptrdiff_t first = 0; first < groups; first += pairs.size()) {
      const auto some = std::min<std::size_t>(pairs.size(), groups - first);
      for (std::size_t i = 0; i < some; ++i) runs[i] = pairs[i](first + i, row, count);
      packColumns(std::span(runs).first(some), out + row * lineBytes + 4 * first, lineBytes, count);
    }
  }
}

}  // namespace framesink
