// Kernels keep no state, so threads may convert at the same time. That includes the process's first
// calls, in which Highway detects the processor. Meant to run under the thread sanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "conversion.hpp"

namespace framesink {
namespace {

constexpr oracle::Frame kFrame{37, 21, 1};

TEST(Kernels, ConvertInFourThreadsAtOnce) {
  std::atomic<int> waiting = 4;
  std::atomic<int> wrong = 0;
  const auto convertAll = [&] {
    std::vector<Conversion> conversions;
    for (const KernelCase& test : kernelCases()) conversions.emplace_back(test, kFrame);
    for (--waiting; waiting != 0;) std::this_thread::yield();
    for (Conversion& conversion : conversions) conversion.run();
    for (Conversion& conversion : conversions) wrong += conversion.isRight() ? 0 : 1;
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(convertAll);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace framesink
