// The test program's operator new, in all its forms: counts allocations and fails on request.
//
// Memory that C code (SDL, X) takes with malloc is neither counted nor failed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace framesink::test {

// Allocations of the calling thread so far.
std::size_t allocationCount();

// Blocks that any thread has allocated and none has freed.
std::size_t blocksInUse();

// The allocations that a thread may still make.
struct AllocationSupply {
  std::size_t left = SIZE_MAX;  // allocations before the next failure
  bool failsOnce = false;       // true: later allocations succeed again; false: all of them fail
};

// While one lives, the calling thread is out of memory after `left` more allocations.
class OutOfMemory {
 public:
  explicit OutOfMemory(std::size_t left = 0);
  ~OutOfMemory();
  OutOfMemory(const OutOfMemory&) = delete;
  OutOfMemory& operator=(const OutOfMemory&) = delete;

 private:
  const AllocationSupply before_;
};

// Makes the calling thread's next allocation fail, and no other.
void failNextAllocation();

// While one lives, exactly one allocation fails: the `number`-th (from 1), counted on the calling
// thread or on all other threads together. Only one may live at a time.
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
