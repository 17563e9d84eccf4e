// Sanitizers bring array forms of their own, which would escape the counting of allocations.
#include <new>

void* operator new[](std::size_t bytes) { return operator new(bytes); }
void operator delete[](void* block) noexcept { operator delete(block); }
void operator delete[](void* block, std::size_t) noexcept { operator delete(block); }
