// Compares the registry and the window controls with the model, in every short sequence of
// operations and in long random ones.
//
//   FRAMESINK_MODEL_DEPTH      longest sequence of which every order is tried (3)
//   FRAMESINK_MODEL_SEQUENCES  number of random sequences (40), each of up to 200 operations
//   FRAMESINK_MODEL_SEED       seed of the first random sequence (1); each further one has the next
#include <gtest/gtest.h>

#include <iostream>
#include <random>

#include "model_host.hpp"
#include "settings.hpp"

namespace framesink::model {
namespace {

constexpr std::uint32_t kLongest = 200;

class ModelTest : public testing::Test {
 protected:
  // False if library and model differ after the sequence; the test then fails.
  bool agree(const Sequence& sequence) {
    ++checks;
    const std::string difference = host.difference();
    EXPECT_EQ(difference, "") << text(sequence);
    return difference.empty();
  }

  std::size_t checks = 0;
  const Sequence operations = everyOperation();
  ModelHost host;
};

// Extends every sequence by every operation. An operation that changes the model makes a longer
// sequence. One that does not is applied and checked, but not extended: the same would follow as
// without it. Therefore every sequence begins with the creation of a block. It always has the first
// of the two names, which are interchangeable, and each form of that block is one test.
class EveryOrder : public ModelTest, public testing::WithParamInterface<int> {
 protected:
  // Extends `sequence`, which has been applied and checked. False at the first difference.
  bool goOn(Sequence& sequence, std::uint32_t depth) {
    Sequence changing;
    for (const Operation& operation : operations) {
      if (host.wouldChange(operation)) {
        if (!sequence.empty() || isFirst(operation)) changing.push_back(operation);
      } else if (!isFine(sequence, operation)) {
        return false;
      }
    }
    for (const Operation& operation : changing) {
      restore(sequence);
      if (!isFine(sequence, operation)) return false;
      if (sequence.size() + 1 == depth) continue;
      sequence.push_back(operation);
      const bool agreed = goOn(sequence, depth);
      sequence.pop_back();
      if (!agreed) return false;
    }
    return true;
  }

 private:
  static bool isFirst(const Operation& operation) {
    return operation.name == 0 && operation.form == GetParam();
  }
  bool isFine(Sequence& sequence, const Operation& operation) {
    sequence.push_back(operation);
    host.apply(operation);
    const bool agreed = agree(sequence);
    sequence.pop_back();
    return agreed;
  }
  void restore(const Sequence& sequence) {
    host.startOver();
    for (const Operation& operation : sequence) host.apply(operation);
  }
};

INSTANTIATE_TEST_SUITE_P(FirstForm, EveryOrder, testing::Range(0, kForms));

TEST_P(EveryOrder, LibraryAndModelAgree) {
  const std::uint32_t depth = setting("FRAMESINK_MODEL_DEPTH", 3);
  host.startOver();
  Sequence sequence;
  ASSERT_TRUE(goOn(sequence, depth));
  std::cout << checks << " sequences of up to " << depth << " operations\n";
}

class DrawnByLot : public ModelTest {
 protected:
  // Checks after one operation in `pace`, because a check lets the display settle. The operations
  // in between meet windows that are not made yet and players that are not gone yet.
  bool run(std::uint32_t seed) {
    std::mt19937 random(seed);
    const std::uint32_t length = 1 + static_cast<std::uint32_t>(random()) % kLongest;
    const std::uint32_t pace = 1 + static_cast<std::uint32_t>(random()) % 4;
    host.startOver();
    Sequence sequence;
    while (sequence.size() < length) {
      sequence.push_back(operations[random() % operations.size()]);
      host.apply(sequence.back());
      if (random() % pace != 0) continue;
      if (!agree(sequence)) return false;
    }
    done += length;
    return agree(sequence);
  }

  std::size_t done = 0;
};

TEST_F(DrawnByLot, LibraryAndModelAgree) {
  const std::uint32_t first = setting("FRAMESINK_MODEL_SEED", 1);
  const std::uint32_t sequences = setting("FRAMESINK_MODEL_SEQUENCES", 40);
  std::cout << "seeds " << first << " to " << first + sequences - 1 << "\n";
  for (std::uint32_t seed = first; seed < first + sequences; ++seed) {
    ASSERT_TRUE(run(seed)) << "FRAMESINK_MODEL_SEED=" << seed << " FRAMESINK_MODEL_SEQUENCES=1";
  }
  std::cout << done << " operations, " << checks << " checks\n";
}

}  // namespace
}  // namespace framesink::model
