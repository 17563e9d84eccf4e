// The display is lost in each of the library's calls of SDL in turn: hosts live on.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "fault_process.hpp"

namespace framesink::test {
namespace {

// Hosts rest most of the time, so several run at a time.
constexpr std::size_t kAtATime = 8;

constexpr double kRestSeconds = 0.2;   // how long a host rests while it measures its processor time
constexpr int kMostAtRest = 1000;      // microseconds of one rest
constexpr double kMostASecond = 1000;  // microseconds, on average
constexpr int kLongestStop = 1000;     // milliseconds

class DisplayLossTest : public testing::TestWithParam<const char*> {
 protected:
  explicit DisplayLossTest(Lines display = onDummyDriver()) : display_(std::move(display)) {}

  ~DisplayLossTest() override {
    if (faults_.empty()) return;
    EXPECT_GT(rests_, 0);
    const double perSecond = atRest_ / (rests_ * kRestSeconds);
    std::printf("%zu losses: longest call %.1f ms, longest stop %d ms, processor time %.3f ms/s\n",
                faults_.size(), longestCall_ / 1000.0, longestStop_, perSecond / 1000);
    EXPECT_LT(perSecond, kMostASecond);
  }

  Lines points() {
    return FaultProcess(GetParam(), {"lose", "0", "instead"}, display_).outcome().points;
  }

  // Loses the display at every point, one host for each. Returns the functions that lost it.
  const Lines& loseEverywhere(const char* moment) {
    bool isEverywhere = false;
    while (!isEverywhere && !HasFailure()) {
      for (const auto& host : nextHosts(moment)) {
        const Outcome outcome = host->outcome();
        isEverywhere = isEverywhere || outcome.faults.empty();
        note(outcome);
      }
    }
    return faults_;
  }

 private:
  using Hosts = std::vector<std::unique_ptr<FaultProcess>>;

  Hosts nextHosts(const char* moment) {
    Hosts hosts;
    while (hosts.size() < kAtATime) {
      const Lines loss{"lose", std::to_string(++number_), moment};
      hosts.push_back(std::make_unique<FaultProcess>(GetParam(), loss, display_));
    }
    return hosts;
  }

  // Losses while the host ends have neither calls nor a rest after them.
  void note(const Outcome& outcome) {
    faults_.insert(faults_.end(), outcome.faults.begin(), outcome.faults.end());
    for (const std::string& took : outcome.call)
      longestCall_ = std::max(longestCall_, std::stoi(took));
    for (const std::string& took : outcome.rest) {
      EXPECT_LT(std::stoi(took), kMostAtRest);
      atRest_ += std::stoi(took);
      ++rests_;
    }
    for (const std::string& took : outcome.stop) {
      EXPECT_LT(std::stoi(took), kLongestStop);
      longestStop_ = std::max(longestStop_, std::stoi(took));
    }
  }

  const Lines display_;
  std::size_t number_ = 0;
  Lines faults_;
  int longestCall_ = 0;  // microseconds
  int longestStop_ = 0;  // milliseconds
  int atRest_ = 0;       // microseconds
  int rests_ = 0;
};

const auto kServers = testing::Values("threaded", "synchronous", "both");
std::string nameOf(const testing::TestParamInfo<const char*>& parameter) { return parameter.param; }

INSTANTIATE_TEST_SUITE_P(Faults, DisplayLossTest, kServers, nameOf);

TEST_P(DisplayLossTest, ARunIsTheSameEveryTime) {
  const Lines first = points();
  EXPECT_GT(first.size(), 150U);
  EXPECT_EQ(points(), first);
}

TEST_P(DisplayLossTest, MayComeInsteadOfAnyCall) { EXPECT_EQ(loseEverywhere("instead"), points()); }

TEST_P(DisplayLossTest, MayComeAfterAnyCall) { EXPECT_EQ(loseEverywhere("after"), points()); }

// On an X server, events and their times differ from run to run. Runs are therefore not compared
// with each other.
class DisplayLossOnX11Test : public DisplayLossTest {
 protected:
  DisplayLossOnX11Test() : DisplayLossTest(onSharedXServer()) {}
};
INSTANTIATE_TEST_SUITE_P(Faults, DisplayLossOnX11Test, kServers, nameOf);

TEST_P(DisplayLossOnX11Test, MayComeInsteadOfAnyCall) {
  EXPECT_GT(loseEverywhere("instead").size(), 150U);
}

TEST_P(DisplayLossOnX11Test, MayComeAfterAnyCall) {
  EXPECT_GT(loseEverywhere("after").size(), 150U);
}

}  // namespace
}  // namespace framesink::test
