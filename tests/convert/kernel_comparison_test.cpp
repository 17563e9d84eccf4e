// Compares every kernel with the oracle byte for byte, for frames of many shapes and places.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "kernel_cases.hpp"
#include "kernel_check.hpp"
#include "sample_pool.hpp"

namespace framesink {
namespace {

using oracle::Frame;

std::vector<Frame> framesOfEveryShape() {
  constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
  std::vector<Frame> sizes;
  for (std::int32_t width = 0; width <= 70; ++width) {
    for (std::int32_t height = 0; height <= 9; ++height) sizes.push_back({width, height, 0});
  }
  for (const std::int32_t width : {2, 5}) {
    for (std::int32_t height = 10; height <= 70; ++height) sizes.push_back({width, height, 0});
  }
  for (const auto& [width, height] : std::initializer_list<std::pair<std::int32_t, std::int32_t>>{
           {9, 70},  {1, 1024}, {2, 1025}, {3, 2049}, {2, 3000},    {5, 131},    {131, 5},
           {2, 257}, {257, 2},  {1, 300},  {300, 1},  {64, 64},     {33, 31},    {-3, 2},
           {9, 300}, {16, 273}, {13, 519}, {1030, 3}, {2053, 2},    {8210, 2},   {3, -2},
           {-3, -2}, {-4, -2},  {-1, -1},  {0, -5},   {-5, 0},      {-16, -5},   {-1, 5},
           {5, -1},  {-7, 4},   {7, -4},   {-2, 1},   {kLowest, 1}, {1, kLowest}}) {
    sizes.push_back({width, height, 0});
  }
  std::vector<Frame> frames;
  for (const std::int32_t layout : {1, 0, 256}) {
    for (const Frame& size : sizes) frames.push_back({size.width, size.height, layout});
  }
  return frames;
}

// Against the guard page at either end, and once away from both. Over many frames, `turn` takes the
// output through all 16 offsets and the planes through odd and even ones.
std::vector<Placement> placements(std::size_t turn) {
  return {{.side = Placement::kAtEnd},
          {.side = Placement::kAtBegin},
          {.side = Placement::kAtBegin, .planeOffset = 1 + turn % 4, .outputOffset = turn % 16}};
}

struct Extent {
  std::size_t planeSamples = 0;
  std::size_t outputBytes = 0;
};

Extent largestOf(const oracle::Family& family, const std::vector<Frame>& frames) {
  Extent largest;
  for (const Frame& frame : frames) {
    const oracle::Extents extents = family.extents(frame);
    largest.planeSamples =
        std::max(largest.planeSamples, *std::ranges::max_element(extents.planeSamples));
    largest.outputBytes = std::max(largest.outputBytes, extents.outputBytes);
  }
  return largest;
}

class KernelComparison : public testing::TestWithParam<KernelCase> {};

TEST_P(KernelComparison, WritesWhatTheOracleWrites) {
  const std::vector<Frame> frames = framesOfEveryShape();
  const Extent largest = largestOf(*GetParam().family, frames);
  KernelCheck check(GetParam(), largest.planeSamples + 4, largest.outputBytes + 16);
  const oracle::SamplePool pool(GetParam().dataType);
  std::mt19937 random(GetParam().dataType);
  std::ranges::generate(check.background(), [&] { return static_cast<std::uint8_t>(random()); });
  for (std::size_t turn = 0; turn < frames.size(); ++turn) {
    const Frame& frame = frames[turn];
    for (const Placement placement : placements(turn)) {
      for (std::size_t i = 0; i < 3; ++i) {
        pool.fill(check.plane(i, frame, placement),
                  GetParam().family->extents(frame).planeSamples[i], random);
      }
      ASSERT_EQ(check.difference(frame, placement), "");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, KernelComparison, testing::ValuesIn(kernelCases()),
                         [](const auto& test) { return nameOf(test.param); });

}  // namespace
}  // namespace framesink
