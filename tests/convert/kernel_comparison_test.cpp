// Every kernel against the oracle, byte for byte. One table of cases: a new family, or another way
// to run a kernel, is one more row and gets every frame, offset and sample below.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "convert/kernel_selection.hpp"
#include "oracle.hpp"
#include "sample_pool.hpp"

namespace framesink {
namespace {

using oracle::Extents;
using oracle::Family;
using oracle::Frame;

struct KernelCase {
  const Family* family;
  std::uint32_t dataType;
};

// Output formats that have kernels.
constexpr std::array kOutputFormats{kOutputRgbPlanes};

std::vector<KernelCase> kernelCases(std::size_t largestSample) {
  std::vector<KernelCase> cases;
  for (const Family& family : oracle::kFamilies) {
    if (std::ranges::count(kOutputFormats, family.outputFormat) == 0) continue;
    for (std::uint32_t dataType = 0; dataType < oracle::kTypeCount; ++dataType) {
      if (oracle::sampleBytes(dataType) <= largestSample) cases.push_back({&family, dataType});
    }
  }
  return cases;
}

std::string nameOf(const KernelCase& test) {
  return std::string(test.family->name) + oracle::typeName(test.dataType);
}

// For GoogleTest, which would print bytes otherwise.
std::ostream& operator<<(std::ostream& stream, const KernelCase& test) {
  return stream << nameOf(test);
}

std::string caseName(const testing::TestParamInfo<KernelCase>& info) { return nameOf(info.param); }

std::vector<Frame> comparisonFrames() {
  constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
  std::vector<Frame> sizes;
  for (std::int32_t width = 0; width <= 17; ++width) {
    for (std::int32_t height = 0; height <= 5; ++height) sizes.push_back({width, height, 0});
  }
  for (const std::int32_t width : {2, 5}) {
    for (std::int32_t height = 6; height <= 40; ++height) sizes.push_back({width, height, 0});
  }
  for (const auto& [width, height] : std::initializer_list<std::pair<std::int32_t, std::int32_t>>{
           {70, 9},  {9, 70},   {5, 131}, {131, 5}, {2, 257},     {257, 2},    {1, 300}, {300, 1},
           {64, 64}, {33, 31},  {-3, 2},  {3, -2},  {-3, -2},     {-4, -2},    {-1, -1}, {0, -5},
           {-5, 0},  {-16, -5}, {-1, 5},  {5, -1},  {kLowest, 1}, {1, kLowest}}) {
    sizes.push_back({width, height, 0});
  }
  std::vector<Frame> frames;
  for (const std::int32_t layout : {1, 0, 256}) {
    for (const Frame& size : sizes) frames.push_back({size.width, size.height, layout});
  }
  return frames;
}

// A plane that ends exactly where its block of memory ends and begins `offset` samples into it.
class ExactPlane {
 public:
  ExactPlane(std::uint32_t dataType, std::size_t samples, std::size_t offset)
      : start_(offset * oracle::sampleBytes(dataType)),
        bytes_(new std::uint8_t[start_ + samples * oracle::sampleBytes(dataType)]) {}

  std::uint8_t* samples() { return bytes_.get() + start_; }

