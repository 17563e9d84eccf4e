// What memory itself takes for what libUpdate must do: one pass from the host's planes into a
// buffer, one from there into another.
#pragma once

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <vector>

#include "column_major_frame.hpp"

namespace framesink::bench {

// The bytes of a frame of uint8, into as many buffers as a window has: the second copy goes into
// two of them by turns.
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
