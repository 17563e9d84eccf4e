#include "support/temporary_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace framesink::test {
namespace {

TEST(TemporaryFolder, GoesWithAllItHolds) {
  std::string path;
  {
    const TemporaryFolder folder;
    path = folder.path();
    std::filesystem::create_directory(path + "/inner");
    std::ofstream(path + "/inner/file") << "content";
    EXPECT_TRUE(std::filesystem::exists(path + "/inner/file"));
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TemporaryFolder, IsNobodyElses) {
  const TemporaryFolder first;
  const TemporaryFolder second;
  EXPECT_NE(first.path(), second.path());
}

}  // namespace
}  // namespace framesink::test
