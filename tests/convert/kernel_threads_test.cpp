// Kernels keep no state: threads may convert at the same time, the very first calls included, in
// which Highway looks what the machine has. The thread sanitizer watches.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <random>
#include <thread>
#include <vector>

#include "kernel_cases.hpp"
#include "sample_pool.hpp"

namespace framesink {
namespace {

constexpr oracle::Frame kFrame{37, 21, 1};

struct Conversion {
  KernelCase test;
  std::array<std::vector<std::uint8_t>, 3> planes;
  std::vector<std::uint8_t> expected;

  explicit Conversion(const KernelCase& kernelCase) : test(kernelCase) {
    const oracle::Extents extents = test.family->extents(kFrame);
    const oracle::SamplePool pool(test.dataType);
    std::mt19937 random(test.dataType);
    for (std::size_t i = 0; i < planes.size(); ++i) {
      planes[i].resize(extents.planeSamples[i] * oracle::sampleBytes(test.dataType));
      pool.fill(planes[i].data(), extents.planeSamples[i], random);
    }
    expected.resize(extents.outputBytes);
    oracle::convert(*test.family, test.dataType,
                    {planes[0].data(), planes[1].data(), planes[2].data()}, expected.data(),
                    kFrame);
  }

  bool isRight() const {
    std::vector<std::uint8_t> out(expected.size());
    test.kernel()(planes[0].data(), planes[1].data(), planes[2].data(), out.data(), kFrame.width,
                  kFrame.height, kFrame.layout);
    return out == expected;
  }
};

TEST(Kernels, ConvertTheSamePlanesInFourThreadsAtOnce) {
  std::vector<Conversion> conversions;
  for (const KernelCase& test : kernelCases()) conversions.emplace_back(test);
  std::atomic<int> waiting = 4;
  std::atomic<int> wrong = 0;
  const auto convertAll = [&] {
    for (--waiting; waiting != 0;) std::this_thread::yield();
    for (const Conversion& conversion : conversions) wrong += conversion.isRight() ? 0 : 1;
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(convertAll);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace framesink
