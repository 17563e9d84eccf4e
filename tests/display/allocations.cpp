#include "allocations.hpp"

#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

thread_local std::size_t allocations = 0;
thread_local std::size_t allocationsLeft = SIZE_MAX;
thread_local bool failNext = false;

}  // namespace

std::size_t framesink::test::allocationCount() { return allocations; }

framesink::test::OutOfMemory::OutOfMemory(std::size_t left) { allocationsLeft = left; }
framesink::test::OutOfMemory::~OutOfMemory() { allocationsLeft = SIZE_MAX; }

void framesink::test::failNextAllocation() { failNext = true; }

void* operator new(std::size_t bytes) {
  if (allocationsLeft == 0 || std::exchange(failNext, false)) throw std::bad_alloc();
  if (allocationsLeft != SIZE_MAX) --allocationsLeft;
  ++allocations;
  if (void* block = std::malloc(bytes)) return block;
  throw std::bad_alloc();
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
