// Makes SDL events as SDL's queue delivers them.
#pragma once

#include <SDL.h>

namespace framesink::test {

inline SDL_Event windowEvent(Uint32 windowId, Uint8 kind, int data1 = 0, int data2 = 0) {
  SDL_Event event{};
  event.window.type = SDL_WINDOWEVENT;
  event.window.windowID = windowId;
  event.window.event = kind;
  event.window.data1 = data1;
  event.window.data2 = data2;
  return event;
}

inline SDL_Event keyEvent(Uint32 windowId, SDL_Keycode key, Uint32 type = SDL_KEYDOWN) {
  SDL_Event event{};
  event.key.type = type;
  event.key.windowID = windowId;
  event.key.keysym.sym = key;
  return event;
}

inline SDL_Event applicationEvent(Uint32 type) {
  SDL_Event event{};
  event.type = type;
  return event;
}

// Puts the event into SDL's queue for the next drain. Any thread may call it.
inline bool push(SDL_Event event) { return SDL_PushEvent(&event) == 1; }

// A window id that no window of these tests ever gets.
inline constexpr Uint32 kUnknownWindow = 4711;

}  // namespace framesink::test
