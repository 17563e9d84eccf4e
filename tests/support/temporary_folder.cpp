#include "support/temporary_folder.hpp"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace framesink::test {

TemporaryFolder::TemporaryFolder()
    : path_((std::filesystem::temp_directory_path() / "framesink-test-XXXXXX").string()) {
  if (!mkdtemp(path_.data())) throw std::runtime_error("cannot make a folder like " + path_);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace framesink::test
