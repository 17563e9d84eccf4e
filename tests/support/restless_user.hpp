// A user who does something to the windows all the time.
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
  // What the user does, drawn at random. Repeat a deed to make it more frequent.
  std::vector<Deed> deeds;
  // The rest between two deeds. SDL keeps reading X events as long as more arrive; without a rest,
  // events would come faster than any user makes them, and SDL would never return.
  std::chrono::milliseconds pace{2};
  // Length of a storm of deeds and of the calm after it. Zero: one storm without end.
  std::chrono::milliseconds storm{0};
  std::uint32_t seed = 1;
};

// Works until it is destroyed, on a thread and an X connection of its own.
class RestlessUser {
 public:
  // Finds windows by their titles; keeps looking for those that do not exist.
  RestlessUser(const std::string& display, std::vector<std::string> titles, Habits habits);
  ~RestlessUser();
  RestlessUser(const RestlessUser&) = delete;
  RestlessUser& operator=(const RestlessUser&) = delete;

  int deeds() const { return deeds_; }
  // How often a close button was pressed.
  int closed() const { return closed_; }

 private:
  void work(const std::string& display);
  void act(XClient& x, Window window);
  bool isCalm() const;
  int number(std::uint32_t limit) { return static_cast<int>(random_() % limit); }

  const std::vector<std::string> titles_;
  const Habits habits_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::mt19937 random_;  // used by thread_ only
  std::atomic<bool> stop_{false};
  std::atomic<int> deeds_{0};
  std::atomic<int> closed_{0};
  std::thread thread_;
};

}  // namespace framesink::test
