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

// The status of a fork that ends with what `body` returns, or -1 if it took a second.
template <class Body>
int statusOfFork(Body body) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t fork = ::fork();
  if (fork == 0) {
    ::alarm(10);
    ::_exit(body());
  }
  int status = -1;
  if (::waitpid(fork, &status, 0) != fork || !WIFEXITED(status)) return -1;
  const auto took = std::chrono::steady_clock::now() - start;
  return took < std::chrono::seconds(1) ? WEXITSTATUS(status) : -1;
}

TEST(HostCalls, AForkHasNoEndOfItsOwn) {
  claimForThisProcess();
  EXPECT_EQ(statusOfFork([] { return endHostCalls() ? 1 : 0; }), 0);
  EXPECT_TRUE(endHostCalls());
}

TEST(HostCalls, AForkDoesNotWaitForACallThatItsParentsOtherThreadMakes) {
  std::atomic<bool> isCalling{false};
  std::atomic<bool> mayReturn{false};
  std::thread other([&] {
    const HostCall call;
    isCalling = true;
    waitUntil([&] { return mayReturn.load(); });
  });
  ASSERT_TRUE(waitUntil([&] { return isCalling.load(); }));
  EXPECT_EQ(statusOfFork([] { return endHostCalls() ? 1 : 0; }), 0);
  const auto makeWindowsAndEnd = [] {
    {
      const HostCall call;
      claimForThisProcess();
    }
    return endHostCalls() ? 0 : 1;
  };
  EXPECT_EQ(statusOfFork(makeWindowsAndEnd), 0) << "a fork with windows of its own";
  mayReturn = true;
  other.join();
  EXPECT_TRUE(endHostCalls());
}

TEST(HostCalls, AFreedPlaceIsTakenAgain) {
  for (int i = 0; i < 1000; ++i) const HostCall call;
  const HostCall call;
  EXPECT_FALSE(endHostCalls()) << "the thread is no longer known as a caller";
}

}  // namespace
}  // namespace framesink::test
