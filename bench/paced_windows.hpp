// The rare slow frame of a host that feeds four live windows.
#pragma once

#include <benchmark/benchmark.h>

#include "column_major_frame.hpp"

namespace framesink::bench {

// Four frames a round, sixty rounds a second: 10,080 samples of either kind.
inline constexpr int kPacedRounds = 2520;

// Counters `ours` and `other` are the 99.9th percentiles; `ours_p50` and `other_p50` the medians.
// `rounds_per_second` tells whether the machine kept up, `presented_per_second` how many frames of
// the four windows together were drawn meanwhile.
void timePacedWindows(benchmark::State& state, FrameSize size);

}  // namespace framesink::bench
