// Checks that there is a display. The library reports nothing about it to a host.
#pragma once

namespace framesink::play {

// Throws Failure if the environment names no display server, or if none of those named answers.
// Does nothing if SDL_VIDEODRIVER names a driver that needs no server, and on Windows.
void requireDisplay();

}  // namespace framesink::play
