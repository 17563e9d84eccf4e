// What a player's window does when SDL reports an event for it.
#pragma once

#include <SDL.h>

#include "display/sdl_player.hpp"
#include "process/sdl_session.hpp"
#include "process/thread_safety.hpp"

namespace framesink {

enum class AfterEvent { kGoOn, kClose };

// Redraws, stores the new position or size, or leaves full screen, as the event requires. Returns
// kClose if the user asks to close the window; the server then closes it. The player must have a
// window.
[[nodiscard]] AfterEvent handleEvent(const SDL_Event& event, SdlPlayer& player)
    FRAMESINK_REQUIRES(sdlGate);

}  // namespace framesink
