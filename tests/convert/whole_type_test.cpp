// Compares every kernel with the oracle for every possible sample.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "convert/sample_scaling.hpp"
#include "kernel_cases.hpp"
#include "kernel_check.hpp"
#include "whole_types.hpp"

namespace framesink {
namespace {

using oracle::Frame;

// A walk converts the type in frames of this shape; samples follow one another down the columns.
constexpr Frame kBlock{2048, 128, 1};

class WholeType : public testing::TestWithParam<KernelCase> {
 protected:
  // The planes walk the type together: plane 1 continues where plane 0 ended, plane 2 where plane 1
  // ended, and the next block where this one ended. For types of one or two bytes, each plane of
  // the first block already holds every sample.
  void walk() {
    const oracle::Extents extents = GetParam().family->extents(kBlock);
    KernelCheck check(GetParam(), extents.planeSamples[0], extents.outputBytes);
    std::uint64_t next = 0;
    while (next < wholeTypeSize(GetParam().dataType)) {
      const std::uint64_t first = next;
      for (std::size_t i = 0; i < 3; ++i) {
        fillFromWholeType(GetParam().dataType, next, extents.planeSamples[i],
                          check.plane(i, kBlock, {}));
        next += extents.planeSamples[i];
      }
      ASSERT_EQ(check.difference(kBlock, {}), "") << "samples from number " << first << " on";
    }
  }
};

TEST_P(WholeType, IsConvertedAsTheOracleConvertsIt) { walk(); }

const auto caseName = [](const auto& info) { return nameOf(info.param); };
INSTANTIATE_TEST_SUITE_P(Small, WholeType, testing::ValuesIn(kernelCases(1, 2)), caseName);
INSTANTIATE_TEST_SUITE_P(Large, WholeType, testing::ValuesIn(kernelCases(4, 8)), caseName);

// ---- sample by sample ---------------------------------------------------------------------------

template <std::uint32_t Id>
void walkSamples() {
  std::vector<SampleOf<Id>> samples(1 << 16);
  for (std::uint64_t first = 0; first < wholeTypeSize(Id); first += samples.size()) {
    fillFromWholeType(Id, first, samples.size(), reinterpret_cast<std::uint8_t*>(samples.data()));
    for (const SampleOf<Id>& sample : samples) {
      ASSERT_EQ(scaleTo8Bit<Id>(sample), oracle::scaleTo8Bit(Id, &sample)) << +sample;
    }
  }
}

class SampleWalk : public testing::TestWithParam<std::uint32_t> {};

// Walks the rule for single samples, which the kernels' second paths use.
TEST_P(SampleWalk, GivesTheOraclesValueForEverySample) {
  constexpr auto kWalks = tableOfSampleTypes([]<std::uint32_t Id>() { return walkSamples<Id>; });
  kWalks[GetParam()]();
}

INSTANTIATE_TEST_SUITE_P(Large, SampleWalk, testing::Values(kDouble, kSingle, kInt32, kUint32),
                         [](const auto& test) { return oracle::typeName(test.param); });

// ---- every triple of bytes ----------------------------------------------------------------------

class EveryTriple : public testing::TestWithParam<KernelCase> {};

// One frame for each value of the first plane; the other two hold every pair of bytes. Pixels that
// share chroma are equal.
void walkTriples(const KernelCase& test, const Frame& triples) {
  const oracle::Extents extents = test.family->extents(triples);
  KernelCheck check(test, extents.planeSamples[0], extents.outputBytes);
  for (std::uint32_t first = 0; first < 256; ++first) {
    std::memset(check.plane(0, triples, {}), static_cast<int>(first), extents.planeSamples[0]);
    for (std::size_t i = 1; i < 3; ++i) {
      const bool isHalfWide = extents.planeSamples[i] < extents.planeSamples[0];
      std::uint8_t* const plane = check.plane(i, triples, {});
      for (std::size_t e = 0; e < extents.planeSamples[i]; ++e) {
        const std::size_t column = isHalfWide ? e / 256 : e / 512;
        plane[e] = static_cast<std::uint8_t>(i == 1 ? column : e % 256);
      }
    }
    ASSERT_EQ(check.difference(triples, {}), "");
  }
}

TEST_P(EveryTriple, OfBytesIsConvertedAsTheOracleConvertsIt) {
  walkTriples(GetParam(), {512, 256, 1});
}

// The row-major path, for the families whose lines do not overlap there.
TEST_P(EveryTriple, OfBytesIsConvertedInRowsToo) {
  if (GetParam().family->outputFormat == kOutputYuy2) walkTriples(GetParam(), {512, 256, 0});
}

std::vector<KernelCase> bytesInThreePlanes() {
  std::vector<KernelCase> cases = kernelCases(1, 1);
  std::erase_if(cases, [](const KernelCase& test) {
    return test.dataType != 3 || test.family->inputKind == kInputIntensity;
  });
  return cases;
}
INSTANTIATE_TEST_SUITE_P(Planes, EveryTriple, testing::ValuesIn(bytesInThreePlanes()), caseName);

}  // namespace
}  // namespace framesink
