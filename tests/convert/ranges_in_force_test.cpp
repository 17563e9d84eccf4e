// Checks that the loaded pixkit declares the ranges that this run is meant to test:
// FRAMESINK_TEST_RANGES names the set; without it, the natural one is expected.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "pixkit/pixkit.h"
#include "range_sets.hpp"

namespace framesink {
namespace {

std::string expectedSetName() {
  const char* name = std::getenv("FRAMESINK_TEST_RANGES");
  return name == nullptr ? kNaturalRanges.name : name;
}

const RangeSet* setNamed(const std::string& name) {
  for (const RangeSet* set : {&kNaturalRanges, &kOtherRanges, &kNarrowRanges, &kWideRanges}) {
    if (name == set->name) return set;
  }
  return nullptr;
}

template <int N, class Sample>
void expectRange(const Range<Sample>& expected) {
  EXPECT_EQ(static_cast<Sample>(videoTraits<N>::min), expected.min) << "type " << N;
  EXPECT_EQ(static_cast<Sample>(videoTraits<N>::max), expected.max) << "type " << N;
}

TEST(Ranges, InForceAreThoseThatTheRunIsAbout) {
  const RangeSet* set = setNamed(expectedSetName());
  ASSERT_NE(set, nullptr) << expectedSetName();
  expectRange<0>(set->doubles);
  expectRange<1>(set->singles);
  expectRange<2>(set->int8s);
  expectRange<3>(set->uint8s);
  expectRange<4>(set->int16s);
  expectRange<5>(set->uint16s);
  expectRange<6>(set->int32s);
  expectRange<7>(set->uint32s);
  expectRange<8>(set->booleans);
}

}  // namespace
}  // namespace framesink
