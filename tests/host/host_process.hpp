// A host under test: one of the C programs of this folder, and what its end should look like.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/child_process.hpp"

namespace framesink::test {

class HostProcess {
 public:
  // `program` of this folder, with the library's path as its first argument.
  explicit HostProcess(const std::string& program, std::vector<std::string> arguments = {},
                       std::vector<std::string> environment = {});

  ChildProcess& process() { return process_; }
  bool isRunning() { return process_.isRunning(); }

  bool hasSaid(const std::string& line) const;

  // Waits until the host has written that line.
  testing::AssertionResult says(const std::string& line);

  // Waits for the end: that status, by itself, without a word from a sanitizer. Nothing else may
  // have been written to standard error either.
  testing::AssertionResult endsWith(int status, std::chrono::milliseconds deadline = kDeadline);

  // The same for an end during which something is written to standard error.
  testing::AssertionResult endsNoisilyWith(int status, std::chrono::milliseconds deadline);

  testing::AssertionResult endsBySignal(int signal, std::chrono::milliseconds deadline);

  std::string output() const { return process_.standardOutput(); }
  std::string error() const { return process_.standardError(); }

 private:
  testing::AssertionResult ends(const ExitStatus& expected, std::chrono::milliseconds deadline);

  ChildProcess process_;
};

}  // namespace framesink::test
