#include "host_process.hpp"

namespace framesink::test {
namespace {

std::vector<std::string> commandOf(const std::string& program,
                                   const std::vector<std::string>& arguments) {
#if defined(HOST_RUNNER)  // the command that runs Windows programs
  std::vector<std::string> command{HOST_RUNNER, HOST_FOLDER "/" + program + ".exe",
                                   FRAMESINK_LIBRARY};
#else
  std::vector<std::string> command{HOST_FOLDER "/" + program, FRAMESINK_LIBRARY};
#endif
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

bool hasReport(const std::string& error) {
  return error.find("Sanitizer") != std::string::npos ||
         error.find("runtime error:") != std::string::npos;
}

// The leak sanitizer lists the leaks that it suppressed on standard error, which is no error.
bool isWorthAWord(const std::string& error) {
  return !error.empty() && error.find("Suppressions used:") == std::string::npos;
}

}  // namespace

HostProcess::HostProcess(const std::string& program, std::vector<std::string> arguments,
                         std::vector<std::string> environment)
    : process_(commandOf(program, arguments), {.environment = std::move(environment)}) {}

bool HostProcess::hasSaid(const std::string& line) const {
  return ("\n" + output()).find("\n" + line + "\n") != std::string::npos;
}

testing::AssertionResult HostProcess::says(const std::string& line) {
  waitUntil([&] { return hasSaid(line) || !isRunning(); });
  if (hasSaid(line)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "has not printed \"" << line << "\" but:\n"
                                     << output() << error();
}

testing::AssertionResult HostProcess::ends(const ExitStatus& expected,
                                           std::chrono::milliseconds deadline) {
  const auto status = process_.wait(deadline);
  if (!status) {
    return testing::AssertionFailure() << "still runs after " << deadline.count() << " ms";
  }
  if (*status == expected && !hasReport(error())) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "ended with status " << status->code << ", signal " << status->signal << ":\n"
         << output() << error();
}

testing::AssertionResult HostProcess::endsWith(int status, std::chrono::milliseconds deadline) {
  const testing::AssertionResult result = endsNoisilyWith(status, deadline);
  if (!result || !isWorthAWord(error())) return result;
  return testing::AssertionFailure() << "wrote to standard error:\n" << error();
}

testing::AssertionResult HostProcess::endsNoisilyWith(int status,
                                                      std::chrono::milliseconds deadline) {
  return ends({.code = status, .signal = 0}, deadline);
}

testing::AssertionResult HostProcess::endsBySignal(int signal, std::chrono::milliseconds deadline) {
  return ends({.code = -1, .signal = signal}, deadline);
}

}  // namespace framesink::test
