#include "demand.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace framesink::bench {
namespace {
bool everythingRight = true;
}

void demand(bool isRight, const char* what) {
  if (isRight) return;
  std::fprintf(stderr, "wrong bytes: %s\n", what);
  everythingRight = false;
}

bool wasEverythingRight() { return everythingRight; }

int distance(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
  int largest = a.size() == b.size() ? 0 : 256;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    largest = std::max(largest, std::abs(a[i] - b[i]));
  }
  return largest;
}

}  // namespace framesink::bench
