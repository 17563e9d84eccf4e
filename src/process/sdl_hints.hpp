// SDL's hints, which the library can do without.
#pragma once

#include <SDL.h>

namespace framesink {

// False if this SDL lacks the function.
bool canSetHints();

// Does nothing if canSetHints() is false.
void setHint(const char* name, const char* value, SDL_HintPriority priority);

}  // namespace framesink
