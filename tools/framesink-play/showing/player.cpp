#include "showing/player.hpp"

#include <algorithm>
#include <thread>

#include "system/signals.hpp"

namespace framesink::play {
namespace {

// The longest time without a look at windows and signals.
constexpr std::chrono::milliseconds kNap{50};

}  // namespace

Player::Player(const std::vector<Options>& options, const Library& library,
               std::vector<std::unique_ptr<Source>> sources) {
  for (std::size_t i = 0; i < options.size(); ++i) {
    shows_.push_back(std::make_unique<Show>(options[i], library, std::move(sources[i]), status_));
  }
}

void Player::run() {
  for (const auto& show : shows_) show->start();
  while (stopSignal() == 0) {
    Show* show = next();
    if (show == nullptr) return;
    status_.refresh();
    if (Show::Clock::now() >= show->due()) {
      show->step();
    } else {
      std::this_thread::sleep_until(
          std::min<Show::Clock::time_point>(show->due(), Show::Clock::now() + kNap));
    }
  }
}

// Returns the show that is due first, or null if all are over.
Show* Player::next() const {
  Show* first = nullptr;
  for (const auto& show : shows_) {
    if (!show->isOver() && (first == nullptr || show->due() < first->due())) first = show.get();
  }
  return first;
}

}  // namespace framesink::play
