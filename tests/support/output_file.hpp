// An anonymous file in memory that collects what is written to a descriptor.
#pragma once

#include <string>

namespace framesink::test {

// Unlike a pipe, it never blocks the writer and needs no thread that reads it.
class OutputFile {
 public:
  OutputFile();
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Programs that are started do not inherit it unless it is duplicated.
  int descriptor() const { return descriptor_; }

  // Everything written so far.
  std::string text() const;

 private:
  int descriptor_;
};

}  // namespace framesink::test
