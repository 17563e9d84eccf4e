// Compares the library with the model when the display goes. The loss is for good, so each sequence
// runs in a child process, which repeats the test up to that sequence.
//
// The settings of model_test.cpp hold for the random sequences.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <random>

#include "model_host.hpp"
#include "settings.hpp"

namespace framesink::model {
namespace {

using Kind = Operation::Kind;

constexpr int kAgreed = 7;
constexpr std::uint32_t kLongest = 100;  // before the loss, and after it
constexpr const char* kGone = "The display is gone; the model runs on.\n";

void apply(ModelHost& host, Sequence& done, const Operation& operation) {
  host.apply(operation);
  done.push_back(operation);
}

void requireAgreement(ModelHost& host, const Sequence& done) {
  const std::string difference = host.difference();
  if (difference.empty()) return;
  std::fprintf(stderr, "%s\n%s\n", difference.c_str(), text(done).c_str());
  std::_Exit(1);
}

// Ends the process as a host does, with all windows of SDL left behind.
[[noreturn]] void loseDisplayBetween(const Sequence& before, const Sequence& after) {
  ModelHost host;
  host.startOver();
  Sequence done;
  for (const Operation& operation : before) apply(host, done, operation);
  apply(host, done, {.kind = Kind::kDisplayGoes, .name = 0});
  requireAgreement(host, done);
  for (const Operation& operation : after) {
    apply(host, done, operation);
    requireAgreement(host, done);
  }
  std::exit(kAgreed);
}

class DisplayLossModelDeathTest : public testing::TestWithParam<int> {
 protected:
  DisplayLossModelDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

  const Sequence operations = everyOperation();
};

INSTANTIATE_TEST_SUITE_P(FirstForm, DisplayLossModelDeathTest, testing::Range(0, kForms));

// Creates a block of each form, then does any one thing, loses the display and does everything.
TEST_P(DisplayLossModelDeathTest, LibraryAndModelAgreeAfterTwoOperations) {
  for (const Operation& second : operations) {
    const Sequence before{{.kind = Kind::kCreate, .name = 0, .form = GetParam()}, second};
    ASSERT_EXIT(loseDisplayBetween(before, operations), testing::ExitedWithCode(kAgreed), kGone)
        << text(before);
  }
}

class DrawnByLotDeathTest : public testing::Test {
 protected:
  DrawnByLotDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

  const Sequence operations = everyOperation();
};

TEST_F(DrawnByLotDeathTest, LibraryAndModelAgreeAfterTheLossOfTheDisplay) {
  const std::uint32_t first = setting("FRAMESINK_MODEL_SEED", 1);
  const std::uint32_t sequences = setting("FRAMESINK_MODEL_SEQUENCES", 40);
  std::cout << "seeds " << first << " to " << first + sequences - 1 << "\n";
  for (std::uint32_t seed = first; seed < first + sequences; ++seed) {
    std::mt19937 random(seed);
    const auto drawn = [&] {
      Sequence sequence(1 + random() % kLongest);
      for (Operation& operation : sequence) operation = operations[random() % operations.size()];
      return sequence;
    };
    const Sequence before = drawn();
    const Sequence after = drawn();
    ASSERT_EXIT(loseDisplayBetween(before, after), testing::ExitedWithCode(kAgreed), kGone)
        << "FRAMESINK_MODEL_SEED=" << seed << " FRAMESINK_MODEL_SEQUENCES=1";
  }
}

}  // namespace
}  // namespace framesink::model
