// Times the slowest frames of a host that feeds four live windows.
#pragma once

#include <benchmark/benchmark.h>

#include "column_major_frame.hpp"

namespace framesink::bench {

// Four frames per round at 60 rounds per second give 10,080 samples each of libUpdate and memcpy.
inline constexpr int kPacedRounds = 2520;

// Sets `ours` and `other` to the 99.9th percentiles, and `ours_p50` and `other_p50` to the medians.
// `rounds_per_second` is below 60 if the machine did not keep up. `presented_per_second` counts the
// frames that were drawn in all four windows.
void timePacedWindows(benchmark::State& state, FrameSize size);

}  // namespace framesink::bench
