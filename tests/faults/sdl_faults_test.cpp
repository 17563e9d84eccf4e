// Each fallible call to SDL fails once, then permanently: hosts never notice.
// FRAMESINK_FAULT_TABLE=1 prints for each function how many refusals hosts survived.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/child_process.hpp"
#include "support/temporary_folder.hpp"
#include "support/x_server.hpp"

namespace framesink::test {
namespace {

using Lines = std::vector<std::string>;

constexpr std::chrono::seconds kLongestRun{30};

// The library's own decision: it retries a failed lock without end. So only this many calls fail.
constexpr const char* kEndlesslyRetried = "SDL_LockMutex";
constexpr std::size_t kRetries = 100;

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// The rest of each line that begins with `key` and a blank.
Lines valuesOf(const std::string& key, const Lines& lines) {
  Lines values;
  for (const std::string& line : lines) {
    if (line.rfind(key + " ", 0) == 0) values.push_back(line.substr(key.size() + 1));
  }
  return values;
}

Lines sorted(Lines lines) {
  std::sort(lines.begin(), lines.end());
  return lines;
}

// What one run of a host reported.
struct Outcome {
  Lines points;  // functions of the calls that could have been refused, in order
  Lines faults;  // functions of the calls that were refused
};

class SdlFaultsTest : public testing::TestWithParam<const char*> {
 protected:
  explicit SdlFaultsTest(Lines display = {"SDL_VIDEODRIVER=dummy"})
      : environment_(std::move(display)) {
    environment_.push_back("XDG_RUNTIME_DIR=" + folder_.path());
  }

  // Runs a host. Fails the test if it hangs, ends badly or prints the wrong messages.
  Outcome run(const Lines& fault = {}) {
    Lines command{SDL_FAULT_HOST, GetParam()};
    command.insert(command.end(), fault.begin(), fault.end());
    ChildProcess host(command, {.environment = environment_});
    const auto status = host.wait(kLongestRun);
    const Lines output = linesOf(host.standardOutput());
    std::string name;
    for (const std::string& argument : fault) name += argument + " ";
    if (!status) {
      ADD_FAILURE() << name << "hangs";
    } else if (*status != ExitStatus{.code = 0, .signal = 0}) {
      ADD_FAILURE() << name << "ends with " << status->code << ", signal " << status->signal << "\n"
                    << host.standardOutput() << host.standardError();
    } else {
      EXPECT_EQ(sorted(linesOf(host.standardError())), sorted(valuesOf("message", output))) << name;
    }
    return {.points = valuesOf("point", output), .faults = valuesOf("fault", output)};
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
  const TemporaryFolder folder_;
  Lines environment_;
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
  SdlFaultsOnX11Test()
      : SdlFaultsTest({"SDL_VIDEODRIVER=x11", "DISPLAY=" + sharedXServer().display()}) {}
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
