// Annotations that state which lock guards what. Clang checks them (-Wthread-safety): code that
// touches guarded data without its lock does not compile. Other compilers ignore them.
#pragma once

#include <mutex>

#if defined(__clang__)
#define FRAMESINK_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define FRAMESINK_THREAD_ATTRIBUTE(x)
#endif

// On a class: it is a lock, or stands for one.
#define FRAMESINK_LOCK(name) FRAMESINK_THREAD_ATTRIBUTE(capability(name))

// On a class: its constructor takes a lock, its destructor releases it.
#define FRAMESINK_SCOPED_LOCK FRAMESINK_THREAD_ATTRIBUTE(scoped_lockable)

// On a variable: it is read and written only while the lock is held.
#define FRAMESINK_GUARDED_BY(lock) FRAMESINK_THREAD_ATTRIBUTE(guarded_by(lock))

// On a function:
//   - REQUIRES: the caller holds the locks.
//   - EXCLUDES: the caller does not hold them.
//   - ACQUIRES: the function takes them.
//   - RELEASES: the function releases them.
#define FRAMESINK_REQUIRES(...) FRAMESINK_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define FRAMESINK_EXCLUDES(...) FRAMESINK_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define FRAMESINK_ACQUIRES(...) FRAMESINK_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define FRAMESINK_RELEASES(...) FRAMESINK_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))

namespace framesink {

// A std::mutex that Clang's check knows.
class FRAMESINK_LOCK("mutex") Mutex {
 public:
  void lock() FRAMESINK_ACQUIRES() { mutex_.lock(); }
  void unlock() FRAMESINK_RELEASES() { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

class FRAMESINK_SCOPED_LOCK MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) FRAMESINK_ACQUIRES(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~MutexLock() FRAMESINK_RELEASES() { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

}  // namespace framesink
