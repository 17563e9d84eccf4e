// What the display thread costs while nothing happens.
#pragma once

#include <benchmark/benchmark.h>

namespace framesink::bench {

// The processor's time per pass with one idle window, beside that of a bare loop that locks, polls
// for an event, unlocks and sleeps as long.
void timeIdlePass(benchmark::State& state);

}  // namespace framesink::bench
