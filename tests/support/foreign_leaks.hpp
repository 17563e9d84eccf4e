// Keeps leak checking useful: what is left behind on purpose, or by others, is cleared away.
#pragma once

#include <SDL.h>

namespace framesink::test {

// The library never joins its display threads, so SDL keeps a small record of each. The records
// noted here are given back at the very end of the process, when the threads are gone.
void noteThread(SDL_Thread* thread);

// No leak checking in this process: SDL was shut down under its renderers and textures, which then
// must not be touched any more.
void expectLeaks();

}  // namespace framesink::test
