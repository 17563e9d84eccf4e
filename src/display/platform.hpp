// The few things that the display asks of the operating system itself.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace framesink {

// The operating system's number of a thread; 0 is no thread.
using OsThreadId = std::uint64_t;

OsThreadId currentThread();

// True when that thread of this process has ended for good, its stack and code no longer in use.
bool isThreadGone(OsThreadId thread);

// The part of a thread's stack that nothing needs any more once the thread is gone. The system
// keeps the stack of a thread that is neither joined nor detached; this part of it can be given
// back. Empty where the system does not tell.
struct DeadStack {
  void* lowest = nullptr;
  std::size_t bytes = 0;
};

// That of the calling thread.
DeadStack currentThreadStack();

// Gives its memory back to the system; the addresses stay taken. Only when that thread is gone.
void giveBack(DeadStack stack);

// The operating system's number of this process.
std::uint64_t currentProcess();

// Sleeps without SDL, which may be shut down or blocked by then.
void sleepFor(std::chrono::milliseconds duration);

}  // namespace framesink
