// Interrupts a reader of the player list at every single instruction, and changes the list right
// then. Requires a processor that can execute single steps. Not compiled with the thread sanitizer,
// whose own code cannot be interrupted in this way.
#include <gtest/gtest.h>

#include "display/tearing.hpp"

#if defined(__x86_64__) && defined(__linux__) && !defined(FRAMESINK_THREAD_SANITIZER)

#include <ucontext.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <functional>
#include <memory>
#include <utility>

#include "display/player_list.hpp"

namespace framesink::test {
namespace {

// Keeps a flag outside itself, which tells whether it lives even after it has been destroyed.
struct KnownPlayer {
  explicit KnownPlayer(bool& isAlive) : alive(isAlive) { alive = true; }
  ~KnownPlayer() { alive = false; }
  KnownPlayer(const KnownPlayer&) = delete;
  KnownPlayer& operator=(const KnownPlayer&) = delete;
  bool& alive;
};

using Players = PlayerList<KnownPlayer>;

// The processor's trap flag: while it is set, every instruction ends in a SIGTRAP.
constexpr long long kTrapFlag = 0x100;

// Runs `work` in a signal handler on this thread, after so many instructions from construction. The
// interrupted code must not allocate, because `work` does.
class Interruption {
 public:
  Interruption(int instructions, std::function<void()> work)
      : left_(instructions), work_(std::move(work)) {
    current = this;
    struct sigaction action {};
    action.sa_sigaction = [](int, siginfo_t*, void* context) {
      current->step(static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_EFL]);
    };
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGTRAP, &action, &previous_);
    std::raise(SIGTRAP);
  }
  // Ends the stepping. True if `work` ran before.
  bool end() {
    ended_ = true;
    return left_ < 0;
  }
  ~Interruption() { sigaction(SIGTRAP, &previous_, nullptr); }
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

 private:
  void step(greg_t& flags) {
    const bool goesOn = !ended_ && left_ > 0;
    flags = goesOn ? flags | kTrapFlag : flags & ~kTrapFlag;
    if (!ended_ && left_ == 0) work_();
    left_ = left_ - 1;
  }

  static inline Interruption* current = nullptr;
  volatile int left_;
  volatile bool ended_ = false;
  std::function<void()> work_;
  struct sigaction previous_ {};
};

// A list, and a reader of it that is interrupted while it is being constructed.
class InterruptedReader {
 public:
  InterruptedReader() {
    add();
    add();
  }

  // Makes the owner exchange players after so many instructions of the reader's constructor, and
  // again after the constructor. False if the constructor ended first.
  bool isInterruptedAfter(int instructions, int exchanges) {
    Interruption interruption(instructions, [&] { exchange(exchanges); });
    const Players::Reader reader(list_);
    const bool interrupted = interruption.end();
    std::array<const bool*, kPlayers> seen{};
    auto last = seen.begin();
    for (const KnownPlayer* player : reader.players()) *last++ = &player->alive;
    exchange(3);
    sawOnlyTheLiving_ = std::all_of(seen.begin(), last, [](const bool* alive) { return *alive; });
    return interrupted;
  }
  bool sawOnlyTheLiving() const { return sawOnlyTheLiving_; }

 private:
  static constexpr std::size_t kPlayers = 16;

  void add() { list_.add(std::make_unique<KnownPlayer>(alive_[added_++])); }
  void exchange(int number) {
    for (int i = 0; i < number; ++i) {
      add();
      list_.remove(list_.players().front());
      list_.reclaim();
    }
  }

  std::array<bool, kPlayers> alive_{};  // before list_, whose destructor writes here
  std::size_t added_ = 0;
  Players list_;
  bool sawOnlyTheLiving_ = false;
};

// If a reader counted itself in an epoch that has meanwhile passed, the owner would not wait for
// it. Each exchange advances the epoch by one.
TEST(PlayerListReader, MayBeInterruptedAtAnyInstruction) {
  for (const int exchanges : {1, 2, 3}) {
    int instructions = 0;
    for (bool interrupted = true; interrupted; ++instructions) {
      InterruptedReader reader;
      interrupted = reader.isInterruptedAfter(instructions, exchanges);
      ASSERT_TRUE(reader.sawOnlyTheLiving())
          << exchanges << " exchanges after " << instructions << " instructions";
    }
    EXPECT_GT(instructions, 10);
  }
}

}  // namespace
}  // namespace framesink::test

#endif
