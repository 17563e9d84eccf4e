// Counts what the test program's operator new hands out, to show that a call allocates nothing.
#pragma once

#include <cstddef>

namespace framesink {

// Allocations of the calling thread so far.
std::size_t allocationCount();

}  // namespace framesink
