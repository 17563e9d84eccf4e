#include "support/foreign_leaks.hpp"

#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "support/os_facts.hpp"

namespace framesink::test {
namespace {

class ThreadRecords {
 public:
  // Frees nothing if a thread still runs, as it may after a failed test, or in a fork.
  ~ThreadRecords() {
    if (isInAFork()) return;
    for (const Started& thread : threads_) {
      const auto names = threadNames();
      if (std::find(names.begin(), names.end(), thread.name) != names.end()) return;
      SDL_WaitThread(thread.record, nullptr);
    }
  }

  bool isInAFork() const { return ::getpid() != process_; }

  void note(SDL_Thread* thread) {
    const std::lock_guard lock(mutex_);
    // Not every SDL still knows the name of a thread that has ended.
    const char* name = SDL_GetThreadName(thread);
    threads_.push_back({thread, name == nullptr ? "" : name});
  }

 private:
  struct Started {
    SDL_Thread* record;
    std::string name;  // empty: the thread had already ended
  };

  std::mutex mutex_;
  std::vector<Started> threads_;
  const pid_t process_ = ::getpid();
};

bool areLeaksExpected = false;

// Constructed before any server, so it is destroyed after the last one.
ThreadRecords threadRecords;

}  // namespace

void noteThread(SDL_Thread* thread) {
  if (thread != nullptr) threadRecords.note(thread);
}

void expectLeaks() { areLeaksExpected = true; }

}  // namespace framesink::test

// The leak sanitizer is a separate library and looks up these names.
#define FOR_SANITIZER extern "C" __attribute__((visibility("default")))
FOR_SANITIZER const char* __lsan_default_suppressions();
FOR_SANITIZER int __lsan_is_turned_off();

// D-Bus keeps a connection's buffer as long as the process runs. SDL's X11 driver uses D-Bus and
// cannot free the buffer.
const char* __lsan_default_suppressions() { return "leak:libdbus-1.so\n"; }

// A fork frees nothing on purpose, because everything belongs to its parent.
int __lsan_is_turned_off() {
  using namespace framesink::test;
  return areLeaksExpected || threadRecords.isInAFork() ? 1 : 0;
}
