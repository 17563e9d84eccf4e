// The life of a display thread that is neither joined nor detached.
#pragma once

#include <SDL.h>

#include <atomic>

#include "process/platform.hpp"
#include "process/wait_budget.hpp"

namespace framesink {

class DisplayThread {
 public:
  using Body = void (*)(void* argument);

  // Starts a thread that runs body(argument) and then says farewell. A failure is told on standard
  // error and leaves no thread.
  void start(const char* name, Body body, void* argument);

  // From start to farewell.
  bool isRunning() const { return running_; }

  bool isThisThread() const { return thread_ != nullptr && id_ == currentThread(); }

  // The thread ended without a farewell: this process is a fork of the one it runs in, or the
  // system ended it.
  bool isLost() const { return running_ && id_ != 0 && isThreadGone(id_); }

  // Waits until the thread has said farewell and has left this library for good, because its code
  // is about to be unmapped. True at once when there never was one; false when the budget is spent
  // or the thread is lost. The thread's stack is given back, so that loading and unloading many
  // times costs little although the threads are never joined.
  bool awaitEnd(WaitBudget& budget);

 private:
  static int main(void* self);

  SDL_Thread* thread_ = nullptr;
  Body body_ = nullptr;
  void* argument_ = nullptr;
  DeadStack stack_;  // written by the thread before it gives its number
  std::atomic<OsThreadId> id_{0};
  std::atomic<bool> running_{false};
};

}  // namespace framesink
