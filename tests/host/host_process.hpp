// A host under test, which is one of the C programs of this folder, and checks of how it ends.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/child_process.hpp"

namespace framesink::test {

class HostProcess {
 public:
  // Starts `program` of this folder, with the library's path as its first argument.
  explicit HostProcess(const std::string& program, std::vector<std::string> arguments = {},
                       std::vector<std::string> environment = {});

  ChildProcess& process() { return process_; }
  bool isRunning() { return process_.isRunning(); }

  bool hasSaid(const std::string& line) const;

  // Waits until the host has printed that line.
  testing::AssertionResult says(const std::string& line);

  // Waits until the host ends by itself with that status. Nothing may have been printed on standard
  // error, by a sanitizer or by anything else.
  testing::AssertionResult endsWith(int status, std::chrono::milliseconds deadline = kDeadline);

  // Like endsWith(), but only a sanitizer's report on standard error counts as a failure.
  testing::AssertionResult endsNoisilyWith(int status, std::chrono::milliseconds deadline);

  testing::AssertionResult endsBySignal(int signal, std::chrono::milliseconds deadline);

  std::string output() const { return process_.standardOutput(); }
  std::string error() const { return process_.standardError(); }

 private:
  testing::AssertionResult ends(const ExitStatus& expected, std::chrono::milliseconds deadline);

  ChildProcess process_;
};

}  // namespace framesink::test
