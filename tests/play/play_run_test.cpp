// The course of a run: how long framesink-play plays, and what ends it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <functional>

#include "player_process.hpp"

namespace framesink::play {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

// ---- The course of a run ----

TEST(PlayRun, CallsInAHostsOrderAndUnloads) {
  const Outcome outcome = runPlayer({"--type", "uint8", "--frames", "2", "--fps", "max"});
  std::vector<std::string> names;
  for (const std::string& call : outcome.calls) names.push_back(call.substr(0, call.find(' ')));
  EXPECT_THAT(names, ElementsAre("libCreate", "description", "libStart", "libUpdate", "libUpdate",
                                 "libTerminate", "libDestroy", "unloaded"));
}

TEST(PlayRun, SumsUpInOneLineOnStandardError) {
  const Outcome outcome = runPlayer({"--frames", "5", "--fps", "max"});
  EXPECT_THAT(outcome.err,
              testing::MatchesRegex("framesink-play: 5 frames, [0-9.]+ fps, host time per frame "
                                    "[0-9.]+ ms median, [0-9.]+ ms p99\n"));
  EXPECT_THAT(outcome.out, IsEmpty());
}

TEST(PlayRun, KeepsALiveLineOnATerminal) {
  const Outcome outcome = runPlayer({"--duration", "1.2"}, Setting{.terminal = true});
  // Two carriage returns are no rewrites: the summary line begins with one, and the terminal ends
  // that line with another.
  const auto rewrites = std::ranges::count(outcome.err, '\r') - 2;
  EXPECT_THAT(rewrites, AllOf(Ge(2), Le(1 + 5 * outcome.seconds))) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr("fps  host "));
  EXPECT_THAT(outcome.err, HasSubstr("\rframesink-play: "));
}

TEST(PlayRun, KeepsTheFramesPerSecondAskedFor) {
  const Outcome outcome = runPlayer({"--type", "uint8", "--frames", "10", "--fps", "20"});
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(10));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.5), Le(5.0)));
}

TEST(PlayRun, DoesNotRaceAfterALongDelay) {
  const Outcome outcome =
      runIn({{"STUB_SLOW_START", "1"}}, {"--type", "uint8", "--frames", "6", "--fps", "10"});
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(6));
  EXPECT_THAT(outcome.seconds, Ge(1.5));
}

// Frames that a busy machine delays for long are left out.
TEST(PlayRun, EndsAfterItsDuration) {
  const Outcome outcome = runPlayer({"--type", "uint8", "--duration", "0.5", "--fps", "10"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(AllOf(Ge(1u), Le(5u))));
  EXPECT_THAT(outcome.seconds, Ge(0.5));
}

TEST(PlayRun, HoldsTheLastFrame) {
  const Outcome outcome = runPlayer({"--type", "uint8", "--frames", "1", "--hold", "0.5"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(1));
  EXPECT_THAT(outcome.seconds, Ge(0.5));
}

TEST(PlayRun, RepeatsTheHeldFrameForSynchronousWindows) {
  const Scratch scratch;
  const Outcome outcome = runPlayer({"--type", "uint8", "--size", "16x16", "--kind", "intensity",
                                     "--frames", "2", "--hold", "0.5", "--sync"});
  const auto updates = outcome.callsOf("libUpdate");
  EXPECT_THAT(updates.size(), AllOf(Ge(3u), Le(20u)));
  EXPECT_NE(updates[0], updates[1]);
  EXPECT_EQ(updates[1], updates.back());
  EXPECT_THAT(outcome.err, HasSubstr(" 2 frames"));
}

TEST(PlayRun, HoldsUntilTheWindowsAreClosed) {
  const Outcome outcome =
      runPlayer({"--type", "uint8", "--frames", "1", "--hold"}, Setting{.closeAfter = 0.5});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), SizeIs(1));
  EXPECT_THAT(outcome.seconds, AllOf(Ge(0.5), Le(5)));
}

TEST(PlayRun, EndsAHoldOfSecondsWhenTheWindowsAreClosed) {
  const Outcome outcome =
      runPlayer({"--type", "uint8", "--frames", "1", "--hold", "50"}, Setting{.closeAfter = 0.1});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.seconds, Le(10));
}

// At least one frame for each of the three windows: a busy machine may leave no time for more.
TEST(PlayRun, EndsWhenAllWindowsAreClosed) {
  const Outcome outcome = runPlayer({}, Setting{.closeAfter = 1});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate").size(), Ge(3u));
  EXPECT_THAT(outcome.callsOf("libDestroy"), SizeIs(3));
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

TEST(PlayRun, WaitingForAFrameEndsWhenAllWindowsAreClosed) {
  const Outcome outcome = runPlayer({"--fps", "0.02"}, Setting{.closeAfter = 0.1});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.seconds, Le(10));
}

TEST(PlayRun, SendsNothingToAClosedWindow) {
  // The stub's window is open at the first query and closed at the one before the frame.
  const Outcome outcome = runIn({{"STUB_CLOSE_AFTER", "2"}}, {"--type", "uint8", "--frames", "1"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.callsOf("libUpdate"), IsEmpty());
}

// ---- Signals ----

class PlaySignal : public testing::TestWithParam<int> {};

// Returns a function that sends the signal once, after the first frame.
std::function<void(pid_t, const std::vector<std::string>&)> signalAfterFirstFrame(int number) {
  return [number, sent = false](pid_t player, const std::vector<std::string>& calls) mutable {
    const bool playing = std::ranges::any_of(
        calls, [](const std::string& call) { return call.starts_with("libUpdate"); });
    if (playing && !sent) sent = kill(player, number) == 0;
  };
}

TEST_P(PlaySignal, CleansUpAndDiesByIt) {
  const Outcome outcome = runPlayer({}, Setting{.meanwhile = signalAfterFirstFrame(GetParam())});
  EXPECT_EQ(outcome.signal, GetParam());
  EXPECT_THAT(outcome.callsOf("libDestroy"), SizeIs(3));
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

TEST_P(PlaySignal, EndsAHold) {
  const Outcome outcome = runPlayer({"--frames", "1", "--hold"},
                                    Setting{.meanwhile = signalAfterFirstFrame(GetParam())});
  EXPECT_EQ(outcome.signal, GetParam());
  EXPECT_EQ(outcome.lastCall(), "unloaded");
}

INSTANTIATE_TEST_SUITE_P(Signals, PlaySignal, testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto& instance) {
                           return std::string(sigabbrev_np(instance.param));
                         });

TEST(PlayHangup, StaysIgnoredUnderNohup) {
  const Outcome outcome =
      runPlayer({"--duration", "0.5"},
                Setting{.ignored = {SIGHUP}, .meanwhile = signalAfterFirstFrame(SIGHUP)});
  EXPECT_EQ(outcome.status, 0);
}

TEST(PlayInterrupt, EndsThePlayerInAShellsBackground) {
  const Outcome outcome =
      runPlayer({}, Setting{.ignored = {SIGINT}, .meanwhile = signalAfterFirstFrame(SIGINT)});
  EXPECT_EQ(outcome.signal, SIGINT);
}

}  // namespace
}  // namespace framesink::play
