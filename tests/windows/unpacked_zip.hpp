// The zip, unpacked as a user would.
#pragma once

#include <set>
#include <string>

#include "support/temporary_folder.hpp"

namespace framesink::test {

class UnpackedZip {
 public:
  UnpackedZip();

  // The path of a file in the zip's single folder.
  std::string path(const std::string& file) const;
  std::string read(const std::string& file) const;
  // All files, as paths in that folder.
  std::set<std::string> files() const;
  // Entries beside that folder; there should be none.
  std::set<std::string> strays() const;

 private:
  TemporaryFolder folder_;
};

}  // namespace framesink::test
