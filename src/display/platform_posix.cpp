#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "display/platform.hpp"

namespace framesink {

OsThreadId currentThread() { return static_cast<OsThreadId>(::syscall(SYS_gettid)); }

bool isThreadGone(OsThreadId thread) {
  return ::syscall(SYS_tgkill, ::getpid(), thread, 0) != 0 && errno == ESRCH;
}

std::uint64_t currentProcess() { return static_cast<std::uint64_t>(::getpid()); }

void sleepFor(std::chrono::milliseconds duration) {
  timespec rest{.tv_sec = static_cast<time_t>(duration.count() / 1000),
                .tv_nsec = static_cast<long>(duration.count() % 1000 * 1'000'000)};
  while (::nanosleep(&rest, &rest) != 0 && errno == EINTR) {
  }
}

}  // namespace framesink
