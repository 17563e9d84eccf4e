#include "sources/input_file.hpp"

#include <filesystem>

#include "system/failure.hpp"

namespace framesink::play {

bool isStandardInput(const std::string& file) { return file == "-"; }

std::string nameOf(const std::string& file) {
  return isStandardInput(file) ? "standard input" : file;
}

void failFor(const std::string& file, const std::string& what) {
  throw Failure(kSourceTrouble, nameOf(file) + ": " + what);
}

void refuseFolder(const std::string& file) {
  std::error_code ignored;
  if (!isStandardInput(file) && std::filesystem::is_directory(file, ignored)) {
    failFor(file, "is a directory");
  }
}

}  // namespace framesink::play
