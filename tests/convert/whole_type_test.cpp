// Every kernel against the oracle, on every sample that there is.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "kernel_cases.hpp"
#include "kernel_check.hpp"
#include "whole_types.hpp"

namespace framesink {
namespace {

using oracle::Frame;

// One block of a walk over the type. Samples of one plane follow one another down its columns.
constexpr Frame kBlock{2048, 128, 1};

class WholeType : public testing::TestWithParam<KernelCase> {
 protected:
  // The planes walk the type together: each block goes on where the one before ended, and within it
  // each plane where the plane before ended. Of types of one or two bytes every plane of the first
  // block holds them all.
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

// ---- every triple of bytes ----------------------------------------------------------------------

class EveryTriple : public testing::TestWithParam<KernelCase> {};

// One frame for each value of the first plane: the others hold every pair of bytes. Pairs of pixels
// that share chroma are equal, so every pixel has a triple of its own.
TEST_P(EveryTriple, OfBytesIsConvertedAsTheOracleConvertsIt) {
  constexpr Frame kTriples{512, 256, 1};
  const oracle::Extents extents = GetParam().family->extents(kTriples);
  KernelCheck check(GetParam(), extents.planeSamples[0], extents.outputBytes);
  for (std::uint32_t first = 0; first < 256; ++first) {
    std::memset(check.plane(0, kTriples, {}), static_cast<int>(first), extents.planeSamples[0]);
    for (std::size_t i = 1; i < 3; ++i) {
      const bool isHalfWide = extents.planeSamples[i] < extents.planeSamples[0];
      std::uint8_t* const plane = check.plane(i, kTriples, {});
      for (std::size_t e = 0; e < extents.planeSamples[i]; ++e) {
        const std::size_t column = isHalfWide ? e / 256 : e / 512;
        plane[e] = static_cast<std::uint8_t>(i == 1 ? column : e % 256);
      }
    }
    ASSERT_EQ(check.difference(kTriples, {}), "");
  }
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
