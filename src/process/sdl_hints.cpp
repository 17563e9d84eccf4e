#include "process/sdl_hints.hpp"

#if defined(__ELF__)
// Weak, so that the library still loads with an SDL that lacks this function.
#pragma weak SDL_SetHintWithPriority
#endif

namespace framesink {

bool canSetHints() {
#if defined(__ELF__)
  return &SDL_SetHintWithPriority != nullptr;
#else
  return true;
#endif
}

void setHint(const char* name, const char* value, SDL_HintPriority priority) {
  if (canSetHints()) SDL_SetHintWithPriority(name, value, priority);
}

}  // namespace framesink
