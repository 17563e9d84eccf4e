// Checks which instruction sets a run on the emulated processor covers. The processor also has SVE,
// for which nothing is built.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kernel_cases.hpp"

namespace framesink {
namespace {

TEST(EmulatedInstructionSets, AreNeonAndTheFallback) {
  std::vector<std::string> names;
  for (const InstructionSet& set : instructionSets()) names.push_back(set.name);
  EXPECT_EQ(names, (std::vector<std::string>{"NEON", "SCALAR"}));
}

}  // namespace
}  // namespace framesink
