#include "support/child_process.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <system_error>

#include "support/os_facts.hpp"
#include "support/scoped_variable.hpp"

namespace framesink::test {
namespace {

using std::chrono::milliseconds;

TEST(ChildProcess, ReportsTheExitCode) {
  ChildProcess child({"sh", "-c", "exit 7"});
  EXPECT_EQ(child.wait(), (ExitStatus{.code = 7, .signal = 0}));
}

TEST(ChildProcess, ReportsTheSignal) {
  ChildProcess child({"sleep", "100"});
  EXPECT_EQ(child.wait(milliseconds(20)), std::nullopt);
  EXPECT_TRUE(child.isRunning());
  child.signal(SIGTERM);
  EXPECT_EQ(child.wait(), (ExitStatus{.code = -1, .signal = SIGTERM}));
  EXPECT_FALSE(child.isRunning());
}

TEST(ChildProcess, CapturesBothStreamsApart) {
  ChildProcess child({"sh", "-c", "echo out; echo error >&2; cat"});
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  EXPECT_EQ(child.standardOutput(), "out\n");
  EXPECT_EQ(child.standardError(), "error\n");
}

TEST(ChildProcess, CapturesMoreThanAPipeHolds) {
  ChildProcess child({"head", "-c", "1000000", "/dev/zero"});
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  EXPECT_EQ(child.standardOutput().size(), 1'000'000U);
}

TEST(ChildProcess, PassesArgumentsUnchanged) {
  ChildProcess child({"printf", "[%s]", "a b", "", "$HOME"});
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  EXPECT_EQ(child.standardOutput(), "[a b][][$HOME]");
}

TEST(ChildProcess, ChangesTheEnvironment) {
  const ScopedVariable kept("FRAMESINK_KEPT", "kept");
  const ScopedVariable replaced("FRAMESINK_REPLACED", "old");
  const ScopedVariable removed("FRAMESINK_REMOVED", "old");
  ChildProcess child({"env"}, {.environment = {"FRAMESINK_REPLACED=new", "FRAMESINK_REMOVED"}});
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  const std::string output = "\n" + child.standardOutput();
  EXPECT_NE(output.find("\nFRAMESINK_KEPT=kept\n"), std::string::npos);
  EXPECT_NE(output.find("\nFRAMESINK_REPLACED=new\n"), std::string::npos);
  EXPECT_EQ(output.find("\nFRAMESINK_REPLACED=old\n"), std::string::npos);
  EXPECT_EQ(output.find("\nFRAMESINK_REMOVED"), std::string::npos);
}

TEST(ChildProcess, KeepsItsDescriptorsToItself) {
  const int inheritable = open("/dev/null", O_RDONLY);
  const std::string path = "/proc/self/fd/" + std::to_string(inheritable);
  ChildProcess child({"test", "-e", path});
  EXPECT_EQ(child.wait(), ExitStatus{.code = 1});
  close(inheritable);
}

TEST(ChildProcess, SaysWhyAProgramCannotBeStarted) {
  const std::size_t descriptors = openFileDescriptors();
  try {
    ChildProcess child({"no-such-program-anywhere"});
    FAIL() << "started";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    EXPECT_NE(std::string(error.what()).find("no-such-program-anywhere"), std::string::npos);
  }
  EXPECT_EQ(openFileDescriptors(), descriptors);
}

TEST(ChildProcess, EndsItsChildOnDestruction) {
  pid_t pid = -1;
  {
    ChildProcess child({"sleep", "100"});
    pid = child.pid();
    EXPECT_EQ(kill(pid, 0), 0);
  }
  EXPECT_EQ(kill(pid, 0), -1);
}

// Forks, because the process that starts the child must die.
TEST(ChildProcess, DiesWithTheProcessThatStartedIt) {
  // Orphans become children of this process, so that it can wait for them.
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  std::array<int, 2> channel{};
  ASSERT_EQ(pipe(channel.data()), 0);
  const pid_t starter = fork();
  if (starter == 0) {
    const ChildProcess child({"sleep", "100"});
    const pid_t pid = child.pid();
    if (write(channel[1], &pid, sizeof pid) != sizeof pid) _exit(1);
    for (;;) pause();
  }
  pid_t orphan = -1;
  ASSERT_EQ(read(channel[0], &orphan, sizeof orphan), static_cast<ssize_t>(sizeof orphan));
  kill(starter, SIGKILL);
  waitpid(starter, nullptr, 0);
  int status = 0;
  const bool died = waitUntil([&] { return waitpid(orphan, &status, WNOHANG) == orphan; });
  if (!died) kill(orphan, SIGKILL);
  EXPECT_TRUE(died);
  EXPECT_TRUE(WIFSIGNALED(status));
}

}  // namespace
}  // namespace framesink::test
