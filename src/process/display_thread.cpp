#include "process/display_thread.hpp"

#include <cstdio>

namespace framesink {

void DisplayThread::start(const char* name, Body body, void* argument) {
  body_ = body;
  argument_ = argument;
  running_ = true;
  thread_ = SDL_CreateThread(main, name, this);
  if (thread_ != nullptr) return;
  running_ = false;
  std::fprintf(stderr, "Internal error: SDL_CreateThread failed: %s\n", SDL_GetError());
}

int DisplayThread::main(void* self) {
  LibraryHold caller = holdSdl();
  auto* thread = static_cast<DisplayThread*>(self);
  thread->stack_ = currentThreadStack();
  thread->id_ = currentThread();
  thread->body_(thread->argument_);
  thread->running_ = false;
  caller.endThread();  // the owner may have destroyed *thread by now
  return 0;
}

bool DisplayThread::awaitEnd(WaitBudget& budget) {
  if (thread_ == nullptr) return true;
  while (running_ || !hasLeftLibrary(id_)) {
    if (isLost() || budget.isSpent()) return false;
    sleepFor(std::chrono::milliseconds(1));
  }
  giveBack(stack_);
  return true;
}

}  // namespace framesink
