// Halts a thread at one place in its code until another thread lets it go on. Hold, PassStepper and
// LockStep place one in the display thread; for any other thread or place, use it directly.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

#include "support/wait_until.hpp"

namespace framesink::test {

// For one thread that passes; any thread may call the other functions.
class Turnstile {
 public:
  explicit Turnstile(bool open = false) : open_(open) {}

  // Halts the calling thread until step() or open(). Returns at once while the turnstile is open.
  void pass() {
    std::unique_lock lock(mutex_);
    halted_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return mayGo_ || open_; });
    halted_ = false;
    mayGo_ = false;
    const std::function<void()> first = std::exchange(first_, nullptr);
    lock.unlock();
    if (first) first();
  }

  // Waits until the thread has halted; false at the deadline.
  bool isHalted(std::chrono::milliseconds deadline = kDeadline) const {
    std::unique_lock lock(mutex_);
    return waitForHalt(lock, deadline);
  }

  // Waits until the thread has halted, runs `first` on it, lets it go on and waits until it halts
  // again. False if either wait reaches the deadline.
  bool step(std::function<void()> first = nullptr, std::chrono::milliseconds deadline = kDeadline) {
    std::unique_lock lock(mutex_);
    if (!waitForHalt(lock, deadline)) return false;
    first_ = std::move(first);
    mayGo_ = true;
    changed_.notify_all();
    return waitForHalt(lock, deadline);
  }

  // Lets the thread pass freely from now on.
  void open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }
  void close() {
    const std::lock_guard lock(mutex_);
    open_ = false;
  }
  bool isOpen() const {
    const std::lock_guard lock(mutex_);
    return open_;
  }

 private:
  bool waitForHalt(std::unique_lock<std::mutex>& lock, std::chrono::milliseconds deadline) const {
    return changed_.wait_for(lock, deadline, [this] { return halted_ && !mayGo_; });
  }

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  bool open_;
  bool halted_ = false;
  bool mayGo_ = false;
  std::function<void()> first_;
};

}  // namespace framesink::test
