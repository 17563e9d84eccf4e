// Interrupts the constructor of SdlUse at every instruction, and shuts SDL down there.
#include "support/interruption.hpp"

#if defined(FRAMESINK_TESTS_CAN_INTERRUPT)

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "process/sdl_session.hpp"
#include "support/dummy_video.hpp"
#include "support/os_facts.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

// Calls quitSdl on a separate thread: at begin(), or in the destructor if begin() was not called.
class Quitter {
 public:
  explicit Quitter(SdlRecorder& recorder)
      : onQuit_(recorder.before("SDL_Quit", [this](const SdlCall&) { hasQuit_ = true; })),
        thread_([this] {
          pthread_setname_np(pthread_self(), kName);
          mayBegin_.wait(false);
          quitSdl();
        }) {}
  ~Quitter() {
    begin();
    thread_.join();
  }
  Quitter(const Quitter&) = delete;
  Quitter& operator=(const Quitter&) = delete;

  void begin() {
    mayBegin_ = true;
    mayBegin_.notify_one();
  }
  // Waits until the thread has called SDL_Quit or waits for a use to end; false at the deadline.
  bool hasLookedAtTheUses() const {
    if (!waitUntil([this] { return sdlGeneration() != generation_; })) return false;
    const std::uint64_t before = timesAsleep(getpid(), kName);
    return waitUntil([&] { return hasQuit_ || timesAsleep(getpid(), kName) > before; });
  }
  bool hasQuit() const { return hasQuit_; }

 private:
  static constexpr const char* kName = "quitter";

  const std::uint32_t generation_ = sdlGeneration();
  std::atomic<bool> mayBegin_{false};
  std::atomic<bool> hasQuit_{false};
  const SdlHook onQuit_;
  std::thread thread_;
};

class InterruptedSdlUse : public DummyVideoTest {
 protected:
  // Shuts SDL down after `instructions` instructions of the use's constructor. False if the
  // constructor ended before that.
  bool isInterruptedAfter(int instructions) {
    Quitter quitter(recorder);
    bool hasLooked = true;
    const std::uint32_t generation = sdlGeneration();
    Interruption interruption(instructions, [&] {
      quitter.begin();
      hasLooked = quitter.hasLookedAtTheUses();
    });
    const SdlUse use(generation);
    const bool interrupted = interruption.end();
    EXPECT_TRUE(hasLooked);
    isTrue = static_cast<bool>(use);
    hasQuit = quitter.hasQuit();
    return interrupted;
  }

  bool isTrue = false;
  bool hasQuit = false;
};

// If a use read the generation before it is counted, SDL could be shut down in between.
TEST_F(InterruptedSdlUse, IsFalseUnlessItHoldsUpQuitting) {
  int quitFirst = 0;
  int heldUp = 0;
  bool interrupted = true;
  for (int instructions = 0; interrupted; ++instructions) {
    interrupted = isInterruptedAfter(instructions);
    ASSERT_FALSE(isTrue && hasQuit) << "after " << instructions << " instructions";
    if (interrupted) ++(hasQuit ? quitFirst : heldUp);
  }
  EXPECT_TRUE(isTrue) << "without an interruption";
  EXPECT_GT(quitFirst, 0);
  EXPECT_GT(heldUp, 0);
}

}  // namespace
}  // namespace framesink::test

#endif
