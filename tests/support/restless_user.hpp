// A user who never leaves the windows alone.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/x_client.hpp"

namespace framesink::test {

enum class Deed { kClose, kRaise, kMove, kResize, kMaximise, kIconify, kRestore, kEscape, kCover };

struct Habits {
  // What the user does, each as often as the others; repeat what is to be done more often.
  std::vector<Deed> deeds;
  // SDL takes events from X as long as more arrive, so that a flood of them, which no hand makes,
  // would keep it from ever coming back.
  std::chrono::milliseconds pace{2};
  // Storms of deeds this long, each followed by a calm as long; zero: one storm without end.
  std::chrono::milliseconds storm{0};
  std::uint32_t seed = 1;
};

// Works on a thread and a connection of its own until it goes.
class RestlessUser {
 public:
  // Windows are known by their titles; those that are not there are looked for again and again.
  RestlessUser(const std::string& display, std::vector<std::string> titles, Habits habits);
  ~RestlessUser();
  RestlessUser(const RestlessUser&) = delete;
  RestlessUser& operator=(const RestlessUser&) = delete;

  int deeds() const { return deeds_; }
  // Close buttons pressed.
  int closed() const { return closed_; }

 private:
  void work(const std::string& display);
  void act(XClient& x, Window window);
  bool isCalm() const;
  int number(std::uint32_t limit) { return static_cast<int>(random_() % limit); }

  const std::vector<std::string> titles_;
  const Habits habits_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::mt19937 random_;  // of the thread
  std::atomic<bool> stop_{false};
  std::atomic<int> deeds_{0};
  std::atomic<int> closed_{0};
  std::thread thread_;
};

}  // namespace framesink::test
