// Programs that a test starts.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/output_file.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {

struct ExitStatus {
  int code = -1;   // -1 if a signal ended the program
  int signal = 0;  // 0 if the program exited
  bool operator==(const ExitStatus&) const = default;
};

struct ChildOptions {
  // Changes to this process's environment: "NAME=value" sets a variable, "NAME" removes it.
  std::vector<std::string> environment;
  // False: the child writes to this process's stdout and stderr.
  bool captureOutput = true;
  // The signal that the destructor sends, and the kernel when the test process dies.
  int endSignal = SIGKILL;
};

// The child's stdin is empty, and it inherits no other descriptor. It does not outlive the thread
// that started it, so start it on the main thread.
class ChildProcess {
 public:
  // `command` is the program, looked up in PATH, and its arguments. Throws std::system_error if the
  // program cannot be started.
  explicit ChildProcess(const std::vector<std::string>& command, const ChildOptions& options = {});
  // Ends the child with the end signal, repeated for 5 s, then with SIGKILL.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }
  bool isRunning();
  // Returns nullopt if the child still runs after `deadline`.
  std::optional<ExitStatus> wait(std::chrono::milliseconds deadline = kDeadline);
  void signal(int number);

  // Everything written so far; "" if output is not captured.
  std::string standardOutput() const;
  std::string standardError() const;

 private:
  pid_t pid_ = -1;
  int endSignal_;
  std::optional<ExitStatus> status_;
  std::unique_ptr<OutputFile> output_;
  std::unique_ptr<OutputFile> error_;
};

}  // namespace framesink::test
