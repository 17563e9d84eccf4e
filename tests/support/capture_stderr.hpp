// What the process writes to its standard error stream during a scope.
#pragma once

#include <string>

#include "support/output_file.hpp"

namespace framesink::test {

// Redirects file descriptor 2, so it also sees what C code and other threads write. One at a time.
// While it lives, a sanitizer's report goes into it too and is lost if the process ends there: keep
// the scope short.
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
