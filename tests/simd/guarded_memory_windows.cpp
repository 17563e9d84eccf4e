#include <windows.h>

#include <new>

#include "simd/guarded_memory.hpp"

namespace framesink {
namespace {

std::size_t pageBytes() {
  SYSTEM_INFO system{};
  GetSystemInfo(&system);
  return system.dwPageSize;
}

}  // namespace

GuardedMemory::GuardedMemory(std::size_t capacity)
    : size_((capacity + pageBytes() - 1) / pageBytes() * pageBytes()) {
  void* const all =
      VirtualAlloc(nullptr, size_ + 2 * pageBytes(), MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS);
  if (all == nullptr) throw std::bad_alloc();
  begin_ = static_cast<std::uint8_t*>(all) + pageBytes();
  allowWriting(true);
}

GuardedMemory::~GuardedMemory() { VirtualFree(begin_ - pageBytes(), 0, MEM_RELEASE); }

void GuardedMemory::allowWriting(bool allowed) {
  DWORD previous = 0;
  const DWORD access = allowed ? PAGE_READWRITE : PAGE_READONLY;
  if (size_ != 0 && !VirtualProtect(begin_, size_, access, &previous)) throw std::bad_alloc();
}

}  // namespace framesink
