#include "support/foreign_leaks.hpp"

#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <vector>

#include "support/os_facts.hpp"

namespace framesink::test {
namespace {

class ThreadRecords {
 public:
  // A thread that still runs, as in a test that failed, is left alone; in a fork all are.
  ~ThreadRecords() {
    if (isInAFork()) return;
    for (SDL_Thread* thread : threads_) {
      const auto names = threadNames();
      if (std::find(names.begin(), names.end(), SDL_GetThreadName(thread)) != names.end()) return;
      SDL_WaitThread(thread, nullptr);
    }
  }

  bool isInAFork() const { return ::getpid() != process_; }

  void note(SDL_Thread* thread) {
    const std::lock_guard lock(mutex_);
    threads_.push_back(thread);
  }

 private:
  std::mutex mutex_;
  std::vector<SDL_Thread*> threads_;
  const pid_t process_ = ::getpid();
};

bool areLeaksExpected = false;

// Made before any server, and so destroyed after the last.
ThreadRecords threadRecords;

}  // namespace

void noteThread(SDL_Thread* thread) {
  if (thread != nullptr) threadRecords.note(thread);
}

void expectLeaks() { areLeaksExpected = true; }

}  // namespace framesink::test

// The leak sanitizer, a library of its own, looks for these names.
#define FOR_SANITIZER extern "C" __attribute__((visibility("default")))
FOR_SANITIZER const char* __lsan_default_suppressions();
FOR_SANITIZER int __lsan_is_turned_off();

// D-Bus keeps a connection's buffer for the life of the process; SDL, whose X11 driver uses it,
// cannot give it back.
const char* __lsan_default_suppressions() { return "leak:libdbus-1.so\n"; }

// A fork leaves everything in place on purpose: it is its parent's.
int __lsan_is_turned_off() {
  using namespace framesink::test;
  return areLeaksExpected || threadRecords.isInAFork() ? 1 : 0;
}
