#include "simd/guarded_memory.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <new>

namespace framesink {
namespace {

std::size_t pageBytes() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

}  // namespace

GuardedMemory::GuardedMemory(std::size_t capacity)
    : size_((capacity + pageBytes() - 1) / pageBytes() * pageBytes()) {
  void* const all =
      mmap(nullptr, size_ + 2 * pageBytes(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (all == MAP_FAILED) throw std::bad_alloc();
  begin_ = static_cast<std::uint8_t*>(all) + pageBytes();
  if (size_ == 0 || mprotect(begin_, size_, PROT_READ | PROT_WRITE) == 0) return;
  munmap(all, size_ + 2 * pageBytes());
  throw std::bad_alloc();
}

GuardedMemory::~GuardedMemory() { munmap(begin_ - pageBytes(), size_ + 2 * pageBytes()); }

void GuardedMemory::allowWriting(bool allowed) {
  const int access = allowed ? PROT_READ | PROT_WRITE : PROT_READ;
  if (size_ != 0 && mprotect(begin_, size_, access) != 0) throw std::bad_alloc();
}

}  // namespace framesink
