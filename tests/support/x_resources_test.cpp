#include "support/x_resources.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/plain_window.hpp"
#include "support/x_fixtures.hpp"

namespace framesink::test {
namespace {

class XResources : public BareXTest {
 protected:
  std::size_t own() { return countXResources(x.connection(), getpid()); }
};

TEST_F(XResources, GrowByAWindowAndShrinkAgain) {
  PlainWindow first("first");
  const std::size_t before = own();
  ASSERT_TRUE(x.cover(first.id()));
  EXPECT_EQ(own(), before + 1);
  ASSERT_TRUE(x.uncover());
  EXPECT_EQ(own(), before);
}

TEST_F(XResources, AreNoneForAProcessWithoutAConnection) {
  EXPECT_EQ(countXResources(x.connection(), getppid()), 0U);
}

}  // namespace
}  // namespace framesink::test
