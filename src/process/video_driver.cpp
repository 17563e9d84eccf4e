#include "process/video_driver.hpp"

#include <SDL.h>

#include <algorithm>
#include <array>
#include <string_view>

#if defined(__ELF__)
// Weak, so that the library still loads with an SDL that lacks this function.
#pragma weak SDL_GetCurrentVideoDriver
#endif

namespace framesink {

bool canAskForVideoDriver() {
#if defined(__ELF__)
  return &SDL_GetCurrentVideoDriver != nullptr;
#else
  return true;
#endif
}

const char* videoDriver() { return canAskForVideoDriver() ? SDL_GetCurrentVideoDriver() : nullptr; }

bool drawsThroughOpenGl(const char* videoDriver) {
  constexpr std::array<std::string_view, 5> kSoftware = {"x11", "dummy", "evdummy", "offscreen",
                                                         "windows"};
  return videoDriver != nullptr &&
         std::find(kSoftware.begin(), kSoftware.end(), videoDriver) == kSoftware.end();
}

}  // namespace framesink
