// The memory traffic that libUpdate cannot avoid: one copy from the host's planes into a buffer, and
// one copy from there into another buffer.
#pragma once

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <vector>

#include "column_major_frame.hpp"

namespace framesink::bench {

// Copies a uint8 frame between as many buffers as a window has. The second copy alternates between
// two buffers.
class TwoMemcpys {
 public:
  explicit TwoMemcpys(FrameSize size) : middle_(3 * size.pixels()), last_{middle_, middle_} {}

  void run(const ColumnMajorFrame& frame) {
    auto& last = last_[turn_ ^= 1];
    std::memcpy(middle_.data(), frame.plane(0), middle_.size());
    benchmark::DoNotOptimize(middle_.data());
    std::memcpy(last.data(), middle_.data(), last.size());
    benchmark::DoNotOptimize(last.data());
    benchmark::ClobberMemory();
  }

 private:
  std::vector<char> middle_;
  std::array<std::vector<char>, 2> last_;
  unsigned turn_ = 0;
};

}  // namespace framesink::bench
