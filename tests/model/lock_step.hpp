// Lets a threaded server's display thread make single passes, and only on request. Use it where
// thousands of passes must be quick: a wait costs a switch of threads instead of milliseconds.
//
// The program must be linked with --wrap=SDL_Delay.
#pragma once

namespace framesink::test {

// While a LockStep exists, the display thread halts where it would wait between two passes. Where
// the thread that constructed it would wait, one pass runs instead. The display thread must be
// running.
class LockStep {
 public:
  LockStep();
  ~LockStep();
  LockStep(const LockStep&) = delete;
  LockStep& operator=(const LockStep&) = delete;

  // Runs one whole pass. Throws std::runtime_error if it takes 20 s.
  static void runPass();
};

}  // namespace framesink::test
