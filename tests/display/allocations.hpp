// Counts what the test program's operator new hands out, and makes it fail.
#pragma once

#include <cstddef>

namespace framesink::test {

// Allocations of the calling thread so far.
std::size_t allocationCount();

// Memory runs out: while one lives, the calling thread's allocations fail after `left` more.
class OutOfMemory {
 public:
  explicit OutOfMemory(std::size_t left = 0);
  ~OutOfMemory();
  OutOfMemory(const OutOfMemory&) = delete;
  OutOfMemory& operator=(const OutOfMemory&) = delete;
};

// Makes the calling thread's next allocation fail, and only that.
void failNextAllocation();

}  // namespace framesink::test
