/* own_sdl_host LIBRARY: a host that uses SDL for a window of its own. Both windows stay until the
 * user closes the library's. */
#include <SDL.h>

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

int main(int count, char** arguments) {
  CHECK(count == 2);
  SDL_Window* const own = openOwnWindow();
  const uint32_t id = SDL_GetWindowID(own);
  const int screenSaver = SDL_IsScreenSaverEnabled() == SDL_TRUE;

  Library library = loadLibrary(arguments[1]);
  void* const block = createBlock(&library, (WindowRequest){"guest", 100, 100, 1, 0});
  CHECK((SDL_IsScreenSaverEnabled() == SDL_TRUE) == screenSaver);
  say("showing");
  showUntilClosed(&library, block, "guest", 0x3060C0);
  CHECK(SDL_GetWindowFromID(id) == own);
  library.destroy(block);
  checkForLeaks();
  unloadLibrary(&library);

  /* The library shuts SDL down for the whole process when it goes. The host may start it again. */
  CHECK(!isMapped("libframesink"));
  CHECK(SDL_WasInit(SDL_INIT_VIDEO) == 0);
  CHECK(SDL_Init(SDL_INIT_VIDEO) == 0);
  SDL_Quit();
  return 0;
}
