#include "curves.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace framesink::test {
namespace {

constexpr int kLoads = 16;
constexpr int kSamples = 32;  // in each load

// A run with constant curves, changed by `change`.
std::vector<Sample> runWith(const std::function<void(Sample&)>& change) {
  std::vector<Sample> samples;
  for (int number = 0; number < kLoads * kSamples; ++number) {
    Sample sample;
    sample.load = number / kSamples;
    sample.age = (number % kSamples + 0.5) / kSamples;
    sample.servers = number / kSamples % 4 < 2 ? "both" : "threaded";
    sample.kilobytes = 20'000 + 1000 * (number % 3);
    sample.descriptors = 7 + number % 2;
    sample.threads = 2;
    sample.xResources = 100 - 10 * (number % 5);
    change(sample);
    samples.push_back(sample);
  }
  return samples;
}

// "curve, servers, quarters" of each verdict that is not flat.
std::vector<std::string> notFlat(const std::vector<Sample>& samples) {
  std::vector<std::string> names;
  for (const char* servers : {"both", "threaded"}) {
    for (const Verdict& v : judge(samples, servers, kLoads)) {
      if (!v.isFlat()) names.push_back(v.curve + ", " + v.servers + ", " + v.quartersOf);
    }
  }
  return names;
}

using Names = std::vector<std::string>;

TEST(SoakCurves, AreFlatWhenTheyOnlyTremble) {
  EXPECT_EQ(notFlat(runWith([](Sample&) {})), Names{});
}

TEST(SoakCurves, MayFall) {
  EXPECT_EQ(notFlat(runWith([](Sample& s) { s.kilobytes -= 500 * s.load; })), Names{});
}

TEST(SoakCurves, MayGrowInTheFirstQuarter) {
  EXPECT_EQ(notFlat(runWith([](Sample& s) { s.kilobytes -= s.load < kLoads / 4 ? 9000 : 0; })),
            Names{});
}

TEST(SoakCurves, GrowWhenEachLoadLeavesSomethingBehind) {
  EXPECT_EQ(notFlat(runWith([](Sample& s) { s.descriptors += s.load; })),
            (Names{"descriptors, both, the run", "descriptors, threaded, the run"}));
}

TEST(SoakCurves, GrowWhenUnloadingAloneGivesBack) {
  EXPECT_EQ(notFlat(runWith([](Sample& s) { s.xResources += 40 * s.age; })),
            (Names{"X resources, both, each load", "X resources, threaded, each load"}));
}

TEST(SoakCurves, GrowWithOneKindOfServers) {
  EXPECT_EQ(notFlat(runWith([](Sample& s) {
              if (s.servers == "threaded") s.threads += s.load / 2;
            })),
            (Names{"threads, threaded, the run"}));
}

TEST(SoakCurves, AreNotFlatWithoutSamples) { EXPECT_EQ(notFlat({}).size(), 16U); }

TEST(SoakSamples, AreReadAsTheHostWritesThem) {
  const auto sample = readSample("3,0.250,bare,threaded,40,41,42,43,44,20000,7,2");
  ASSERT_TRUE(sample);
  EXPECT_EQ(csvLine(*sample), "3,0.250,bare,threaded,40,41,42,43,44,20000,7,2,0");
  EXPECT_FALSE(readSample("3,0.250,bare,threaded,40,4"));
}

}  // namespace
}  // namespace framesink::test
