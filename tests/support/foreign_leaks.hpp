// Keeps leak checking useful: frees or hides what is left behind on purpose or by other libraries.
#pragma once

#include <SDL.h>

namespace framesink::test {

// The library never joins its display threads, so SDL keeps a small record of each. The records
// noted here are freed at the very end of the process, when the threads have ended.
void noteThread(SDL_Thread* thread);

// Turns leak checking off in this process, because SDL is shut down before its renderers and
// textures, which must not be touched after that.
void expectLeaks();

}  // namespace framesink::test
