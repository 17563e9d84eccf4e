// The library never joins its display thread, so SDL keeps a record of it. This frees the record at
// the end of the test process, so that the leak check finds real leaks only.
#include <cstdint>

#include "support/allocations.hpp"
#include "support/foreign_leaks.hpp"

extern "C" SDL_Thread* __real_SDL_CreateThread(SDL_ThreadFunction body, const char* name,
                                               void* data);
extern "C" SDL_Thread* __wrap_SDL_CreateThread(SDL_ThreadFunction body, const char* name,
                                               void* data);

SDL_Thread* __wrap_SDL_CreateThread(SDL_ThreadFunction body, const char* name, void* data) {
  SDL_Thread* thread = __real_SDL_CreateThread(body, name, data);
  // Noting the thread must succeed even in a test of exhausted memory.
  const framesink::test::OutOfMemory enough(SIZE_MAX);
  framesink::test::noteThread(thread);
  return thread;
}
