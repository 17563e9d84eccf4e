// endHostCalls() is final, so each of these tests needs its own process.
#include "process/host_calls.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "process/sdl_session.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

bool areCallsTurnedAway() { return !HostCall(); }

// Runs endHostCalls() on a separate thread.
class Ending {
 public:
  explicit Ending(std::chrono::milliseconds patience = kLongestUnload) : budget_(patience) {}
  ~Ending() { thread_.join(); }

  bool hasEndedAfterAWhile() const {
    return waitUntil([&] { return ended_.load(); }, std::chrono::milliseconds(30));
  }
  bool answer() const {
    EXPECT_TRUE(waitUntil([&] { return ended_.load(); }));
    return answer_;
  }

 private:
  WaitBudget budget_;
  std::atomic<bool> ended_{false};
  std::atomic<bool> answer_{false};
  std::thread thread_{[this] {
    answer_ = endHostCalls(budget_);
    ended_ = true;
  }};
};

TEST(HostCalls, AreLetInBeforeTheEnd) { EXPECT_TRUE(HostCall()); }

TEST(HostCalls, AreTurnedAwayAfterTheEnd) {
  EXPECT_TRUE(endHostCalls());
  EXPECT_TRUE(areCallsTurnedAway());
}

TEST(HostCalls, TheEndMayComeTwice) {
  EXPECT_TRUE(endHostCalls());
  EXPECT_TRUE(endHostCalls());
}

TEST(HostCalls, TheEndWaitsForCallsOfOtherThreads) {
  auto call = std::make_unique<HostCall>();
  const Ending ending;
  EXPECT_TRUE(waitUntil(areCallsTurnedAway));
  EXPECT_FALSE(ending.hasEndedAfterAWhile());
  call.reset();
  EXPECT_TRUE(ending.answer());
}

TEST(HostCalls, TheEndDoesNotWaitForItsOwnThreadsCall) {
  const HostCall call;
  EXPECT_FALSE(endHostCalls());
  EXPECT_TRUE(areCallsTurnedAway());
}

TEST(HostCalls, TheEndDoesNotWaitInsideTheGate) {
  const std::lock_guard gate(sdlGate);
  EXPECT_FALSE(endHostCalls());
  EXPECT_TRUE(areCallsTurnedAway());
}

TEST(HostCalls, ANestedCallLeavesItsThreadACaller) {
  const HostCall outer;
  { const HostCall inner; }
  EXPECT_FALSE(endHostCalls());
}

TEST(HostCalls, TheEndWaitsForMoreCallsThanAreKnownByThread) {
  std::deque<HostCall> calls(100);
  const Ending ending;
  EXPECT_TRUE(waitUntil(areCallsTurnedAway));
  while (calls.size() > 1) calls.pop_back();
  EXPECT_FALSE(ending.hasEndedAfterAWhile());
  calls.clear();
  EXPECT_TRUE(ending.answer());
}

// Once endHostCalls() has stopped waiting for a call, a later endHostCalls() does not wait for it
// again and returns false, even after the call has returned.
TEST(HostCalls, TheEndGivesUpACallThatDoesNotReturn) {
  auto call = std::make_unique<HostCall>();
  const Ending ending(std::chrono::milliseconds(30));
  EXPECT_FALSE(ending.answer());
  call.reset();
  EXPECT_FALSE(endHostCalls());
}

TEST(HostCalls, AForkHasNoEndOfItsOwn) {
  claimForThisProcess();
  const pid_t fork = ::fork();
  if (fork == 0) ::_exit(endHostCalls() ? 1 : 0);
  int status = -1;
  ASSERT_EQ(::waitpid(fork, &status, 0), fork);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(endHostCalls());
}

TEST(HostCalls, AFreedPlaceIsTakenAgain) {
  for (int i = 0; i < 1000; ++i) const HostCall call;
  const HostCall call;
  EXPECT_FALSE(endHostCalls()) << "the thread is no longer known as a caller";
}

}  // namespace
}  // namespace framesink::test
