// Compares conversions of one frame with each other, with a plain loop and with memcpy. In a build
// with FRAMESINK_BENCH_PEERS, further files add comparisons with other libraries.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "alternating.hpp"
#include "conversion.hpp"
#include "convert/sample_types.hpp"
#include "demand.hpp"
#include "measured_frame.hpp"
#include "packing.hpp"
#include "plain_loop.hpp"

namespace framesink::bench {
namespace {

void besideAnother(benchmark::State& state, const char* family, std::uint32_t dataType,
                   const char* otherFamily, std::uint32_t otherType, const char* label) {
  Conversion ours(family, dataType, kColumnMajor);
  Conversion other(otherFamily, otherType, kColumnMajor);
  demand(ours.isRight() && other.isRight(), label);
  state.SetLabel(label);
  compare(
      state, [&] { ours.run(); }, [&] { other.run(); });
}

void besideThePlainLoop(benchmark::State& state) {
  Conversion ours("RgbToYuy2", kUint8, kColumnMajor);
  demand(ours.isRight(), "RGB to YUY2");
  std::vector<std::uint8_t> yuy2(ours.output().size());
  const auto plainLoop = [&] {
    rgbToYuy2PlainLoop(ours.plane(0).data(), ours.plane(1).data(), ours.plane(2).data(),
                       yuy2.data(), kWidth, kHeight);
  };
  plainLoop();
  demand(yuy2 == ours.output(), "the plain loop");
  state.SetLabel("plain loop");
  compare(
      state, [&] { ours.run(); }, plainLoop);
}

void packingBesideMemcpy(benchmark::State& state) {
  Packing ours;
  demand(ours.isRight(), "planes to ARGB8888");
  const std::vector<std::uint8_t> source(7 * kPixels / 2, 1);
  std::vector<std::uint8_t> copy(source.size());
  state.SetLabel("memcpy of the same bytes");
  compare(
      state, [&] { ours.run(); }, [&] { std::memcpy(copy.data(), source.data(), source.size()); });
}

BENCHMARK_CAPTURE(besideAnother, uint32, "RgbToRgb", kUint32, "RgbToRgb", kInt32, "int32")
    ->Name("RGB planes uint32")
    ->UseManualTime();
BENCHMARK_CAPTURE(besideAnother, grey, "IntensityToRgb", kDouble, "RgbToRgb", kDouble, "RGB double")
    ->Name("intensity double")
    ->UseManualTime();
BENCHMARK(besideThePlainLoop)->Name("RGB uint8 to YUY2")->UseManualTime();
BENCHMARK(packingBesideMemcpy)->Name("planes to ARGB8888")->UseManualTime();

}  // namespace
}  // namespace framesink::bench

int main(int count, char** arguments) {
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  return framesink::bench::wasEverythingRight() ? 0 : 1;
}
