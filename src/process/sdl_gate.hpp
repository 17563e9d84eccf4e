// Which thread may be inside SDL's window and event code.
#pragma once

#include <atomic>
#include <mutex>

#include "process/platform.hpp"
#include "process/thread_safety.hpp"

namespace framesink {

// Held by the thread that is inside SDL's window and event code: the display thread during a pass,
// any thread during a call on the synchronous server. Two threads in that code on one X connection
// crash. Recursive, and uncontended unless both servers run. Host calls on threaded players never
// take it, except to start the server.
class FRAMESINK_LOCK("gate") SdlGate {
 public:
  void lock() FRAMESINK_ACQUIRES();
  void unlock() FRAMESINK_RELEASES();
  bool isHeldByThisThread() const { return owner_ == currentThread(); }

 private:
  std::recursive_mutex mutex_;
  std::atomic<OsThreadId> owner_{0};
  int depth_ FRAMESINK_GUARDED_BY(this) = 0;
};

extern SdlGate sdlGate;

// Holds the gate for as long as it lives.
class FRAMESINK_SCOPED_LOCK InGate {
 public:
  InGate() FRAMESINK_ACQUIRES(sdlGate) { sdlGate.lock(); }
  ~InGate() FRAMESINK_RELEASES() { sdlGate.unlock(); }
  InGate(const InGate&) = delete;
  InGate& operator=(const InGate&) = delete;
};

}  // namespace framesink
