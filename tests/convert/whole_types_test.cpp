#include "whole_types.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>
#include <vector>

#include "oracle.hpp"

namespace framesink {
namespace {

template <class Sample>
std::vector<Sample> samples(std::uint32_t dataType, std::uint64_t first, std::size_t count) {
  std::vector<Sample> plane(count);
  fillFromWholeType(dataType, first, count, reinterpret_cast<std::uint8_t*>(plane.data()));
  return plane;
}

TEST(WholeTypes, SmallOnesHoldEverySampleOnce) {
  const auto bytes = samples<std::int8_t>(2, 0, 256);
  EXPECT_EQ(std::set<int>(bytes.begin(), bytes.end()).size(), wholeTypeSize(2));
  const auto words = samples<std::uint16_t>(5, 1000, 65536);
  EXPECT_EQ(std::set<int>(words.begin(), words.end()).size(), wholeTypeSize(5));
}

TEST(WholeTypes, LargeOnesHaveEveryBitPattern) {
  for (const std::uint32_t dataType : {1U, 6U, 7U}) EXPECT_EQ(wholeTypeSize(dataType), 1ULL << 32);
  EXPECT_EQ(samples<std::int32_t>(6, 0xFFFFFFFEU, 3), (std::vector<std::int32_t>{-2, -1, 0}));
  EXPECT_EQ(samples<float>(1, 0x3F800000U, 2), (std::vector{1.0F, std::nextafter(1.0F, 2.0F)}));
}

TEST(WholeTypes, DoublesBeginWithEverySingle) {
  EXPECT_EQ(samples<double>(0, 0x3F800000U, 2),
            (std::vector<double>{1.0F, std::nextafter(1.0F, 2.0F)}));
  EXPECT_TRUE(std::isnan(samples<double>(0, 0xFFFFFFFFU, 1)[0]));
}

// The first tie is the one above 2^-12, the second belongs to the next single.
TEST(WholeTypes, DoublesGoOnWithTheTiesOfTheirNarrowing) {
  const auto some = samples<double>(0, 1ULL << 32, 12);
  const double tie = 0x1p-12 + 0x1p-36;
  EXPECT_EQ(some[1], tie);
  EXPECT_EQ(some[0], std::nextafter(tie, 0));
  EXPECT_EQ(some[2], std::nextafter(tie, 1));
  EXPECT_EQ(some[4], -tie);
  EXPECT_EQ(some[7], tie + 0x1p-35);
  EXPECT_NE(static_cast<float>(some[0]), static_cast<float>(some[2]));
}

TEST(WholeTypes, DoublesCoverTheTiesUpTo2To25) {
  const std::uint64_t dense = 6ULL * 37 << 23;
  const auto last = samples<double>(0, (1ULL << 32) + dense - 6, 7);
  EXPECT_LT(last[2], 0x1p25);
  EXPECT_EQ(static_cast<float>(last[2]), 0x1p25F);
  EXPECT_LT(last[6], 1e-44);  // after 2^25 come the sparse ties, the smallest first
}

TEST(WholeTypes, DoublesEndBelowInfinityAndBeginAgain) {
  const auto around = samples<double>(0, wholeTypeSize(0) - 1, 2);
  EXPECT_LT(around[0], -1e38);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(around[1]), 0U);
}

}  // namespace
}  // namespace framesink
