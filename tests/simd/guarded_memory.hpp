// Memory between two guard pages.
#pragma once

#include <cstddef>
#include <cstdint>

namespace framesink {

// At least `capacity` bytes. Reading or writing the byte before begin(), or the one at end(), ends
// the process. begin() and end() are aligned to pages.
class GuardedMemory {
 public:
  explicit GuardedMemory(std::size_t capacity);  // throws std::bad_alloc
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  // While writing is not allowed, a write inside the memory ends the process, too.
  void allowWriting(bool allowed);

  std::uint8_t* begin() const { return begin_; }
  std::uint8_t* end() const { return begin_ + size_; }

 private:
  std::uint8_t* begin_;
  std::size_t size_;
};

}  // namespace framesink
