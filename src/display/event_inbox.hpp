// Events of one server's windows that the other server's drain took from SDL's common queue.
#pragma once

#include <SDL.h>

#include <vector>

namespace framesink {

// Used inside the gate only.
class EventInbox {
 public:
  // Keeps the event until the owner's next drain. Only kinds that a drain acts on are kept, and of
  // each kind and window the latest, so that a server that never drains does not pile them up.
  void put(const SDL_Event& event) noexcept;

  // Takes the oldest; false when there is none.
  bool take(SDL_Event& event);

 private:
  std::vector<SDL_Event> events_;
};

}  // namespace framesink
