// A player that a test starts ends with the test.
#include "player_process.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace framesink::play {
namespace {

// Acts as a test that starts an endless player, writes the player's process id to `out` and is
// killed.
[[noreturn]] void beKilledWhilePlaying(const Scratch& scratch, int out) {
  setenv("TMPDIR", (scratch / "").c_str(), 1);
  const auto dieOncePlaying = [out](pid_t player, const std::vector<std::string>& calls) {
    if (calls.empty()) return;
    if (write(out, &player, sizeof player) == sizeof player) kill(getpid(), SIGKILL);
  };
  runPlayer({}, Setting{.meanwhile = dieOncePlaying});
  _exit(1);
}

TEST(PlayerProcess, EndsWithItsTest) {
  const Scratch scratch;
  int ends[2];  // the player inherits the second one, so the first one reports the player's end
  ASSERT_EQ(pipe(ends), 0);
  const pid_t test = fork();
  if (test == 0) beKilledWhilePlaying(scratch, ends[1]);
  close(ends[1]);
  pid_t player = 0;
  ASSERT_EQ(read(ends[0], &player, sizeof player), static_cast<ssize_t>(sizeof player));
  waitpid(test, nullptr, 0);
  pollfd closed{ends[0], POLLIN, 0};
  const bool ended = poll(&closed, 1, 20'000) == 1;
  EXPECT_TRUE(ended);
  if (!ended) kill(player, SIGKILL);
  close(ends[0]);
}

}  // namespace
}  // namespace framesink::play
