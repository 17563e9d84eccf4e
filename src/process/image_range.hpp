// The addresses of a loaded library or program.
#pragma once

namespace framesink {

struct ImageRange {
  const char* begin = nullptr;
  const char* end = nullptr;

  bool contains(const void* address) const { return address >= begin && address < end; }
};

// The range of the library or program that contains `address`; empty if none does. Takes the
// loader's lock, so call it on a host thread.
ImageRange imageAround(const void* address);

}  // namespace framesink
