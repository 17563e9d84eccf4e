#include "unpacked_zip.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/child_process.hpp"

namespace framesink::test {
namespace {

const std::string kFolder = "framesink-" PROJECT_VERSION "-win64";

}  // namespace

UnpackedZip::UnpackedZip() {
  ChildProcess unpacking({CMAKE_PROGRAM, "-E", "chdir", folder_.path(), CMAKE_PROGRAM, "-E", "tar",
                          "xf", WINDOWS_ZIP});
  const auto status = unpacking.wait();
  EXPECT_TRUE(status && status->code == 0) << unpacking.standardError();
}

std::string UnpackedZip::path(const std::string& file) const {
  return folder_.path() + "/" + kFolder + "/" + file;
}

std::string UnpackedZip::read(const std::string& file) const {
  std::ifstream stream(path(file), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::set<std::string> UnpackedZip::files() const {
  std::set<std::string> names;
  const std::filesystem::path top = folder_.path() + "/" + kFolder;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(top)) {
    if (!entry.is_directory()) names.insert(entry.path().lexically_relative(top).string());
  }
  return names;
}

std::set<std::string> UnpackedZip::strays() const {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
    if (entry.path().filename() != kFolder) names.insert(entry.path().filename().string());
  }
  return names;
}

}  // namespace framesink::test
