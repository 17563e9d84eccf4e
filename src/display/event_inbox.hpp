// Events of one server's windows that the other server's drain took from SDL's common queue.
#pragma once

#include <SDL.h>

#include <vector>

namespace framesink {

// Used inside the gate only.
class EventInbox {
 public:
  // Keeps the event until the owner's next drain. Keeps only kinds that a drain acts on, and only
  // the latest of each kind and window, so that it stays small if a server never drains.
  void put(const SDL_Event& event) noexcept;

  // Moves the oldest event to `event`; false if there is none.
  bool take(SDL_Event& event);

 private:
  std::vector<SDL_Event> events_;
};

}  // namespace framesink
