// A display thread that is never joined or detached; unloading polls for its end instead.
#pragma once

#include <SDL.h>

#include <atomic>

#include "process/platform.hpp"
#include "process/wait_budget.hpp"

namespace framesink {

class DisplayThread {
 public:
  using Body = void (*)(void* argument);

  // Starts a thread that runs body(argument) and then reports that it is done. On failure, prints
  // to standard error and leaves no thread.
  void start(const char* name, Body body, void* argument);

  // True from start until the thread reports that it is done.
  bool isRunning() const { return running_; }

  bool isThisThread() const { return thread_ != nullptr && id_ == currentThread(); }

  // True if the thread ended without that report: this process is a fork of the one in which the
  // thread runs, or the operating system ended the thread.
  bool isLost() const { return running_ && id_ != 0 && isThreadGone(id_); }

  // Waits until the thread has reported that it is done and can never run this library's code
  // again, because that code is about to be unmapped. Returns true at once if there never was a
  // thread, and false if the budget is spent or the thread is lost. Gives the thread's stack back,
  // so that loading and unloading many times costs little memory although no thread is joined.
  bool awaitEnd(WaitBudget& budget);

 private:
  static int main(void* self);

  SDL_Thread* thread_ = nullptr;
  Body body_ = nullptr;
  void* argument_ = nullptr;
  DeadStack stack_;  // written by the thread before it sets id_
  std::atomic<OsThreadId> id_{0};
  std::atomic<bool> running_{false};
};

}  // namespace framesink
