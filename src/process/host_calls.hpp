// Which threads are inside the exported functions, and the end of all such calls.
//
// The library may end while other threads of the host still call it: another thread calls exit(),
// the host's own exit handlers run after our statics, or Xlib calls exit() from inside one of our
// SDL calls when the X server dies. What stands here is constant-initialised and never destroyed,
// so it can be asked at any time.
#pragma once

#include <cstddef>

#include "process/wait_budget.hpp"

namespace framesink {

// One export at work. Tested false when the library has ended: the export then returns at once.
class HostCall {
 public:
  HostCall();
  ~HostCall();
  HostCall(const HostCall&) = delete;
  HostCall& operator=(const HostCall&) = delete;

  explicit operator bool() const { return open_; }

 private:
  bool open_;
  std::size_t slot_;
};

// Turns new host calls away, for good, and waits for those under way. False when nothing that they
// use may be torn down: this thread is itself inside the library (in a host call, or in SDL through
// a display pass), calls still run when the budget is spent, this process is a fork of the one whose
// windows these are, or the operating system has ended all other threads.
bool endHostCalls(WaitBudget& budget = unloadBudget());

// Windows are about to be made: forks of this process leave them alone.
void claimForThisProcess();

}  // namespace framesink
