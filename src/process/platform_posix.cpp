#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "process/platform.hpp"

namespace framesink {

OsThreadId currentThread() { return static_cast<OsThreadId>(::syscall(SYS_gettid)); }

bool isThreadGone(OsThreadId thread) {
  return ::syscall(SYS_tgkill, ::getpid(), thread, 0) != 0 && errno == ESRCH;
}

bool hasLeftLibrary(OsThreadId thread) { return isThreadGone(thread); }

bool areOtherThreadsGone() { return false; }

// dlclose neither waits for other threads nor keeps them from starting or ending, so there is
// nothing to hold.
LibraryHold::LibraryHold(const void*) {}
void LibraryHold::letGo() {}
void LibraryHold::endThread() {}
LibraryHold holdThisLibrary() { return {}; }
LibraryHold holdSdl() { return {}; }

// The C library's record of a thread lies at the top of the thread's stack; pthread_self() is its
// address. The record stays in use after the thread has ended, but the pages below the record's do
// not.
DeadStack currentThreadStack() {
  DeadStack stack;
#if defined(__GLIBC__)
  pthread_attr_t attributes;
  if (::pthread_getattr_np(::pthread_self(), &attributes) != 0) return stack;
  std::size_t bytes = 0;
  ::pthread_attr_getstack(&attributes, &stack.lowest, &bytes);
  ::pthread_attr_destroy(&attributes);
  const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  const auto lowest = reinterpret_cast<std::uintptr_t>(stack.lowest);
  const auto record = static_cast<std::uintptr_t>(::pthread_self()) / page * page;
  if (record > lowest && record < lowest + bytes) stack.bytes = record - lowest;
#endif
  return stack;
}

void giveBack(DeadStack stack) {
  if (stack.bytes != 0) ::madvise(stack.lowest, stack.bytes, MADV_DONTNEED);
}

std::uint64_t currentProcess() { return static_cast<std::uint64_t>(::getpid()); }

void sleepFor(std::chrono::milliseconds duration) {
  timespec rest{.tv_sec = static_cast<time_t>(duration.count() / 1000),
                .tv_nsec = static_cast<long>(duration.count() % 1000 * 1'000'000)};
  while (::nanosleep(&rest, &rest) != 0 && errno == EINTR) {
  }
}

}  // namespace framesink
