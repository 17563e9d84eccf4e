// Whether windows can appear at all. The library tells a host nothing about its display, so the
// player looks for itself.
#pragma once

namespace framesink::play {

// Throws Failure when no display server is named in the environment or none of those named answers.
// Says nothing when SDL_VIDEODRIVER names a driver that needs no server.
void requireDisplay();

}  // namespace framesink::play
