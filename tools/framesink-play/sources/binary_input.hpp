// Reads files and standard input as bytes.
#pragma once

#include <cstddef>
#include <string>

namespace framesink::play {

class BinaryInput {
 public:
  // Opens a file, or standard input for "-". Check isOpen afterwards.
  explicit BinaryInput(const std::string& path);
  ~BinaryInput();
  BinaryInput(const BinaryInput&) = delete;
  BinaryInput& operator=(const BinaryInput&) = delete;

  bool isOpen() const { return descriptor_ >= 0; }

  // Reads `count` bytes and returns how many came: fewer at the end of the input, after an error,
  // and after a stop signal. On Windows a pipe notices the signal only when bytes come.
  std::size_t read(std::byte* to, std::size_t count);

  // The errno of the latest failure; 0: none.
  int error() const { return error_; }

 private:
  int descriptor_;
  bool owned_;
  int error_ = 0;
};

}  // namespace framesink::play
