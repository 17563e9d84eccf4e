// A folder for files that a test writes.
#pragma once

#include <string>

namespace framesink::test {

// A new folder in the operating system's folder for temporary files; removed with its content.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace framesink::test
