#include "support/os_facts.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

TEST(OsFacts, CountsAndNamesThreads) {
  const std::size_t before = threadIds().size();
  std::atomic<bool> leave{false};
  std::thread extra([&] { waitUntil([&] { return leave.load(); }); });
  pthread_setname_np(extra.native_handle(), "extraThread");
  const std::vector<std::string> names = threadNames();
  const std::size_t during = threadIds().size();
  leave = true;
  extra.join();
  // A sanitizer may start a thread of its own when the first thread starts.
  EXPECT_GE(during, before + 1);
  EXPECT_EQ(names.size(), during);
  EXPECT_EQ(std::count(names.begin(), names.end(), "extraThread"), 1);
  EXPECT_TRUE(waitUntil([&] { return threadIds().size() < during; }));
}

TEST(OsFacts, CountsHowOftenAThreadGoesToSleep) {
  std::atomic<bool> restless{true};
  std::atomic<bool> leave{false};
  std::thread sleeper([&] {
    waitUntil([&] { return !restless; });
    restless.wait(false);
    waitUntil([&] { return leave.load(); });
  });
  pthread_setname_np(sleeper.native_handle(), "sleeper");
  const auto times = [] { return timesAsleep(getpid(), "sleeper"); };
  const std::uint64_t before = times();
  EXPECT_TRUE(waitUntil([&] { return times() >= before + 10; }));
  restless = false;
  EXPECT_TRUE(waitUntil([&] {
    const std::uint64_t now = times();
    return staysSo([&] { return times() == now; });
  }));
  restless = true;
  restless.notify_all();
  leave = true;
  sleeper.join();
  EXPECT_EQ(times(), 0U);
}

TEST(OsFacts, KnowsWhetherAThreadSleeps) {
  std::atomic<int> id{0};
  std::atomic<bool> mayGo{false};
  std::atomic<bool> restless{true};
  std::thread thread([&] {
    id = gettid();
    while (restless) std::this_thread::yield();
    mayGo.wait(false);
  });
  EXPECT_TRUE(waitUntil([&] { return id != 0; }));
  EXPECT_TRUE(staysSo([&] { return !isAsleep(id); }));
  restless = false;
  EXPECT_TRUE(waitUntil([&] { return isAsleep(id); }));
  mayGo = true;
  mayGo.notify_all();
  thread.join();
  EXPECT_FALSE(isAsleep(id)) << "it is gone";
}

TEST(OsFacts, ContainsTheCallingThread) {
  const std::vector<int> ids = threadIds();
  EXPECT_TRUE(std::binary_search(ids.begin(), ids.end(), gettid()));
}

TEST(OsFacts, KnowsWhatIsMapped) {
  EXPECT_TRUE(isMapped("libxcb.so"));
  EXPECT_TRUE(isMapped("/support_tests"));
  EXPECT_FALSE(isMapped("libSDL2"));
}

TEST(OsFacts, SeesMemoryOnceItIsInUse) {
  constexpr std::size_t kBytes = 64 << 20;
  constexpr std::size_t kSlack = 8 << 20;
  void* memory = mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  const std::size_t reserved = residentBytes();
  ASSERT_EQ(madvise(memory, kBytes, MADV_POPULATE_WRITE), 0);
  const std::size_t inUse = residentBytes();
  munmap(memory, kBytes);
  EXPECT_GT(reserved, 500U << 10);
  EXPECT_GE(inUse, reserved + kBytes - kSlack);
  EXPECT_LE(residentBytes(), inUse - kBytes + kSlack);
}

TEST(OsFacts, CountsFileDescriptors) {
  std::size_t expected = 0;
  for (int descriptor = 0; descriptor < 4096; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) ++expected;
  }
  EXPECT_EQ(openFileDescriptors(), expected);
  const int another = open("/dev/null", O_RDONLY);
  EXPECT_EQ(openFileDescriptors(), expected + 1);
  close(another);
}

}  // namespace
}  // namespace framesink::test
