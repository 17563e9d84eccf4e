// Measures the processor time of the display thread while nothing happens.
#pragma once

#include <benchmark/benchmark.h>

namespace framesink::bench {

// Compares the processor time per pass, with one idle window, with that of a bare loop which locks,
// polls for an event, unlocks and sleeps for as long.
void timeIdlePass(benchmark::State& state);

}  // namespace framesink::bench
