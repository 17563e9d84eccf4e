#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

#include "process/platform.hpp"
#include "support/os_facts.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

TEST(Platform, NumbersThreadsAsTheSystemDoes) {
  EXPECT_EQ(currentThread(), static_cast<OsThreadId>(::getpid()));
  OsThreadId other = 0;
  std::thread([&] { other = currentThread(); }).join();
  EXPECT_NE(other, currentThread());
  EXPECT_NE(other, 0U);
}

TEST(Platform, AThreadThatRunsIsNotGone) { EXPECT_FALSE(isThreadGone(currentThread())); }

TEST(Platform, AThreadThatEndedIsGone) {
  std::atomic<OsThreadId> other{0};
  std::atomic<bool> mayEnd{false};
  std::thread thread([&] {
    other = currentThread();
    while (!mayEnd) std::this_thread::yield();
  });
  EXPECT_TRUE(waitUntil([&] { return other != 0; }));
  EXPECT_FALSE(isThreadGone(other));
  mayEnd = true;
  thread.join();
  EXPECT_TRUE(waitUntil([&] { return isThreadGone(other); }));
}

TEST(Platform, AThreadOfAnotherProcessIsGone) {
  EXPECT_TRUE(isThreadGone(static_cast<OsThreadId>(::getppid())));
}

TEST(Platform, NumbersTheProcessAsTheSystemDoes) {
  EXPECT_EQ(currentProcess(), static_cast<std::uint64_t>(::getpid()));
}

std::size_t residentPages(DeadStack stack) {
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  std::vector<unsigned char> pages(stack.bytes / page);
  EXPECT_EQ(::mincore(stack.lowest, stack.bytes, pages.data()), 0);
  return static_cast<std::size_t>(
      std::count_if(pages.begin(), pages.end(), [](unsigned char flags) { return flags & 1; }));
}

TEST(Platform, AThreadKnowsTheDeadPartOfItsStack) {
  std::thread([] {
    volatile char local[0x10000] = {};
    const DeadStack stack = currentThreadStack();
    const auto lowest = reinterpret_cast<std::uintptr_t>(stack.lowest);
    const auto address = reinterpret_cast<std::uintptr_t>(&local[0]);
    EXPECT_GT(address, lowest);
    EXPECT_LT(address, lowest + stack.bytes);
    EXPECT_LE(lowest + stack.bytes, static_cast<std::uintptr_t>(::pthread_self()))
        << "the C library's record of the thread must be kept";
  }).join();
}

TEST(Platform, GivesTheStackOfAThreadBackThatIsGoneButNotJoined) {
  std::atomic<OsThreadId> number{0};
  DeadStack stack;
  std::thread thread([&] {
    stack = currentThreadStack();
    number = currentThread();
  });
  ASSERT_TRUE(waitUntil([&] { return number != 0 && isThreadGone(number); }));
  EXPECT_GT(residentPages(stack), 0U);
  giveBack(stack);
  EXPECT_EQ(residentPages(stack), 0U);
  thread.join();
}

TEST(Platform, NothingToGiveBackIsFine) { giveBack(DeadStack{}); }

TEST(Platform, SleepsAtLeastAsLongAsAsked) {
  const auto before = Clock::now();
  sleepFor(milliseconds(20));
  EXPECT_GE(Clock::now() - before, milliseconds(20));
}

TEST(Platform, SleepsOnAfterASignal) {
  struct sigaction handler {};
  handler.sa_handler = [](int) {};
  struct sigaction previous {};
  ASSERT_EQ(sigaction(SIGUSR1, &handler, &previous), 0);
  const pthread_t sleeper = pthread_self();
  std::atomic<bool> awake{false};
  std::thread disturber([&] {
    while (!awake) {
      pthread_kill(sleeper, SIGUSR1);
      std::this_thread::sleep_for(milliseconds(1));
    }
  });
  const auto before = Clock::now();
  sleepFor(milliseconds(20));
  const auto slept = Clock::now() - before;
  awake = true;
  disturber.join();
  sigaction(SIGUSR1, &previous, nullptr);
  EXPECT_GE(slept, milliseconds(20));
}

}  // namespace
}  // namespace framesink::test
