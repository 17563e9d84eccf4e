// Every kernel of the table that the checks walk, on one 1920x1080 frame in column-major planes.
// Kernel and memcpy take turns; `memcpies` is how many memcpys of as many bytes as the kernel reads
// and writes go into one conversion. A kernel whose bytes are wrong is not timed.
#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "kernel_cases.hpp"
#include "sample_pool.hpp"

namespace framesink {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr oracle::Frame kFrame{1920, 1080, 1};

bool areAllRight = true;

class Conversion {
 public:
  explicit Conversion(const KernelCase& test)
      : test_(test), kernel_(test.kernel()), out_(test.family->extents(kFrame).outputBytes) {
    const oracle::Extents extents = test.family->extents(kFrame);
    const oracle::SamplePool pool(test.dataType);
    std::mt19937 random(1);
    for (std::size_t i = 0; i < planes_.size(); ++i) {
      planes_[i].resize(extents.planeSamples[i] * oracle::sampleBytes(test.dataType));
      pool.fill(planes_[i].data(), extents.planeSamples[i], random);
    }
  }

  void run() {
    kernel_(planes_[0].data(), planes_[1].data(), planes_[2].data(), out_.data(), kFrame.width,
            kFrame.height, kFrame.layout);
  }

  bool isRight() {
    std::vector<std::uint8_t> expected(out_.size());
    oracle::convert(*test_.family, test_.dataType,
                    {planes_[0].data(), planes_[1].data(), planes_[2].data()}, expected.data(),
                    kFrame);
    run();
    return out_ == expected;
  }

  std::size_t bytes() const {
    return planes_[0].size() + planes_[1].size() + planes_[2].size() + out_.size();
  }

 private:
  const KernelCase test_;
  const ConversionKernel kernel_;
  std::array<std::vector<std::uint8_t>, 3> planes_;
  std::vector<std::uint8_t> out_;
};

template <class Action>
double secondsOf(const Action& action) {
  const auto start = Clock::now();
  action();
  return Seconds(Clock::now() - start).count();
}

void timeKernel(benchmark::State& state, const KernelCase& test) {
  instructionSets().front().use();
  Conversion conversion(test);
  if (!conversion.isRight()) {
    state.SkipWithError("wrong bytes");
    std::fprintf(stderr, "%s writes wrong bytes\n", nameOf(test).c_str());
    areAllRight = false;
    return;
  }
  const std::vector<std::uint8_t> source(conversion.bytes() / 2, 1);
  std::vector<std::uint8_t> copy(source.size());
  double conversions = 0;
  double copies = 0;
  for ([[maybe_unused]] auto iteration : state) {
    const double seconds = secondsOf([&] { conversion.run(); });
    conversions += seconds;
    copies += secondsOf([&] {
      std::memcpy(copy.data(), source.data(), source.size());
      benchmark::DoNotOptimize(copy.data());
      benchmark::ClobberMemory();
    });
    state.SetIterationTime(seconds);
  }
  state.counters["memcpies"] = conversions / copies;
}

}  // namespace
}  // namespace framesink

int main(int count, char** arguments) {
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 2;
  for (const framesink::KernelCase& test : framesink::kernelCases()) {
    benchmark::RegisterBenchmark(nameOf(test).c_str(), framesink::timeKernel, test)
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime();
  }
  benchmark::RunSpecifiedBenchmarks();
  return framesink::areAllRight ? 0 : 1;
}
