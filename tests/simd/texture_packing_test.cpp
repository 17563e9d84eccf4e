#include "simd/texture_packing.hpp"

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "simd/guarded_memory.hpp"
#include "support/frames.hpp"

namespace framesink::test {
namespace {

constexpr std::uint32_t kUntouched = 0x12345678;

std::vector<std::uint32_t> packed(const Frame& frame) {
  std::vector<std::uint32_t> pixels(std::size_t{frame.size.width} * frame.size.height);
  copyPlanesToTexture(frame.data(), pixels.data(), frame.size.width, frame.size.height);
  return pixels;
}

std::vector<std::uint32_t> opaque(const Image& picture) {
  std::vector<std::uint32_t> pixels = picture.pixels;
  for (auto& pixel : pixels) pixel |= 0xFF000000;
  return pixels;
}

TEST(TexturePacking, PutsTheColumnsOfARowSideBySide) {
  const Frame frame{{2, 1}, {10, 20, 30, 40, 50, 60}};
  EXPECT_EQ(packed(frame), (std::vector<std::uint32_t>{0xFF0A1E32, 0xFF14283C}));
}

TEST(TexturePacking, ReadsTheSamplesOfAColumnFromTopToBottom) {
  const Frame frame{{1, 2}, {1, 2, 3, 4, 5, 6}};
  EXPECT_EQ(packed(frame), (std::vector<std::uint32_t>{0xFF010305, 0xFF020406}));
}

TEST(TexturePacking, TurnsColumnsIntoRows) {
  const Frame frame{{3, 2}, {1, 2, 3, 4, 5, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}};
  EXPECT_EQ(packed(frame), (std::vector<std::uint32_t>{0xFF010000, 0xFF030000, 0xFF050000,
                                                       0xFF020000, 0xFF040000, 0xFF060000}));
}

TEST(TexturePacking, AlphaIs255WhateverTheSamples) {
  for (const std::uint32_t colour : {0x000000U, 0xFFFFFFU, 0x80FF00U}) {
    EXPECT_EQ(packed(plainFrame({1, 1}, colour)),
              (std::vector<std::uint32_t>{0xFF000000U | colour}));
  }
}

// Packs a read-only frame. The frame and the pixels end, or begin, at pages on which every access
// faults; the pixel at their other end must keep its value.
class GuardedPacking {
 public:
  explicit GuardedPacking(Size largest)
      : planes_(3 * pixelsOf(largest)), pixels_(sizeof kUntouched * (1 + pixelsOf(largest))) {}

  // Packs at both places with every instruction set of this machine. Empty if all pixels are as
  // expected; otherwise describes a failure.
  std::string difference(const Frame& frame, const std::vector<std::uint32_t>& expected) {
    const std::size_t count = expected.size();
    std::string found = differenceAt(planes_.end() - frame.planes.size(),
                                     firstPixel(pixels_.end()) - count, -1, frame, expected);
    if (found.empty()) {
      found = differenceAt(planes_.begin(), firstPixel(pixels_.begin()),
                           static_cast<std::ptrdiff_t>(count), frame, expected);
    }
    return found;
  }

 private:
  static std::size_t pixelsOf(Size size) { return std::size_t{size.width} * size.height; }
  static std::uint32_t* firstPixel(std::uint8_t* bytes) {
    return reinterpret_cast<std::uint32_t*>(bytes);
  }

  std::string differenceAt(std::uint8_t* planes, std::uint32_t* pixels, std::ptrdiff_t neighbour,
                           const Frame& frame, const std::vector<std::uint32_t>& expected) {
    std::ranges::copy(frame.planes, planes);
    planes_.allowWriting(false);
    std::string found;
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
      hwy::SetSupportedTargetsForTest(target);
      std::fill_n(pixels, expected.size(), kUntouched);
      pixels[neighbour] = kUntouched;
      copyPlanesToTexture(planes, pixels, frame.size.width, frame.size.height);
      if (!std::ranges::equal(expected, std::span(pixels, expected.size())) ||
          pixels[neighbour] != kUntouched) {
        found = std::to_string(frame.size.width) + " x " + std::to_string(frame.size.height) +
                " on " + hwy::TargetName(target);
      }
    }
    hwy::SetSupportedTargetsForTest(0);
    planes_.allowWriting(true);
    return found;
  }

  GuardedMemory planes_;
  GuardedMemory pixels_;
};

TEST(TexturePacking, CarriesEverySampleOfFramesOfEverySmallSizeAndTouchesNoOther) {
  GuardedPacking packing({70, 70});
  for (std::uint32_t width = 0; width <= 70; ++width) {
    for (std::uint32_t height = 0; height <= 70; ++height) {
      const Frame frame = noiseFrame({width, height}, width * 100 + height);
      ASSERT_EQ(packing.difference(frame, opaque(pictureOf(frame))), "");
    }
  }
}

// Frames of more than one block of rows or columns, with and without a remainder.
TEST(TexturePacking, CarriesEverySampleOfLargeFramesAndTouchesNoOther) {
  GuardedPacking packing({1921, 1081});
  for (const Size size : {Size{1921, 1081}, Size{1920, 1080}, Size{4, 1024}, Size{6, 777},
                          Size{1030, 16}, Size{333, 257}, Size{48, 512}, Size{3, 2000}}) {
    const Frame frame = noiseFrame(size, size.width);
    EXPECT_EQ(packing.difference(frame, opaque(pictureOf(frame))), "");
  }
}

TEST(TexturePacking, AFrameWithoutPixelsTouchesNothing) {
  std::uint32_t pixel = kUntouched;
  for (const Size size : {Size{0, 0}, Size{0, 5}, Size{5, 0}}) {
    copyPlanesToTexture(nullptr, &pixel, size.width, size.height);
    EXPECT_EQ(pixel, kUntouched);
  }
}

}  // namespace
}  // namespace framesink::test
