// The few things that the display asks of the operating system itself.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace framesink {

// The operating system's number of a thread; 0 is no thread.
using OsThreadId = std::uint64_t;

OsThreadId currentThread();

// True when that thread of this process has ended for good, its stack and code no longer in use.
bool isThreadGone(OsThreadId thread);

// True when that thread, whose last word of ours is said, runs no code of this library any more and
// never will again. Elsewhere that is when it is gone; on Windows a thread cannot end while another
// unloads a library, so it is when the thread is in the system's own code.
bool hasLeftLibrary(OsThreadId thread);

// True when the process is ending and the system has ended all threads but this one already, in
// whatever they were doing. Windows only: elsewhere threads live on while a process exits.
bool areOtherThreadsGone();

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

// What keeps a library loaded whatever hosts unload. Only Windows needs it, where loading and
// unloading and the beginning and end of threads exclude each other; elsewhere it is always empty.
class LibraryHold {
 public:
  LibraryHold() = default;
  // On the library or program that holds `address`; empty when none does.
  explicit LibraryHold(const void* address);
  ~LibraryHold() { letGo(); }
  LibraryHold(const LibraryHold&) = delete;
  LibraryHold(LibraryHold&& other) noexcept : library_(std::exchange(other.library_, nullptr)) {}
  LibraryHold& operator=(LibraryHold&& other) noexcept {
    std::swap(library_, other.library_);
    return *this;
  }

  // If this was the last hold, the library is unloaded soon, by a thread of the system's, so that
  // it may be the library of the code that calls this.
  void letGo();

  // Lets go and ends the calling thread, in the system's code, without a return to any of ours.
  // Does nothing when empty.
  void endThread();

 private:
  void* library_ = nullptr;
};

// On the library that this code is linked into.
LibraryHold holdThisLibrary();

// On SDL, in whose code a thread that SDL began would end.
LibraryHold holdSdl();

// Only the thread that made a window can destroy it, on Windows.
#if defined(_WIN32)
inline constexpr bool kWindowsAreTheirThreads = true;
#else
inline constexpr bool kWindowsAreTheirThreads = false;
#endif

// The operating system's number of this process.
std::uint64_t currentProcess();

// Sleeps without SDL, which may be shut down or blocked by then.
void sleepFor(std::chrono::milliseconds duration);

}  // namespace framesink
