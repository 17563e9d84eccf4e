#include "support/sdl_windows.hpp"

#include <algorithm>
#include <array>
#include <mutex>

#include "process/platform.hpp"
#include "process/sdl_session.hpp"

namespace framesink::test {
namespace {

// Guarded by sdlGate. A fixed array, because a container's allocation on the display thread could
// fail in tests that run out of memory.
struct MadeWindow {
  SDL_Window* window = nullptr;
  OsThreadId maker = 0;
};
constinit std::array<MadeWindow, 256> windows{};

void replace(SDL_Window* old, SDL_Window* with) {
  if (old == with) return;
  const std::lock_guard gate(sdlGate);
  const auto place = std::find_if(windows.begin(), windows.end(),
                                  [&](const MadeWindow& made) { return made.window == old; });
  if (place != windows.end()) *place = {with, currentThread()};
}

std::optional<std::uint32_t> colourInTheMiddle(SDL_Window* window) {
  SDL_Renderer* renderer = SDL_GetRenderer(window);
  if (renderer == nullptr) return std::nullopt;
  SDL_Rect pixel{0, 0, 1, 1};
  SDL_GetRendererOutputSize(renderer, &pixel.x, &pixel.y);
  pixel.x /= 2;
  pixel.y /= 2;
  std::uint32_t colour = 0;
  const bool isRead =
      SDL_RenderReadPixels(renderer, &pixel, SDL_PIXELFORMAT_ARGB8888, &colour, 4) == 0;
  return isRead ? std::optional(colour & 0xFFFFFF) : std::nullopt;
}

SdlWindowFacts factsOf(const MadeWindow& made) {
  SDL_Window* window = made.window;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  SDL_GetWindowPosition(window, &x, &y);
  SDL_GetWindowSize(window, &width, &height);
  return {.title = SDL_GetWindowTitle(window),
          .position = {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)},
          .size = {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)},
          .fullscreen = (SDL_GetWindowFlags(window) & SDL_WINDOW_FULLSCREEN_DESKTOP) != 0,
          .colour = colourInTheMiddle(window),
          .isOfThisThread = made.maker == currentThread(),
          .id = SDL_GetWindowID(window)};
}

}  // namespace

std::vector<SdlWindowFacts> sdlWindows() {
  const std::lock_guard gate(sdlGate);
  std::vector<SdlWindowFacts> facts;
  for (const MadeWindow& made : windows) {
    if (made.window != nullptr) facts.push_back(factsOf(made));
  }
  std::sort(facts.begin(), facts.end(),
            [](const SdlWindowFacts& a, const SdlWindowFacts& b) { return a.id < b.id; });
  return facts;
}

std::size_t sdlWindowCount() {
  const std::lock_guard gate(sdlGate);
  return static_cast<std::size_t>(
      std::count_if(windows.begin(), windows.end(),
                    [](const MadeWindow& made) { return made.window != nullptr; }));
}

}  // namespace framesink::test

using framesink::test::replace;

extern "C" {

SDL_Window* __real_SDL_CreateWindow(const char*, int, int, int, int, Uint32);
SDL_Window* __wrap_SDL_CreateWindow(const char*, int, int, int, int, Uint32);
void __real_SDL_DestroyWindow(SDL_Window*);
void __wrap_SDL_DestroyWindow(SDL_Window*);

SDL_Window* __wrap_SDL_CreateWindow(const char* title, int x, int y, int width, int height,
                                    Uint32 flags) {
  SDL_Window* window = __real_SDL_CreateWindow(title, x, y, width, height, flags);
  replace(nullptr, window);
  return window;
}

void __wrap_SDL_DestroyWindow(SDL_Window* window) {
  replace(window, nullptr);
  __real_SDL_DestroyWindow(window);
}

}  // extern "C"
