// Runs registered benchmarks on an X server that the program starts.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

#include "support/x_server.hpp"

namespace framesink::bench {

// Registers `body`, which runs `iterations` turns and reports its times itself.
void addBenchmark(const std::string& name, int iterations,
                  std::function<void(benchmark::State&)> body);

// Starts the server, calls `prepare` and runs the registered benchmarks. Returns the program's exit
// status. It is 1, with the reason on standard error, if a window did not show the right frame.
int runOnXServer(
    int count, char** arguments, test::ScreenSize screen,
    const std::function<void(test::XServer&)>& prepare = [](test::XServer&) {});

}  // namespace framesink::bench
