// The library never joins its display thread; what SDL keeps of it is given back at the end of the
// test process, so that leaks can be looked for.
#include <cstdint>

#include "support/allocations.hpp"
#include "support/foreign_leaks.hpp"

extern "C" SDL_Thread* __real_SDL_CreateThread(SDL_ThreadFunction body, const char* name,
                                               void* data);
extern "C" SDL_Thread* __wrap_SDL_CreateThread(SDL_ThreadFunction body, const char* name,
                                               void* data);

SDL_Thread* __wrap_SDL_CreateThread(SDL_ThreadFunction body, const char* name, void* data) {
  SDL_Thread* thread = __real_SDL_CreateThread(body, name, data);
  // Not even a test of exhausted memory may lose a thread that runs.
  const framesink::test::OutOfMemory enough(SIZE_MAX);
  framesink::test::noteThread(thread);
  return thread;
}
