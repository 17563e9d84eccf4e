#include "process/sdl_session.hpp"

#include <SDL.h>

#include <cstdio>

#if defined(__ELF__)
// Weak, so that the library still loads with an SDL that lacks this function.
#pragma weak SDL_SetHintWithPriority
#endif

namespace framesink {
namespace {

constinit std::atomic<std::uint32_t> generation{0};
constinit std::atomic<std::uint32_t> uses{0};

bool isVideoUp() { return (SDL_WasInit(SDL_INIT_VIDEO) & SDL_INIT_VIDEO) != 0; }

bool haveHints() {
#if defined(__ELF__)
  return &SDL_SetHintWithPriority != nullptr;
#else
  return true;
#endif
}

}  // namespace

constinit SdlGate sdlGate;

void SdlGate::lock() {
  mutex_.lock();
  if (depth_++ == 0) owner_ = currentThread();
}

void SdlGate::unlock() {
  if (--depth_ == 0) owner_ = 0;
  mutex_.unlock();
}

// SDL_HINT_DEFAULT is the lowest priority, so a user's environment variables win.
void setSdlHints() {
  if (!haveHints()) return;
  // Without this hint, SDL draws software windows on X11 through OpenGL. It then recreates the
  // window, starts the driver's threads, takes four times as long for a frame, and loads libraries
  // while a dlclose may hold the loader's lock.
  SDL_SetHintWithPriority(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0", SDL_HINT_DEFAULT);
  // Leaves Ctrl-C and SIGTERM to the host.
  SDL_SetHintWithPriority(SDL_HINT_NO_SIGNAL_HANDLERS, "1", SDL_HINT_DEFAULT);
  // Leaves the desktop's compositor on.
  SDL_SetHintWithPriority(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0", SDL_HINT_DEFAULT);
}

void initVideo() {
  if (isVideoUp()) return;
  setSdlHints();
  if (SDL_Init(SDL_INIT_VIDEO) < 0) {
    std::fprintf(stderr, "Could not initialize SDL: %s\n", SDL_GetError());
  }
  SDL_EnableScreenSaver();
#if defined(_WIN32)
  // Nobody types text into these windows. With text input on, SDL sets up input methods when a
  // window first gets the focus. They load libraries, wait for the other server's thread at every
  // change of focus, and shut COM down on the thread that unloads the library, which is the host's.
  SDL_StopTextInput();
#endif
}

std::uint32_t sdlGeneration() { return generation; }

void quitSdl(WaitBudget& budget) {
  generation.fetch_add(1);
  while (uses != 0 && !budget.isSpent()) sleepFor(std::chrono::milliseconds(1));
  SDL_Quit();
}

void quitSdl() {
  WaitBudget budget(kLongestUnload);
  quitSdl(budget);
}

// Counts itself before it reads the generation, while quitSdl ends the generation before it reads
// the count. So either the use sees that the generation has ended, or quitSdl waits for the use.
SdlUse::SdlUse(std::uint32_t windowGeneration) {
  uses.fetch_add(1);
  current_ = generation == windowGeneration;
}

SdlUse::~SdlUse() { uses.fetch_sub(1); }

}  // namespace framesink
