// Records which threads are inside the exports, and ends all such calls.
//
// The library may end while threads of the host still call it:
//   - Another thread calls exit().
//   - The host's own exit handlers run after the library's static objects are destroyed.
//   - Something inside one of the library's SDL calls calls exit().
// Therefore all state here is constant-initialised and never destroyed, and every function may be
// called at any time.
#pragma once

#include <cstddef>

#include "process/wait_budget.hpp"

namespace framesink {

// Counts one export as under way for as long as it lives. Converts to false if the library has
// ended; the export must then return at once.
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

// Makes new host calls return at once, for good, and waits for those under way. Returns false if
// nothing that host calls use may be torn down:
//   - This thread is itself inside the library, in a host call or in SDL during a display pass.
//   - Calls are still under way when the budget is spent.
//   - This process is a fork of the one that made the windows or, as long as there are none, the
//     first call.
//   - The operating system has ended all other threads.
bool endHostCalls(WaitBudget& budget = unloadBudget());

// Records that this process is about to make windows, so that its forks leave them alone. A fork
// may do so itself if its parent has none.
void claimForThisProcess();

}  // namespace framesink
