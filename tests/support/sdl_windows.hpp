// SDL's windows as SDL sees them, with any video driver.
//
// The program must be linked with --wrap=SDL_CreateWindow and --wrap=SDL_DestroyWindow.
#pragma once

#include <SDL.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "display/geometry.hpp"

namespace framesink::test {

struct SdlWindowFacts {
  std::string title;
  Position position;
  Size size;
  bool fullscreen = false;
  std::optional<std::uint32_t> colour;  // of the pixel in the middle, 0x00RRGGBB
  bool isOfThisThread = false;          // made by the calling thread
  std::uint32_t id = 0;
};

// All windows at one instant, between two display passes.
std::vector<SdlWindowFacts> sdlWindows();

std::size_t sdlWindowCount();

}  // namespace framesink::test
