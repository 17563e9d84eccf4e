// Interrupts a thread between any two of its instructions and runs a test's function there. Needs a
// processor that can step through single instructions, and a build without the thread sanitizer,
// whose own code cannot be interrupted in this way.
#pragma once

#include "display/tearing.hpp"

#if defined(__x86_64__) && defined(__linux__) && !defined(FRAMESINK_THREAD_SANITIZER)
#define FRAMESINK_TESTS_CAN_INTERRUPT 1

#include <ucontext.h>

#include <csignal>
#include <functional>
#include <utility>

namespace framesink::test {

// Runs `work` on the constructing thread after that thread has executed `instructions` more
// instructions. The interrupted code must not allocate memory, because `work` may. Only one may
// live at a time.
class Interruption {
 public:
  Interruption(int instructions, std::function<void()> work)
      : left_(instructions), work_(std::move(work)) {
    current = this;
    struct sigaction action {};
    action.sa_sigaction = [](int, siginfo_t*, void* context) {
      auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
      current->step(registers[REG_RIP], registers[REG_EFL]);
    };
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGTRAP, &action, &previous_);
    std::raise(SIGTRAP);
  }
  // Does not run `work` if the thread reaches `function` first.
  template <class Result, class... Parameters>
  void endAt(Result (*function)(Parameters...)) {
    end_ = reinterpret_cast<greg_t>(function);
  }
  // Stops interrupting. Returns true if `work` has run.
  bool end() {
    ended_ = true;
    return left_ < 0;
  }
  ~Interruption() { sigaction(SIGTRAP, &previous_, nullptr); }
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

 private:
  // The processor's trap flag: while it is set, each instruction raises SIGTRAP.
  static constexpr long long kTrapFlag = 0x100;

  void step(greg_t address, greg_t& flags) {
    flags &= ~kTrapFlag;
    if (address == end_) ended_ = true;
    if (ended_) return;
    if (left_ == 0) {
      work_();
    } else {
      flags |= kTrapFlag;
    }
    left_ = left_ - 1;
  }

  static inline Interruption* current = nullptr;
  volatile int left_;
  volatile bool ended_ = false;
  volatile greg_t end_ = 0;
  std::function<void()> work_;
  struct sigaction previous_ {};
};

}  // namespace framesink::test

#endif
