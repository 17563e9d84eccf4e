// A nameless file in memory that collects what somebody writes to a descriptor.
#pragma once

#include <string>

namespace framesink::test {

// Unlike a pipe it never blocks the writer and needs no thread to empty it.
class OutputFile {
 public:
  OutputFile();
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Closed in programs that are started, unless duplicated.
  int descriptor() const { return descriptor_; }

  // Everything written so far.
  std::string text() const;

 private:
  int descriptor_;
};

}  // namespace framesink::test
