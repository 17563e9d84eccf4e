// Checks that a benchmark makes once before timing, so that it never times a wrong conversion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace framesink::bench {

// Prints `what` on standard error if `isRight` is false; wasEverythingRight() then returns false.
void demand(bool isRight, const char* what);

bool wasEverythingRight();

// The largest difference between bytes at the same index; 256 if the sizes differ.
int distance(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b);

}  // namespace framesink::bench
