// Compares conversion to 8 bits with OpenCV's conversion between matrix types, on one thread.
#include <benchmark/benchmark.h>

#include <opencv2/core.hpp>
#include <vector>

#include "alternating.hpp"
#include "conversion.hpp"
#include "convert/sample_types.hpp"
#include "demand.hpp"
#include "measured_frame.hpp"

namespace framesink::bench {
namespace {

// Maps the natural range of a matrix type to 0..255.
struct Scaling {
  int type;
  double factor;
  double offset;
};

constexpr Scaling kDoubles{CV_64F, 255, 0};
constexpr Scaling kSingles{CV_32F, 255, 0};
constexpr Scaling kInt16s{CV_16S, 255.0 / 65535, 32768 * 255.0 / 65535};
constexpr Scaling kUint16s{CV_16U, 255.0 / 65535, 0};
constexpr Scaling kInt32s{CV_32S, 255.0 / 4294967295, 2147483648 * 255.0 / 4294967295};

void besideConvertTo(benchmark::State& state, std::uint32_t dataType, const Scaling& scaling) {
  cv::setNumThreads(1);
  Conversion ours("RgbToRgb", dataType, kColumnMajor);
  ours.drawWithinRange();
  demand(ours.isRight(), "RGB planes");
  std::vector<std::uint8_t> converted(3 * kPixels);
  const auto theirs = [&] {
    for (int i = 0; i < 3; ++i) {
      auto* const samples = const_cast<std::uint8_t*>(ours.plane(i).data());
      const cv::Mat from(kWidth, kHeight, scaling.type, samples);
      cv::Mat to(kWidth, kHeight, CV_8U, converted.data() + i * kPixels);
      from.convertTo(to, CV_8U, scaling.factor, scaling.offset);
    }
  };
  theirs();
  demand(distance(converted, ours.output()) <= 1, "convertTo");
  state.SetLabel("OpenCV convertTo");
  compare(
      state, [&] { ours.run(); }, theirs);
}

void registerType(const char* name, std::uint32_t dataType, const Scaling& scaling) {
  benchmark::RegisterBenchmark(name, besideConvertTo, dataType, scaling)->UseManualTime();
}

[[maybe_unused]] const bool registered = [] {
  registerType("RGB planes double", kDouble, kDoubles);
  registerType("RGB planes single", kSingle, kSingles);
  registerType("RGB planes int16", kInt16, kInt16s);
  registerType("RGB planes uint16", kUint16, kUint16s);
  registerType("RGB planes int32", kInt32, kInt32s);
  return true;
}();

}  // namespace
}  // namespace framesink::bench
