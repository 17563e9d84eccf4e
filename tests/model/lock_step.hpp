// Lets a threaded server's display thread make one pass at a time, at once: waiting costs a switch
// of threads instead of milliseconds, and no pass comes unasked.
//
// For programs that are linked with --wrap=SDL_Delay.
#pragma once

namespace framesink::test {

// While one lives the display thread halts where it would wait between two passes. Where the thread
// that made this would wait, one pass is made instead. The display thread must be running.
class LockStep {
 public:
  LockStep();
  ~LockStep();
  LockStep(const LockStep&) = delete;
  LockStep& operator=(const LockStep&) = delete;

  // One pass from beginning to end. Throws std::runtime_error when it takes 20 s.
  static void runPass();
};

}  // namespace framesink::test