 private:
  std::size_t start_;
  std::unique_ptr<std::uint8_t[]> bytes_;
};

using Planes = std::array<const void*, 3>;
constexpr std::size_t kGuardBytes = 64;

testing::AssertionResult sameBytes(const std::vector<std::uint8_t>& expected,
                                   const std::vector<std::uint8_t>& actual, std::size_t start) {
  const auto [want, got] = std::ranges::mismatch(expected, actual);
  if (want == expected.end()) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "byte " << want - expected.begin() - static_cast<std::ptrdiff_t>(start)
         << " of the output is " << int{*got} << ", not " << int{*want};
}

// Runs kernel and oracle over equal random bytes. Whatever the oracle leaves alone, the kernel must
// leave alone: guards before the output, bytes between, and every other time guards behind it (the
// other times the output ends with its block of memory, where the address sanitizer stands guard).
testing::AssertionResult matchesOracle(const KernelCase& test, const Planes& planes,
                                       const Frame& frame, std::size_t offset,
                                       std::mt19937& random) {
  const auto& [family, dataType] = test;
  const ConversionKernel kernel =
      selectConversionKernel(family->inputKind, family->outputFormat, dataType);
  if (kernel == nullptr) return testing::AssertionFailure() << "no such kernel";
  const std::size_t start = kGuardBytes + offset;
  const std::size_t behind = random() % 2 == 0 ? 0 : kGuardBytes;
  std::vector<std::uint8_t> expected(start + family->extents(frame).outputBytes + behind);
  std::ranges::generate(expected, [&] { return static_cast<std::uint8_t>(random()); });
  std::vector<std::uint8_t> actual(expected);
  oracle::convert(*family, dataType, planes, expected.data() + start, frame);
  kernel(planes[0], planes[1], planes[2], actual.data() + start, frame.width, frame.height,
         frame.layout);
  const testing::AssertionResult same = sameBytes(expected, actual, start);
  if (same) return same;
  return testing::AssertionFailure()
         << same.message() << " (width " << frame.width << ", height " << frame.height
         << ", layout " << frame.layout << ", output offset " << offset << ")";
}

// Intensity kernels get one plane only.
Planes planesOf(const KernelCase& test, ExactPlane& first, ExactPlane& second, ExactPlane& third) {
  if (test.family->inputKind == kInputIntensity) return {first.samples(), nullptr, nullptr};
  return {first.samples(), second.samples(), third.samples()};
}

class KernelComparison : public testing::TestWithParam<KernelCase> {};

TEST_P(KernelComparison, WritesWhatTheOracleWrites) {
  const std::uint32_t dataType = GetParam().dataType;
  const oracle::SamplePool pool(dataType);
  std::mt19937 random(GetParam().dataType);
  for (const Frame& frame : comparisonFrames()) {
    const Extents extents = GetParam().family->extents(frame);
    for (std::size_t offset = 0; offset < 4; ++offset) {
      std::vector<ExactPlane> planes;
      for (std::size_t i = 0; i < 3; ++i) {
        planes.emplace_back(dataType, extents.planeSamples[i], (offset + i) % 4);
        pool.fill(planes[i].samples(), extents.planeSamples[i], random);
      }
      ASSERT_TRUE(matchesOracle(GetParam(), planesOf(GetParam(), planes[0], planes[1], planes[2]),
                                frame, offset, random));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, KernelComparison, testing::ValuesIn(kernelCases(8)), caseName);

class ExhaustiveKernelComparison : public testing::TestWithParam<KernelCase> {};

// All samples of the type, again and again, in an order that meets other neighbours each time.
void fillWithAllSamples(std::uint8_t* plane, std::size_t count, std::size_t bytesEach,
                        std::size_t step) {
  for (std::size_t i = 0; i < count; ++i) {
    const auto bits = static_cast<std::uint16_t>(i * step);
    std::memcpy(plane + i * bytesEach, &bits, bytesEach);
  }
}

TEST_P(ExhaustiveKernelComparison, ConvertsEverySampleAsTheOracleDoes) {
  const std::uint32_t dataType = GetParam().dataType;
  const Frame frame{512, 256, 1};  // Chroma of half this width still holds all 65536 samples.
  const Extents extents = GetParam().family->extents(frame);
  std::vector<ExactPlane> planes;
  for (std::size_t i = 0; i < 3; ++i) {
    planes.emplace_back(dataType, extents.planeSamples[i], 0);
    fillWithAllSamples(planes[i].samples(), extents.planeSamples[i], oracle::sampleBytes(dataType),
                       257 * i + 1 + i % 2);
  }
  std::mt19937 random(0);
  EXPECT_TRUE(matchesOracle(GetParam(), planesOf(GetParam(), planes[0], planes[1], planes[2]),
                            frame, 0, random));
}

INSTANTIATE_TEST_SUITE_P(SmallSamples, ExhaustiveKernelComparison,
                         testing::ValuesIn(kernelCases(2)), caseName);

}  // namespace
}  // namespace framesink
