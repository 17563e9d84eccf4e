#include "support/allocations.hpp"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace framesink::test {
namespace {

thread_local std::size_t allocations = 0;
thread_local AllocationSupply supply;

// Unordered, because counting must not hide races from the thread sanitizer.
constexpr auto kUnordered = std::memory_order_relaxed;
std::atomic<std::size_t> inUse{0};

// Identifies the thread whose allocations never fail by the address of its `supply`, while those of
// all other threads may. Null: threads do not make each other's allocations fail.
std::atomic<const AllocationSupply*> spared{nullptr};
std::atomic<std::int64_t> othersLeft{0};

bool isExhausted() {
  if (supply.left == SIZE_MAX || supply.left-- > 0) return false;
  supply.left = supply.failsOnce ? SIZE_MAX : 0;
  return true;
}

bool isOtherExhausted() {
  const AllocationSupply* const sparedThread = spared.load(kUnordered);
  if (sparedThread == nullptr || sparedThread == &supply) return false;
  return othersLeft.fetch_sub(1, kUnordered) == 0;
}

void* take(void* block) {
  if (block == nullptr) throw std::bad_alloc();
  ++allocations;
  inUse.fetch_add(1, kUnordered);
  return block;
}

void failWhenExhausted() {
  if (isExhausted() || isOtherExhausted()) throw std::bad_alloc();
}

// On Windows, aligned memory must be freed with _aligned_free, so all memory there is allocated
// aligned.
#if defined(_WIN32)
void* block(std::size_t bytes, std::size_t unit) { return _aligned_malloc(bytes, unit); }
void* block(std::size_t bytes) { return block(bytes, alignof(std::max_align_t)); }
void freeBlock(void* block) { _aligned_free(block); }
#else
void* block(std::size_t bytes, std::size_t unit) {
  return std::aligned_alloc(unit, (bytes + unit - 1) / unit * unit);
}
void* block(std::size_t bytes) { return std::malloc(bytes); }
void freeBlock(void* block) { std::free(block); }
#endif

void* allocate(std::size_t bytes) {
  failWhenExhausted();
  return take(block(bytes == 0 ? 1 : bytes));
}

void* allocate(std::size_t bytes, std::align_val_t alignment) {
  failWhenExhausted();
  return take(block(bytes, static_cast<std::size_t>(alignment)));
}

template <class... Arguments>
void* allocateOrNull(Arguments... arguments) noexcept {
  try {
    return allocate(arguments...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void giveBack(void* block) noexcept {
  if (block == nullptr) return;
  inUse.fetch_sub(1, kUnordered);
  freeBlock(block);
}

}  // namespace

std::size_t allocationCount() { return allocations; }
std::size_t blocksInUse() { return inUse.load(kUnordered); }

OutOfMemory::OutOfMemory(std::size_t left) : before_(supply) { supply = {.left = left}; }
OutOfMemory::~OutOfMemory() { supply = before_; }

void failNextAllocation() { supply = {.left = 0, .failsOnce = true}; }

FailingAllocation::FailingAllocation(std::size_t number, Of threads) : threads_(threads) {
  if (threads == Of::kThisThread) {
    supply = {.left = number - 1, .failsOnce = true};
  } else {
    othersLeft = static_cast<std::int64_t>(number) - 1;
    spared = &supply;
  }
}

FailingAllocation::~FailingAllocation() {
  if (threads_ == Of::kThisThread) {
    supply = {};
  } else {
    spared = nullptr;
  }
}

bool FailingAllocation::hasFailed() const {
  return threads_ == Of::kThisThread ? supply.left == SIZE_MAX : othersLeft < 0;
}

}  // namespace framesink::test

using framesink::test::allocate;
using framesink::test::allocateOrNull;
using framesink::test::giveBack;
using Alignment = std::align_val_t;
using NoThrow = std::nothrow_t;

// Every form, because sanitizers replace each form separately.
void* operator new(std::size_t bytes) { return allocate(bytes); }
void* operator new[](std::size_t bytes) { return allocate(bytes); }
void* operator new(std::size_t bytes, const NoThrow&) noexcept { return allocateOrNull(bytes); }
void* operator new[](std::size_t bytes, const NoThrow&) noexcept { return allocateOrNull(bytes); }
void* operator new(std::size_t bytes, Alignment unit) { return allocate(bytes, unit); }
void* operator new[](std::size_t bytes, Alignment unit) { return allocate(bytes, unit); }
void* operator new(std::size_t bytes, Alignment unit, const NoThrow&) noexcept {
  return allocateOrNull(bytes, unit);
}
void* operator new[](std::size_t bytes, Alignment unit, const NoThrow&) noexcept {
  return allocateOrNull(bytes, unit);
}

void operator delete(void* block) noexcept { giveBack(block); }
void operator delete[](void* block) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t) noexcept { giveBack(block); }
void operator delete[](void* block, std::size_t) noexcept { giveBack(block); }
void operator delete(void* block, const NoThrow&) noexcept { giveBack(block); }
void operator delete[](void* block, const NoThrow&) noexcept { giveBack(block); }
void operator delete(void* block, Alignment) noexcept { giveBack(block); }
void operator delete[](void* block, Alignment) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t, Alignment) noexcept { giveBack(block); }
void operator delete[](void* block, std::size_t, Alignment) noexcept { giveBack(block); }
void operator delete(void* block, Alignment, const NoThrow&) noexcept { giveBack(block); }
void operator delete[](void* block, Alignment, const NoThrow&) noexcept { giveBack(block); }
