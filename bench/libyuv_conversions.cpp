// Compares colour conversions and packing with libyuv's.
#include <benchmark/benchmark.h>
#include <libyuv.h>

#include <algorithm>
#include <array>
#include <vector>

#include "alternating.hpp"
#include "conversion.hpp"
#include "convert/sample_types.hpp"
#include "demand.hpp"
#include "measured_frame.hpp"
#include "packing.hpp"

namespace framesink::bench {
namespace {

constexpr int kHalf = kWidth / 2;

// Converts the planes, read as row-major ones, to bytes B, G, R, A for each pixel.
std::vector<std::uint8_t> argbOf(const Conversion& ycbcr) {
  std::vector<std::uint8_t> argb;
  for (int pixel = 0; pixel < kPixels; ++pixel) {
    const int chroma = pixel / 2;
    std::array<std::int32_t, 3> c{ycbcr.plane(0)[pixel], ycbcr.plane(1)[chroma],
                                  ycbcr.plane(2)[chroma]};
    oracle::ycbcrToRgb(c[0], c[1], c[2]);
    for (const int i : {2, 1, 0}) {
      argb.push_back(static_cast<std::uint8_t>(std::clamp(c[i], 0, 255)));
    }
    argb.push_back(255);
  }
  return argb;
}

// framesink reads column-major planes; libyuv reads the same bytes as row-major planes.
void besideI422ToArgb(benchmark::State& state) {
  Conversion ours("YcbcrToRgb", kUint8, kColumnMajor);
  demand(ours.isRight(), "YCbCr to RGB planes");
  std::vector<std::uint8_t> argb(4 * kPixels);
  const auto theirs = [&] {
    libyuv::I422ToARGB(ours.plane(0).data(), kWidth, ours.plane(1).data(), kHalf,
                       ours.plane(2).data(), kHalf, argb.data(), 4 * kWidth, kWidth, kHeight);
  };
  theirs();
  demand(distance(argb, argbOf(ours)) <= 3, "I422ToARGB");
  state.SetLabel("libyuv I422ToARGB");
  compare(
      state, [&] { ours.run(); }, theirs);
}

void besideI422ToYuy2(benchmark::State& state) {
  Conversion ours("YcbcrToYuy2", kUint8, kRowMajor);
  demand(ours.isRight(), "YCbCr to YUY2");
  std::vector<std::uint8_t> yuy2(ours.output().size());
  const auto theirs = [&] {
    libyuv::I422ToYUY2(ours.plane(0).data(), kWidth, ours.plane(1).data(), kHalf,
                       ours.plane(2).data(), kHalf, yuy2.data(), 2 * kWidth, kWidth, kHeight);
  };
  theirs();
  demand(yuy2 == ours.output(), "I422ToYUY2");
  state.SetLabel("libyuv I422ToYUY2");
  compare(
      state, [&] { ours.run(); }, theirs);
}

void besideTransposeAndMerge(benchmark::State& state) {
  Packing ours;
  demand(ours.isRight(), "planes to ARGB8888");
  std::vector<std::uint8_t> rows(3 * kPixels);
  std::vector<std::uint32_t> pixels(kPixels);
  const auto theirs = [&] {
    for (int i = 0; i < 3; ++i) {
      libyuv::TransposePlane(ours.frame.data() + i * kPixels, kHeight, rows.data() + i * kPixels,
                             kWidth, kHeight, kWidth);
    }
    libyuv::MergeARGBPlane(
        rows.data(), kWidth, rows.data() + kPixels, kWidth, rows.data() + 2 * kPixels, kWidth,
        nullptr, 0, reinterpret_cast<std::uint8_t*>(pixels.data()), 4 * kWidth, kWidth, kHeight);
  };
  theirs();
  demand(pixels == ours.pixels, "TransposePlane + MergeARGBPlane");
  state.SetLabel("libyuv TransposePlane + MergeARGBPlane");
  compare(
      state, [&] { ours.run(); }, theirs);
}

BENCHMARK(besideI422ToArgb)->Name("YCbCr uint8 to RGB planes")->UseManualTime();
BENCHMARK(besideI422ToYuy2)->Name("YCbCr uint8 to YUY2, row-major")->UseManualTime();
BENCHMARK(besideTransposeAndMerge)->Name("planes to ARGB8888")->UseManualTime();

}  // namespace
}  // namespace framesink::bench
