// What the library asks of the operating system directly.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace framesink {

// The operating system's id of a thread; 0 is no thread.
using OsThreadId = std::uint64_t;

OsThreadId currentThread();

// True once that thread of this process has ended and uses neither its stack nor any code.
bool isThreadGone(OsThreadId thread);

// True once a thread that has finished our work can never run this library's code again. A thread
// must be gone for that, except on Windows: there it cannot end while another thread unloads a
// library, so it is enough that the thread runs code outside this library.
bool hasLeftLibrary(OsThreadId thread);

// True if the process is ending and the operating system has already ended all other threads,
// wherever they were. Windows only: elsewhere, threads live on while a process exits.
bool areOtherThreadsGone();

// The part of a thread's stack that nothing needs once the thread is gone. A thread that is neither
// joined nor detached keeps its stack; giveBack returns the memory of this part. Empty where the
// part is not known.
struct DeadStack {
  void* lowest = nullptr;
  std::size_t bytes = 0;
};

// The dead stack that the calling thread will leave.
DeadStack currentThreadStack();

// Returns the memory to the operating system; the addresses stay taken. Call it only once the
// thread is gone.
void giveBack(DeadStack stack);

// Keeps a library loaded, whatever hosts unload. Only Windows needs it, because there the loading
// and unloading of libraries and the start and end of threads exclude one another. Elsewhere it is
// always empty.
class LibraryHold {
 public:
  LibraryHold() = default;
  // Holds the library or program that contains `address`; empty if none does.
  explicit LibraryHold(const void* address);
  ~LibraryHold() { letGo(); }
  LibraryHold(const LibraryHold&) = delete;
  LibraryHold(LibraryHold&& other) noexcept : library_(std::exchange(other.library_, nullptr)) {}
  LibraryHold& operator=(LibraryHold&& other) noexcept {
    std::swap(library_, other.library_);
    return *this;
  }

  // If this was the last hold, a thread of the operating system unloads the library soon
  // afterwards. So the library may let go of itself.
  void letGo();

  // Lets go and ends the calling thread inside the operating system's code, without returning to
  // the caller. Does nothing if empty.
  void endThread();

 private:
  void* library_ = nullptr;
};

// Holds the library that this code is linked into.
LibraryHold holdThisLibrary();

// Holds SDL, because a thread that SDL started ends in SDL's code.
LibraryHold holdSdl();

// On Windows, only the thread that made a window can destroy it.
#if defined(_WIN32)
inline constexpr bool kWindowsAreTheirThreads = true;
#else
inline constexpr bool kWindowsAreTheirThreads = false;
#endif

// The operating system's id of this process.
std::uint64_t currentProcess();

// Sleeps without SDL, which may already be shut down or blocked.
void sleepFor(std::chrono::milliseconds duration);

}  // namespace framesink
