#include "support/child_process.hpp"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <system_error>

namespace framesink::test {
namespace {

constexpr std::chrono::milliseconds kGrace{100};
constexpr int kPoliteAttempts = 50;

std::string nameOf(const std::string& variable) { return variable.substr(0, variable.find('=')); }

std::vector<std::string> environmentWith(const std::vector<std::string>& changes) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry; ++entry) {
    const auto replaces = [&](const std::string& c) { return nameOf(c) == nameOf(*entry); };
    if (std::none_of(changes.begin(), changes.end(), replaces)) result.emplace_back(*entry);
  }
  std::copy_if(changes.begin(), changes.end(), std::back_inserter(result),
               [](const std::string& c) { return c.find('=') != std::string::npos; });
  return result;
}

// A null-terminated array of pointers into `strings`.
std::vector<char*> pointersTo(const std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (const std::string& string : strings) pointers.push_back(const_cast<char*>(string.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

struct Launch {
  char* const* arguments;
  char* const* environment;
  int output;  // -1: inherits this process's streams
  int error;
  int endSignal;
  int report;  // receives errno when the program cannot be executed
  pid_t parent;
};

// Runs between fork and exec, so it makes only async-signal-safe calls.
[[noreturn]] void becomeProgram(const Launch& launch) {
  prctl(PR_SET_PDEATHSIG, launch.endSignal);
  if (getppid() != launch.parent) _exit(127);  // the parent died before prctl took effect
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  if (launch.output >= 0) dup2(launch.output, STDOUT_FILENO);
  if (launch.error >= 0) dup2(launch.error, STDERR_FILENO);
  close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
  execvpe(launch.arguments[0], launch.arguments, launch.environment);
  const int failure = errno;
  [[maybe_unused]] const ssize_t written = write(launch.report, &failure, sizeof failure);
  _exit(127);
}

ExitStatus decode(int status) {
  if (WIFSIGNALED(status)) return {.code = -1, .signal = WTERMSIG(status)};
  return {.code = WEXITSTATUS(status), .signal = 0};
}

// Returns 0 once the program runs, or errno of the failed start.
int readReport(int descriptor) {
  int failure = 0;
  while (read(descriptor, &failure, sizeof failure) < 0 && errno == EINTR) {
  }
  return failure;
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, const ChildOptions& options)
    : endSignal_(options.endSignal) {
  if (options.captureOutput) {
    output_ = std::make_unique<OutputFile>();
    error_ = std::make_unique<OutputFile>();
  }
  const std::vector<std::string> environment = environmentWith(options.environment);
  const std::vector<char*> arguments = pointersTo(command);
  const std::vector<char*> variables = pointersTo(environment);
  std::array<int, 2> report{};
  if (pipe2(report.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe2");
  }
  const Launch launch{arguments.data(),
                      variables.data(),
                      output_ ? output_->descriptor() : -1,
                      error_ ? error_->descriptor() : -1,
                      endSignal_,
                      report[1],
                      getpid()};
  pid_ = fork();
  if (pid_ == 0) becomeProgram(launch);
  int failure = pid_ < 0 ? errno : 0;
  close(report[1]);
  if (pid_ > 0) failure = readReport(report[0]);
  close(report[0]);
  if (failure == 0) return;
  if (pid_ > 0) waitpid(pid_, nullptr, 0);
  throw std::system_error(failure, std::generic_category(), "cannot start " + command.at(0));
}

ChildProcess::~ChildProcess() {
  for (int i = 0; i < kPoliteAttempts; ++i) {
    signal(endSignal_);
    if (wait(kGrace)) return;
  }
  signal(SIGKILL);
  wait();
}

bool ChildProcess::isRunning() {
  if (status_) return false;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) == pid_) status_ = decode(status);
  return !status_;
}

std::optional<ExitStatus> ChildProcess::wait(std::chrono::milliseconds deadline) {
  waitUntil([this] { return !isRunning(); }, deadline);
  return status_;
}

void ChildProcess::signal(int number) {
  if (isRunning()) kill(pid_, number);
}

std::string ChildProcess::standardOutput() const { return output_ ? output_->text() : ""; }

std::string ChildProcess::standardError() const { return error_ ? error_->text() : ""; }

}  // namespace framesink::test
