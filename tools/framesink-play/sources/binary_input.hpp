// Files and standard input as bytes.
#pragma once

#include <cstddef>
#include <string>

namespace framesink::play {

class BinaryInput {
 public:
  // Opens a file, or standard input for "-"; isOpen and error tell whether that worked.
  explicit BinaryInput(const std::string& path);
  ~BinaryInput();
  BinaryInput(const BinaryInput&) = delete;
  BinaryInput& operator=(const BinaryInput&) = delete;

  bool isOpen() const { return descriptor_ >= 0; }

  // Reads `count` bytes and returns how many there were: fewer at the end of the input, after an
  // error, or when the player is asked to stop; on Windows a pipe has to bring bytes first.
  std::size_t read(std::byte* to, std::size_t count);

  // Of the latest failure, as errno has it; 0: none.
  int error() const { return error_; }

 private:
  int descriptor_;
  bool owned_;
  int error_ = 0;
};

}  // namespace framesink::play
