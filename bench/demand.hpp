// What is timed must be right: everything is checked once before the clock runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace framesink::bench {

// Tells standard error what is wrong; the program then fails in the end.
void demand(bool isRight, const char* what);

bool wasEverythingRight();

// The largest difference of two bytes at the same place.
int distance(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b);

}  // namespace framesink::bench
