// The addresses of a loaded library or program.
#pragma once

#include <cstdint>
#include <string_view>

namespace framesink {

struct ImageRange {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;

  bool contains(std::uintptr_t address) const { return address >= begin && address < end; }
};

// The range of the library or program that contains `address`; empty if none does, or if its file
// has another name than `*name*`. Takes the
// loader's lock, so call it on a host thread.
ImageRange imageAround(std::uintptr_t address, std::string_view name = "");

}  // namespace framesink
