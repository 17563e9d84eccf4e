// The test program's operator new, in all its forms: counts what it hands out, and fails when told.
//
// What C code takes by malloc (SDL, X) is neither counted nor failed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace framesink::test {

// Allocations of the calling thread so far.
std::size_t allocationCount();

// Blocks of memory that any thread has taken and none has given back.
std::size_t blocksInUse();

// What a thread still gets.
struct AllocationSupply {
  std::size_t left = SIZE_MAX;  // allocations before the next failure
  bool failsOnce = false;       // and then goes on; else all later ones fail
};

// Memory runs out: while one lives, the calling thread's allocations fail after `left` more.
class OutOfMemory {
 public:
  explicit OutOfMemory(std::size_t left = 0);
  ~OutOfMemory();
  OutOfMemory(const OutOfMemory&) = delete;
  OutOfMemory& operator=(const OutOfMemory&) = delete;

 private:
  const AllocationSupply before_;
};

// Makes the calling thread's next allocation fail, and only that.
void failNextAllocation();

// While one lives, the `number`-th allocation (from 1) fails, and only that: of the calling thread,
// or of all others together. One at a time.
class FailingAllocation {
 public:
  enum class Of { kThisThread, kOtherThreads };

  explicit FailingAllocation(std::size_t number, Of threads = Of::kThisThread);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  bool hasFailed() const;

 private:
  const Of threads_;
};

}  // namespace framesink::test
