#include "sdl_counts.h"

#include <SDL.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>

#include "host.h"

enum { LEAKED_BYTES = 32 * 1024 };

SdlCounts sdlCounts;
static void* volatile leaked; /* volatile, or the compiler would remove the leak */
Leak plantedLeak = NO_LEAK;

static struct {
  __typeof__(SDL_CreateWindow)* createWindow;
  __typeof__(SDL_DestroyWindow)* destroyWindow;
  __typeof__(SDL_RenderPresent)* renderPresent;
  __typeof__(SDL_PollEvent)* pollEvent;
} sdl;

static void find(void* handle, const char* name, void* function) {
  void* const address = dlsym(handle, name);
  CHECK(address != NULL);
  memcpy(function, &address, sizeof address);
}

/* Keeps no handle, because SDL must be unloaded together with the library. */
void passCallsOnToSdl(void) {
  void* const handle = dlopen("libSDL2-2.0.so.0", RTLD_NOW | RTLD_NOLOAD);
  CHECK(handle != NULL);
  find(handle, "SDL_CreateWindow", &sdl.createWindow);
  find(handle, "SDL_DestroyWindow", &sdl.destroyWindow);
  find(handle, "SDL_RenderPresent", &sdl.renderPresent);
  find(handle, "SDL_PollEvent", &sdl.pollEvent);
  dlclose(handle);
}

SDL_Window* SDL_CreateWindow(const char* title, int x, int y, int width, int height, Uint32 flags) {
  ++sdlCounts.opened;
  if (plantedLeak == LEAK_DESCRIPTOR) CHECK(open("/dev/null", O_RDONLY | O_CLOEXEC) >= 0);
  if (plantedLeak == LEAK_MEMORY) memset(leaked = malloc(LEAKED_BYTES), 1, LEAKED_BYTES);
  if (plantedLeak == LEAK_WINDOW) sdl.createWindow("kept", 0, 0, 1, 1, SDL_WINDOW_HIDDEN);
  return sdl.createWindow(title, x, y, width, height, flags);
}

void SDL_DestroyWindow(SDL_Window* window) {
  sdl.destroyWindow(window);
  ++sdlCounts.closed;
}

void SDL_RenderPresent(SDL_Renderer* renderer) {
  sdl.renderPresent(renderer);
  ++sdlCounts.shown;
}

int SDL_PollEvent(SDL_Event* event) {
  const int arrived = sdl.pollEvent(event);
  if (arrived != 0) ++sdlCounts.events;
  return arrived;
}
