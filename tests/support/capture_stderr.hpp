// Captures the process's standard error stream for a scope.
#pragma once

#include <string>

#include "support/output_file.hpp"

namespace framesink::test {

// Redirects file descriptor 2, so it also captures what C code and other threads write. One at a
// time. A sanitizer's report goes into it too and is lost if the process ends then, so keep the
// scope short.
class CaptureStderr {
 public:
  CaptureStderr();
  ~CaptureStderr();
  CaptureStderr(const CaptureStderr&) = delete;
  CaptureStderr& operator=(const CaptureStderr&) = delete;

  // Everything written so far.
  std::string text() const;

 private:
  OutputFile file_;
  int original_;
};

}  // namespace framesink::test
