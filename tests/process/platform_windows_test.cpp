#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <thread>
#include <utility>

#include "process/platform.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

TEST(Platform, NumbersThreadsAndTheProcessAsTheSystemDoes) {
  EXPECT_EQ(currentThread(), ::GetCurrentThreadId());
  EXPECT_EQ(currentProcess(), ::GetCurrentProcessId());
}

TEST(Platform, OtherThreadsAreThereWhileTheProcessLives) { EXPECT_FALSE(areOtherThreadsGone()); }

TEST(Platform, SleepsAtLeastAsLongAsAsked) {
  const auto before = Clock::now();
  sleepFor(milliseconds(20));
  EXPECT_GE(Clock::now() - before, milliseconds(19));  // the two clocks have different resolutions
}

// A thread that stays in this program's code until mayWait is set, then waits inside Windows until
// end().
class OtherThread : public testing::Test {
 protected:
  OtherThread() {
    thread = std::thread([this] {
      number = currentThread();
      while (!mayWait) {
      }
      ::WaitForSingleObject(mayEnd, INFINITE);
    });
    EXPECT_TRUE(waitUntil([&] { return number != 0; }));
  }
  ~OtherThread() override {
    end();
    thread.join();
    ::CloseHandle(mayEnd);
  }
  void end() {
    mayWait = true;
    ::SetEvent(mayEnd);
  }

  const HANDLE mayEnd = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::atomic<bool> mayWait{false};
  std::atomic<OsThreadId> number{0};
  std::thread thread;
};

TEST_F(OtherThread, IsGoneOnlyWhenItHasEnded) {
  EXPECT_FALSE(isThreadGone(number));
  end();
  EXPECT_TRUE(waitUntil([&] { return isThreadGone(number); }));
}

TEST_F(OtherThread, HasLeftOurCodeWhenItIsInTheSystems) {
  for (int look = 0; look < 100; ++look) EXPECT_FALSE(hasLeftLibrary(number));
  mayWait = true;
  EXPECT_TRUE(waitUntil([&] { return hasLeftLibrary(number); }));
  EXPECT_FALSE(isThreadGone(number));
}

TEST_F(OtherThread, HasLeftOurCodeWhenItHasEnded) {
  end();
  EXPECT_TRUE(waitUntil([&] { return isThreadGone(number); }));
  EXPECT_TRUE(hasLeftLibrary(number));
}

// ---- Holding libraries ----

class HeldLibrary : public testing::Test {
 protected:
  static bool isLoaded() { return ::GetModuleHandleW(kName) != nullptr; }
  // Loads the library so that only the returned hold keeps it loaded.
  static LibraryHold hold() {
    const HMODULE module = ::LoadLibraryW(kName);
    LibraryHold held(module);
    ::FreeLibrary(module);
    return held;
  }

  static constexpr const wchar_t* kName = L"framesink.dll";
};

TEST_F(HeldLibrary, StaysUntilItIsLetGo) {
  ASSERT_FALSE(isLoaded());
  LibraryHold held = hold();
  EXPECT_TRUE(isLoaded());
  held.letGo();
  EXPECT_TRUE(waitUntil([] { return !isLoaded(); }));
  held.letGo();
}

TEST_F(HeldLibrary, MovesWithItsHold) {
  LibraryHold first = hold();
  LibraryHold second = std::move(first);
  first.letGo();
  EXPECT_TRUE(isLoaded());
  first = std::move(second);
  EXPECT_TRUE(isLoaded());
  first.letGo();
  EXPECT_TRUE(waitUntil([] { return !isLoaded(); }));
}

TEST_F(HeldLibrary, GoesWithTheThreadThatEndsInIt) {
  std::atomic<bool> returned{false};
  std::thread thread([&] {
    hold().endThread();
    returned = true;
  });
  thread.join();
  EXPECT_FALSE(returned);
  EXPECT_TRUE(waitUntil([] { return !isLoaded(); }));
}

TEST_F(HeldLibrary, MayBeNone) {
  LibraryHold none(nullptr);
  none.letGo();
  none.endThread();
}

}  // namespace
}  // namespace framesink::test
