// Registry and window controls against the model: in every short order of operations, and in long
// ones drawn by lot.
//
//   FRAMESINK_MODEL_DEPTH      operations in a row, in every order (3)
//   FRAMESINK_MODEL_SEQUENCES  sequences drawn by lot (40), of up to 200 operations
//   FRAMESINK_MODEL_SEED       of the first one (1); that of the others follow one by one
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <random>
#include <sstream>

#include "model_host.hpp"

namespace framesink::model {
namespace {

using Sequence = std::vector<Operation>;

constexpr std::uint32_t kLongest = 200;

std::uint32_t setting(const std::string& name, std::uint32_t usual) {
  const auto value = test::environmentVariable(name);
  return value ? static_cast<std::uint32_t>(std::atoi(value->c_str())) : usual;
}

std::string told(const Sequence& sequence) {
  std::ostringstream out;
  for (const Operation& operation : sequence) out << operation << "; ";
  return out.str();
}

class ModelTest : public testing::Test {
 protected:
  // False when library and model differ afterwards.
  bool agree(const Sequence& sequence) {
    ++checks;
    const std::string difference = host.difference();
    EXPECT_EQ(difference, "") << told(sequence);
    return difference.empty();
  }

  std::size_t checks = 0;
  const Sequence operations = everyOperation();
  ModelHost host;
};

// Every sequence goes on from each shorter one by the operations that change the model. One that
// does not is done, too, wherever it may be, and library and model have to agree after it; but what
// would follow it is what follows without it. So the first operation creates a block, and as the
// two names are alike it does so under the first of them; each form of that block is a test.
class EveryOrder : public ModelTest, public testing::WithParamInterface<int> {
 protected:
  // From the state after `sequence`, whose check has been made.
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
  // Checks after one operation in `pace`: what comes between meets windows that are not made yet
  // and players that are still to go.
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
