#include "process/display_thread.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>

#include "support/capture_stderr.hpp"
#include "support/dummy_video.hpp"
#include "support/os_facts.hpp"
#include "support/sdl_recorder.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// The display thread runs body(). It waits until mayEnd is set and, after it has reported that it
// is done, until mayGo is set.
class DisplayThreadTest : public DummyVideoTest {
 protected:
  ~DisplayThreadTest() override {
    mayEnd = true;
    mayGo = true;
    endsInTime();
  }

  void start() { thread.start("testThread", body, this); }
  bool endsWithin(milliseconds time) {
    WaitBudget budget(time);
    return thread.awaitEnd(budget);
  }
  bool endsInTime() { return endsWithin(kDeadline); }
  static bool isThere() {
    const auto names = threadNames();
    return std::find(names.begin(), names.end(), "testThread") != names.end();
  }

  DisplayThread thread;
  std::atomic<bool> began{false};
  std::atomic<bool> knewItself{false};
  std::atomic<bool> mayEnd{false};
  // Static, because the thread may still read it when the test has ended.
  static inline std::atomic<bool> mayGo{true};

 private:
  // Thread-local: destroyed while the thread ends, after it has reported that it is done.
  struct Going {
    ~Going() {
      while (!mayGo) std::this_thread::yield();
    }
  };

  static void body(void* argument) {
    auto* test = static_cast<DisplayThreadTest*>(argument);
    thread_local const Going going{};
    test->began = true;
    while (!test->mayEnd) std::this_thread::yield();
  }
};

TEST_F(DisplayThreadTest, IsNobodyBeforeItIsStarted) {
  EXPECT_FALSE(thread.isRunning());
  EXPECT_FALSE(thread.isThisThread());
  EXPECT_FALSE(thread.isLost());
  EXPECT_TRUE(endsWithin(milliseconds(0)));
}

TEST_F(DisplayThreadTest, RunsItsBodyUnderItsName) {
  start();
  EXPECT_TRUE(thread.isRunning());
  EXPECT_TRUE(waitUntil([&] { return began.load(); }));
  EXPECT_TRUE(isThere());
  EXPECT_FALSE(thread.isThisThread());
  EXPECT_FALSE(thread.isLost());
}

TEST_F(DisplayThreadTest, IsGoneWhenItsEndHasBeenAwaited) {
  start();
  mayEnd = true;
  EXPECT_TRUE(endsInTime());
  EXPECT_FALSE(thread.isRunning());
  EXPECT_FALSE(isThere());
}

TEST_F(DisplayThreadTest, IsAwaitedAfterItsFarewellUntilItIsGone) {
  mayGo = false;
  start();
  mayEnd = true;
  ASSERT_TRUE(waitUntil([&] { return !thread.isRunning(); }));
  EXPECT_FALSE(endsWithin(milliseconds(20)));
  EXPECT_TRUE(isThere());
  mayGo = true;
  EXPECT_TRUE(endsInTime());
  EXPECT_FALSE(isThere());
}

TEST_F(DisplayThreadTest, IsAwaitedUntilTheBudgetIsSpentOnly) {
  start();
  const auto before = Clock::now();
  EXPECT_FALSE(endsWithin(milliseconds(20)));
  EXPECT_GE(Clock::now() - before, milliseconds(20));
  EXPECT_TRUE(thread.isRunning());
}

TEST_F(DisplayThreadTest, TellsThatItCouldNotBeStarted) {
  recorder.refuse("SDL_CreateThread");
  const CaptureStderr said;
  start();
  EXPECT_EQ(said.text(), "Internal error: SDL_CreateThread failed: refused by the test\n");
  EXPECT_FALSE(thread.isRunning());
  EXPECT_TRUE(endsWithin(milliseconds(0)));
}

TEST_F(DisplayThreadTest, IsNeitherJoinedNorDetached) {
  start();
  EXPECT_EQ(recorder.count("SDL_CreateThread"), 1U);
  mayEnd = true;
  EXPECT_TRUE(endsInTime());
  EXPECT_EQ(recorder.count("SDL_WaitThread"), 0U);
  EXPECT_EQ(recorder.count("SDL_DetachThread"), 0U);
}

}  // namespace
}  // namespace framesink::test
