// Memory between two pages that may not be touched.
#pragma once

#include <cstddef>
#include <cstdint>

namespace framesink {

// `capacity` bytes or a little more; the byte before begin() and the byte at end() end the process
// when they are read or written. begin() and end() are aligned to pages.
class GuardedMemory {
 public:
  explicit GuardedMemory(std::size_t capacity);  // throws std::bad_alloc
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  // While forbidden, writing ends the process, too.
  void allowWriting(bool allowed);

  std::uint8_t* begin() const { return begin_; }
  std::uint8_t* end() const { return begin_ + size_; }

 private:
  std::uint8_t* begin_;
  std::size_t size_;
};

}  // namespace framesink
