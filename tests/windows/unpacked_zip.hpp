// The zip as those who get it unpack it.
#pragma once

#include <set>
#include <string>

#include "support/temporary_folder.hpp"

namespace framesink::test {

class UnpackedZip {
 public:
  UnpackedZip();

  // Of a file in the zip's one folder.
  std::string path(const std::string& file) const;
  std::string read(const std::string& file) const;
  // All of them, by their path in that folder.
  std::set<std::string> files() const;
  // What else is beside that folder; empty as it should be.
  std::set<std::string> strays() const;

 private:
  TemporaryFolder folder_;
};

}  // namespace framesink::test
