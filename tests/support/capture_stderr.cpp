#include "support/capture_stderr.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace framesink::test {

CaptureStderr::CaptureStderr() : original_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)) {
  std::fflush(stderr);
  if (original_ < 0 || dup2(file_.descriptor(), STDERR_FILENO) < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot redirect stderr");
  }
}

CaptureStderr::~CaptureStderr() {
  std::fflush(stderr);
  dup2(original_, STDERR_FILENO);
  close(original_);
}

std::string CaptureStderr::text() const {
  std::fflush(stderr);
  return file_.text();
}

}  // namespace framesink::test
