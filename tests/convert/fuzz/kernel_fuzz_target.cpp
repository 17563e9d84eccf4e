#include "kernel_fuzz_target.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "kernel_cases.hpp"
#include "kernel_check.hpp"
#include "pixkit/pixkit.h"

namespace framesink {
namespace {

// Widths and heights go from -kMargin to these.
constexpr std::int32_t kMargin = 4;
constexpr std::int32_t kLargestWidth = 96;
constexpr std::int32_t kLargestHeight = 24;
// Room for the largest extents: row-major intensity of odd width reads almost twice the plane, and
// overlapping YUY2 pairs take four bytes a pixel.
constexpr std::size_t kLargestPlane = 2 * kLargestWidth * kLargestHeight + 64;
constexpr std::size_t kLargestOutput = 4 * kLargestWidth * kLargestHeight + 64;

// The bytes of the input, one after another; 0 once all are taken.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  std::uint8_t byte() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }

  // Fills `to` with the bytes that are left, repeated as often as needed.
  void fill(std::uint8_t* to, std::size_t count, std::size_t start) const {
    for (std::size_t i = 0; i < count; ++i) to[i] = size_ == 0 ? 0 : data_[(start + i) % size_];
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

std::int32_t sizeFrom(std::uint8_t byte, std::int32_t largest) {
  return byte % (kMargin + largest + 1) - kMargin;
}

std::int32_t layoutFrom(std::uint8_t byte) {
  constexpr std::int32_t kLayouts[]{1, 0, 2, -1};
  return kLayouts[byte % 4];
}

Placement placementFrom(std::uint8_t byte) {
  return {.side = byte % 2 == 0 ? Placement::kAtEnd : Placement::kAtBegin,
          .planeOffset = byte / 2 % 8U,
          .outputOffset = byte / 16U};
}

// The check of one kernel, made at its first use.
KernelCheck& checkOf(std::size_t number) {
  static const std::vector<KernelCase> cases = kernelCases();
  static std::vector<std::unique_ptr<KernelCheck>> checks(cases.size());
  auto& check = checks[number % cases.size()];
  if (!check) {
    check =
        std::make_unique<KernelCheck>(cases[number % cases.size()], kLargestPlane, kLargestOutput);
  }
  return *check;
}

std::size_t planeBytes(const KernelCase& test, const oracle::Frame& frame, std::size_t plane) {
  return test.family->extents(frame).planeSamples[plane] * oracle::sampleBytes(test.dataType);
}

}  // namespace
}  // namespace framesink

// Prints which ranges the search uses.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  std::fprintf(stderr, "doubles reach from %g to %g, int16 from %d to %d\n", videoTraits<0>::min,
               videoTraits<0>::max, videoTraits<4>::min, videoTraits<4>::max);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace framesink;
  Input input(data, size);
  KernelCheck& check = checkOf(input.byte());
  const std::uint8_t width = input.byte();
  const std::uint8_t height = input.byte();
  const oracle::Frame frame{sizeFrom(width, kLargestWidth), sizeFrom(height, kLargestHeight),
                            layoutFrom(input.byte())};
  const Placement placement = placementFrom(input.byte());
  std::ranges::fill(check.background(), input.byte());
  const std::size_t shift1 = input.byte();
  const std::size_t shift2 = input.byte();
  for (std::size_t i = 0; i < 3; ++i) {
    input.fill(check.plane(i, frame, placement), planeBytes(check.test(), frame, i),
               i == 0   ? 0
               : i == 1 ? shift1
                        : shift2);
  }
  const std::string difference = check.difference(frame, placement);
  if (!difference.empty()) {
    std::fprintf(stderr, "%s\n", difference.c_str());
    std::abort();
  }
  return 0;
}
