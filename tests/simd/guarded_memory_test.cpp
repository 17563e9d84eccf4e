#include "simd/guarded_memory.hpp"

#include <gtest/gtest.h>

namespace framesink {
namespace {

TEST(GuardedMemory, CanBeWrittenFromItsFirstByteToItsLast) {
  const GuardedMemory memory(5000);
  ASSERT_GE(memory.end() - memory.begin(), 5000);
  for (std::uint8_t* byte = memory.begin(); byte != memory.end(); ++byte) *byte = 7;
  EXPECT_EQ(memory.begin()[0] + memory.end()[-1], 14);
}

TEST(GuardedMemory, OfNoBytesMayStillBeHeld) {
  const GuardedMemory memory(0);
  EXPECT_EQ(memory.begin(), memory.end());
}

TEST(GuardedMemoryDeathTest, EndsTheProcessOnEitherSide) {
  const GuardedMemory memory(100);
  EXPECT_DEATH(*static_cast<volatile std::uint8_t*>(memory.end()) = 1, "");
  EXPECT_DEATH(static_cast<void>(memory.begin()[-1] +
                                 *static_cast<volatile std::uint8_t*>(memory.begin() - 1)),
               "");
}

TEST(GuardedMemoryDeathTest, EndsTheProcessThatWritesWhileItIsForbidden) {
  GuardedMemory memory(100);
  memory.allowWriting(false);
  EXPECT_EQ(*memory.begin(), 0);
  EXPECT_DEATH(*static_cast<volatile std::uint8_t*>(memory.begin()) = 1, "");
  memory.allowWriting(true);
  *memory.begin() = 1;
}

}  // namespace
}  // namespace framesink
