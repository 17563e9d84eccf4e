// Registered benchmarks on an X server of the program's own.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

#include "support/x_server.hpp"

namespace framesink::bench {

// `body` reports its times itself, over `iterations` turns.
void addBenchmark(const std::string& name, int iterations,
                  std::function<void(benchmark::State&)> body);

// Starts the server, makes `prepare` and runs what was added. The program's exit status: 1 when
// something did not show what it should, with the reason on standard error.
int runOnXServer(
    int count, char** arguments, test::ScreenSize screen,
    const std::function<void(test::XServer&)>& prepare = [](test::XServer&) {});

}  // namespace framesink::bench
