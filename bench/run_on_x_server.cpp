#include "run_on_x_server.hpp"

#include <cstdio>
#include <exception>
#include <utility>

namespace framesink::bench {

void addBenchmark(const std::string& name, int iterations,
                  std::function<void(benchmark::State&)> body) {
  benchmark::RegisterBenchmark(name.c_str(), std::move(body))
      ->Iterations(iterations)
      ->Unit(benchmark::kMillisecond)
      ->UseManualTime();
}

// Never destroys the server, because the library and its peers keep their connections until the
// process ends. The server ends with the process.
int runOnXServer(int count, char** arguments, test::ScreenSize screen,
                 const std::function<void(test::XServer&)>& prepare) {
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 2;
  try {
    test::XServer& server = *new test::XServer(screen);
    prepare(server);
    benchmark::RunSpecifiedBenchmarks();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}

}  // namespace framesink::bench
