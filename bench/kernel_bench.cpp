// Times every kernel in the tests' table on one frame in column-major planes, compared with memcpy of
// as many bytes as the kernel reads and writes.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "alternating.hpp"
#include "conversion.hpp"
#include "demand.hpp"
#include "measured_frame.hpp"
#include "pixkit/pixkit.h"

namespace framesink::bench {
namespace {

void besideMemcpy(benchmark::State& state, const KernelCase& test) {
  Conversion conversion(test, kColumnMajor);
  demand(conversion.isRight(), nameOf(test).c_str());
  const std::vector<std::uint8_t> source(conversion.bytesReadAndWritten() / 2, 1);
  std::vector<std::uint8_t> copy(source.size());
  state.SetLabel("memcpy of the same bytes");
  compare(
      state, [&] { conversion.run(); },
      [&] { std::memcpy(copy.data(), source.data(), source.size()); });
}

}  // namespace
}  // namespace framesink::bench

int main(int count, char** arguments) {
  using namespace framesink;
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 2;
  benchmark::AddCustomContext("uint16 range", std::to_string(videoTraits<5>::min) + " to " +
                                                  std::to_string(videoTraits<5>::max));
  for (const KernelCase& test : kernelCases()) {
    benchmark::RegisterBenchmark(nameOf(test).c_str(), bench::besideMemcpy, test)->UseManualTime();
  }
  benchmark::RunSpecifiedBenchmarks();
  return bench::wasEverythingRight() ? 0 : 1;
}
