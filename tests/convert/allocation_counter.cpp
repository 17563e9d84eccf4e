#include "allocation_counter.hpp"

#include <cstdlib>
#include <new>

namespace {
thread_local std::size_t allocations = 0;
}

std::size_t framesink::allocationCount() { return allocations; }

void* operator new(std::size_t bytes) {
  ++allocations;
  if (void* block = std::malloc(bytes)) return block;
  throw std::bad_alloc();
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
