#include "display/event_inbox.hpp"

#include <algorithm>
#include <new>

namespace framesink {
namespace {

bool isSameKind(const SDL_Event& a, const SDL_Event& b) {
  if (a.type != b.type || a.window.windowID != b.window.windowID) return false;
  return a.type == SDL_WINDOWEVENT ? a.window.event == b.window.event
                                   : a.key.keysym.sym == b.key.keysym.sym;
}

}  // namespace

void EventInbox::put(const SDL_Event& event) noexcept {
  const bool isEscape = event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE;
  if (event.type != SDL_WINDOWEVENT && !isEscape) return;
  std::erase_if(events_, [&](const SDL_Event& other) { return isSameKind(other, event); });
  try {
    events_.push_back(event);
  } catch (const std::bad_alloc&) {
    // Out of memory: the window misses one event.
  }
}

bool EventInbox::take(SDL_Event& event) {
  if (events_.empty()) return false;
  event = events_.front();
  events_.erase(events_.begin());
  return true;
}

}  // namespace framesink
