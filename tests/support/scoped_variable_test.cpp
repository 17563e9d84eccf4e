#include "support/scoped_variable.hpp"

#include <gtest/gtest.h>

namespace framesink::test {
namespace {

constexpr const char* kName = "FRAMESINK_SCOPED_VARIABLE_TEST";

TEST(ScopedVariable, SetsAndRemovesWhatWasNotThere) {
  {
    const ScopedVariable variable(kName, "inside");
    EXPECT_EQ(environmentVariable(kName), "inside");
  }
  EXPECT_EQ(environmentVariable(kName), std::nullopt);
}

TEST(ScopedVariable, UnsetsAndPutsBack) {
  const ScopedVariable outer(kName, "outside");
  {
    const ScopedVariable inner(kName, std::nullopt);
    EXPECT_EQ(environmentVariable(kName), std::nullopt);
  }
  EXPECT_EQ(environmentVariable(kName), "outside");
}

}  // namespace
}  // namespace framesink::test
