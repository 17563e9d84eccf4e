// The size of the frame that all conversion benchmarks use.
#pragma once

#include "oracle.hpp"

namespace framesink::bench {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kPixels = kWidth * kHeight;

constexpr oracle::Frame kColumnMajor{kWidth, kHeight, 1};
constexpr oracle::Frame kRowMajor{kWidth, kHeight, 0};

}  // namespace framesink::bench
