// Each fallible call to SDL fails once, then permanently: hosts never notice.
// FRAMESINK_FAULT_TABLE=1 prints for each function how many refusals hosts survived.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "fault_process.hpp"

namespace framesink::test {
namespace {

// The library's own decision: it retries a failed lock without end. So only this many calls fail.
constexpr const char* kEndlesslyRetried = "SDL_LockMutex";
constexpr std::size_t kRetries = 100;

class SdlFaultsTest : public testing::TestWithParam<const char*> {
 protected:
  explicit SdlFaultsTest(Lines display = onDummyDriver()) : display_(std::move(display)) {}

  Outcome run(const Lines& fault = {}) {
    return FaultProcess(GetParam(), fault, display_).outcome();
  }

  void countSurvived(const std::string& function) { ++survived_[function]; }

  ~SdlFaultsTest() override {
    if (std::getenv("FRAMESINK_FAULT_TABLE") == nullptr) return;
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    std::size_t total = 0;
    for (const auto& [function, number] : survived_) {
      std::printf("| %s | %s | %zu |\n", test->name(), function.c_str(), number);
      total += number;
    }
    std::printf("| %s | all | %zu |\n", test->name(), total);
  }

 private:
  const Lines display_;
  std::map<std::string, std::size_t> survived_;
};
INSTANTIATE_TEST_SUITE_P(Faults, SdlFaultsTest, testing::Values("threaded", "synchronous"),
                         [](const auto& parameter) { return std::string(parameter.param); });

TEST_P(SdlFaultsTest, ARunIsTheSameEveryTime) {
  const Lines points = run().points;
  EXPECT_GT(points.size(), 100U);
  EXPECT_EQ(run().points, points);
}

TEST_P(SdlFaultsTest, EachCallMayFailOnce) {
  const Lines points = run().points;
  for (std::size_t number = 1; !HasFailure(); ++number) {
    const Lines faults = run({"any", std::to_string(number), "0"}).faults;
    if (faults.empty()) {
      EXPECT_EQ(number, points.size() + 1) << "the run was not the same every time";
      break;
    }
    ASSERT_LE(number, points.size());
    EXPECT_EQ(faults, Lines{points[number - 1]});
    countSurvived(points[number - 1]);
  }
}

TEST_P(SdlFaultsTest, EachFunctionMayFailFromAnyOfItsCallsOn) {
  const Lines points = run().points;
  std::map<std::string, std::size_t> numberOfCalls;
  for (const std::string& function : points) ++numberOfCalls[function];
  for (const auto& [function, calls] : numberOfCalls) {
    for (std::size_t first = 1; first <= calls; ++first) {
      const std::size_t last = function == kEndlesslyRetried ? first + kRetries - 1 : SIZE_MAX;
      const Outcome faulty = run({function, std::to_string(first), std::to_string(last)});
      ASSERT_FALSE(HasFailure());
      ASSERT_GE(faulty.faults.size(), 1U) << function << " " << first;
      countSurvived(function);
    }
  }
}

// Windows on an X server, whose events and their times differ from run to run. Runs are therefore
// not compared with each other.
class SdlFaultsOnX11Test : public SdlFaultsTest {
 protected:
  SdlFaultsOnX11Test() : SdlFaultsTest(onSharedXServer()) {}
};
INSTANTIATE_TEST_SUITE_P(Faults, SdlFaultsOnX11Test, testing::Values("threaded", "synchronous"),
                         [](const auto& parameter) { return std::string(parameter.param); });

TEST_P(SdlFaultsOnX11Test, EachCallMayFailOnce) {
  std::size_t number = 1;
  for (Lines faults; !HasFailure(); ++number) {
    faults = run({"any", std::to_string(number), "0"}).faults;
    if (faults.empty()) break;
    countSurvived(faults[0]);
  }
  EXPECT_GT(number, 100U);
}

}  // namespace
}  // namespace framesink::test
