// The few things that the display asks of the operating system itself.
#pragma once

#include <chrono>
#include <cstdint>

namespace framesink {

// The operating system's number of a thread; 0 is no thread.
using OsThreadId = std::uint64_t;

OsThreadId currentThread();

// True when that thread of this process has ended for good, its stack and code no longer in use.
bool isThreadGone(OsThreadId thread);

// The operating system's number of this process.
std::uint64_t currentProcess();

// Sleeps without SDL, which may be shut down or blocked by then.
void sleepFor(std::chrono::milliseconds duration);

}  // namespace framesink
