// Natural ranges are scaled without a division. A range that shares only one end with the natural
// one is not.
#include "convert/sample_rows.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "kernel_cases.hpp"
#include "oracle.hpp"
#include "range_in_force.hpp"
#include "sample_pool.hpp"

namespace framesink {
namespace {

constexpr RangeSet kOtherMaxima = [] {
  RangeSet set = kNaturalRanges;
  set.doubles.max = 2.0;
  set.singles.max = 2.0F;
  set.int8s.max = 100;
  set.uint8s.max = 200;
  set.int16s.max = 1000;
  set.uint16s.max = 50000;
  set.int32s.max = 1000;
  set.uint32s.max = 3000000000U;
  set.booleans.max = 4;
  return set;
}();

constexpr RangeSet kOtherMinima = [] {
  RangeSet set = kNaturalRanges;
  set.doubles.min = -1.0;
  set.singles.min = 0.5F;
  set.int8s.min = -100;
  set.uint8s.min = 50;
  set.int16s.min = 1000;
  set.uint16s.min = 1000;
  set.int32s.min = 0;
  set.uint32s.min = 1000000000U;
  set.booleans.min = 3;
  return set;
}();

template <std::uint32_t Id>
std::vector<SampleOf<Id>> pooledSamples() {
  const oracle::SamplePool pool(Id);
  std::vector<SampleOf<Id>> samples(pool.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    std::memcpy(&samples[i], pool.sample(i), sizeof samples[i]);
  }
  return samples;
}

template <std::uint32_t Id>
void expectOracleResults(const Range<SampleOf<Id>>& range) {
  const RangeInForce<Id> inForce(range);
  const std::vector<SampleOf<Id>> samples = pooledSamples<Id>();
  std::vector<std::uint8_t> bytes(samples.size());
  rowScalers()[Id](samples.data(), bytes.data(), samples.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    ASSERT_EQ(bytes[i], oracle::scaleTo8Bit(Id, &samples[i]))
        << oracle::typeName(Id) << " sample " << +samples[i];
  }
}

void expectOracleResults(const RangeSet& ranges) {
  expectOracleResults<kDouble>(ranges.doubles);
  expectOracleResults<kSingle>(ranges.singles);
  expectOracleResults<kInt8>(ranges.int8s);
  expectOracleResults<kUint8>(ranges.uint8s);
  expectOracleResults<kInt16>(ranges.int16s);
  expectOracleResults<kUint16>(ranges.uint16s);
  expectOracleResults<kInt32>(ranges.int32s);
  expectOracleResults<kUint32>(ranges.uint32s);
  expectOracleResults<kBoolean>(ranges.booleans);
}

class RowScalers : public testing::Test {
 protected:
  ~RowScalers() override { instructionSets().front().use(); }

  // On every instruction set of this machine.
  static void expectOracleResultsInThe(const RangeSet& ranges) {
    for (const InstructionSet& set : instructionSets()) {
      SCOPED_TRACE(set.name);
      set.use();
      expectOracleResults(ranges);
    }
  }
};

TEST_F(RowScalers, DivideByARangeThatHasOnlyTheNaturalMinimum) {
  expectOracleResultsInThe(kOtherMaxima);
}

TEST_F(RowScalers, DivideByARangeThatHasOnlyTheNaturalMaximum) {
  expectOracleResultsInThe(kOtherMinima);
}

}  // namespace
}  // namespace framesink
