// Files by their descriptors, read as bytes without translation.
#pragma once

#include <cstddef>

namespace framesink::play {

// Both return a negative number and set errno on failure.
int openFile(const char* path);
std::ptrdiff_t readSome(int descriptor, void* to, std::size_t count);

int standardInput();
void closeFile(int descriptor);

// Returns true if a read would not wait. Waits at most 50 ms for that, so that the caller can check
// for a stop signal. Always true on Windows.
bool waitForInput(int descriptor);

}  // namespace framesink::play
