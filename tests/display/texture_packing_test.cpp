#include "display/texture_packing.hpp"

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <cstdint>
#include <vector>

#include "frames.hpp"

namespace framesink::test {
namespace {

constexpr std::uint32_t kUntouched = 0x12345678;

std::vector<std::uint32_t> packed(const Frame& frame) {
  std::vector<std::uint32_t> pixels(std::size_t{frame.size.width} * frame.size.height);
  copyPlanesToTexture(frame.data(), pixels.data(), frame.size);
  return pixels;
}

std::vector<std::uint32_t> opaque(const Image& picture) {
  std::vector<std::uint32_t> pixels = picture.pixels;
  for (auto& pixel : pixels) pixel |= 0xFF000000;
  return pixels;
}

const std::vector<std::int64_t>& instructionSets() {
  static const std::vector<std::int64_t> sets = hwy::SupportedAndGeneratedTargets();
  return sets;
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

// On every instruction set that this machine has.
TEST(TexturePacking, CarriesEverySampleOfFramesOfEverySmallSize) {
  for (std::uint32_t width = 1; width <= 70; ++width) {
    for (std::uint32_t height = 1; height <= 70; ++height) {
      const Frame frame = noiseFrame({width, height}, width * 100 + height);
      const std::vector<std::uint32_t> expected = opaque(pictureOf(frame));
      for (const std::int64_t target : instructionSets()) {
        hwy::SetSupportedTargetsForTest(target);
        ASSERT_EQ(packed(frame), expected)
            << width << " x " << height << " on " << hwy::TargetName(target);
      }
    }
  }
  hwy::SetSupportedTargetsForTest(0);
}

TEST(TexturePacking, CarriesEverySampleOfALargeFrame) {
  const Frame frame = noiseFrame({1921, 1081}, 1);
  EXPECT_EQ(packed(frame), opaque(pictureOf(frame)));
}

TEST(TexturePacking, WritesNothingOutsideOfThePicture) {
  for (std::uint32_t width = 0; width <= 20; ++width) {
    for (std::uint32_t height = 0; height <= 20; ++height) {
      const std::size_t size = std::size_t{width} * height;
      std::vector<std::uint32_t> pixels(size + 64, kUntouched);
      copyPlanesToTexture(noiseFrame({width, height}, 1).data(), pixels.data() + 32,
                          {width, height});
      for (std::size_t i = 0; i < 32; ++i) {
        ASSERT_EQ(pixels[i], kUntouched) << width << " x " << height;
        ASSERT_EQ(pixels[32 + size + i], kUntouched) << width << " x " << height;
      }
    }
  }
}

TEST(TexturePacking, AFrameWithoutPixelsTouchesNothing) {
  std::uint32_t pixel = kUntouched;
  for (const Size size : {Size{0, 0}, Size{0, 5}, Size{5, 0}}) {
    copyPlanesToTexture(nullptr, &pixel, size);
    EXPECT_EQ(pixel, kUntouched);
  }
}

}  // namespace
}  // namespace framesink::test
