/* own_sdl_host LIBRARY CYCLES: a host that uses SDL for a window of its own. If CYCLES is 0, both
 * windows stay until the user closes the library's. Otherwise the host, CYCLES times,
 * starts SDL, loads the library and unloads it. */
#include <SDL.h>
#include <stdlib.h>

#include "host.h"

static SDL_Window* openOwnWindow(void) {
  SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  CHECK(SDL_Init(SDL_INIT_VIDEO) == 0);
  SDL_Window* const window = SDL_CreateWindow("the host's own", 500, 300, 80, 60, 0);
  CHECK(window != NULL);
  SDL_Surface* const surface = SDL_GetWindowSurface(window);
  CHECK(surface != NULL);
  SDL_FillRect(surface, NULL, SDL_MapRGB(surface->format, 0xC0, 0x60, 0x30));
  CHECK(SDL_UpdateWindowSurface(window) == 0);
  return window;
}

/* The library's own decision: its unloading shuts SDL down for the whole process. The host may
 * start SDL again. */
static void unloadAndCheck(Library* library) {
  const double start = secondsNow();
  unloadLibrary(library);
  CHECK(secondsNow() - start < 5);
  CHECK(!isMapped("libframesink"));
  CHECK(SDL_WasInit(SDL_INIT_VIDEO) == 0);
}

static void showUntilTheUserCloses(const char* path) {
  SDL_Window* const own = openOwnWindow();
  const uint32_t id = SDL_GetWindowID(own);
  const int screenSaver = SDL_IsScreenSaverEnabled() == SDL_TRUE;

  Library library = loadLibrary(path);
  void* const block = createBlock(&library, (WindowRequest){"guest", 100, 100, 1, 0});
  CHECK((SDL_IsScreenSaverEnabled() == SDL_TRUE) == screenSaver);
  say("showing");
  showUntilClosed(&library, block, "guest", 0x3060C0);
  CHECK(SDL_GetWindowFromID(id) == own);
  library.destroy(block);
  checkForLeaks();
  unloadAndCheck(&library);
}

/* In turn, the library's window is never opened, synchronous and threaded. */
static void runCycle(const char* path, int cycle) {
  SDL_Window* const own = openOwnWindow();
  Library library = loadLibrary(path);
  const WindowRequest request = {"cycle", 100, 100, cycle % 3 != 0, cycle % 3 == 1};
  void* const block = createBlock(&library, request);
  Frame frame;
  fillFrame(&frame, 0x20A040);
  for (int i = 0; i < 5; ++i) updateBlock(&library, block, &frame);
  library.destroy(block);
  if (cycle % 3 == 0) {
    /* Without a window the library makes no server, and does not shut SDL down. */
    unloadLibrary(&library);
    CHECK(SDL_WasInit(SDL_INIT_VIDEO) != 0);
    SDL_DestroyWindow(own);
    SDL_Quit();
    return;
  }
  unloadAndCheck(&library);
}

int main(int count, char** arguments) {
  CHECK(count == 3);
  const int cycles = atoi(arguments[2]);
  if (cycles == 0) showUntilTheUserCloses(arguments[1]);
  for (int cycle = 0; cycle < cycles; ++cycle) runCycle(arguments[1], cycle);
  CHECK(SDL_Init(SDL_INIT_VIDEO) == 0);
  SDL_Quit();
  return 0;
}
