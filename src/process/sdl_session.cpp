#include "process/sdl_session.hpp"

#include <SDL.h>

#include <cstdio>

#if defined(__ELF__)
// The library still loads against an SDL that lacks it.
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

// The lowest priority: a user's environment variables win.
void setSdlHints() {
  if (!haveHints()) return;
  // Otherwise SDL draws software windows through OpenGL on X11: it makes the window anew, starts
  // the driver's threads, loads libraries while the loader's lock may be held by dlclose, and takes
  // four times as long for a frame.
  SDL_SetHintWithPriority(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0", SDL_HINT_DEFAULT);
  // Ctrl-C and SIGTERM stay the host's.
  SDL_SetHintWithPriority(SDL_HINT_NO_SIGNAL_HANDLERS, "1", SDL_HINT_DEFAULT);
  // The desktop's compositor stays on.
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
  // Nobody types text into these windows. Otherwise SDL sets up input methods with the first focus,
  // which load libraries; they wait for the other server's thread each time the focus changes, and
  // take COM down on the thread that unloads the library, which is the host's.
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

// Counted before the generation is looked at, as quitSdl ends the generation before it looks at the
// count.
SdlUse::SdlUse(std::uint32_t windowGeneration) {
  uses.fetch_add(1);
  current_ = generation == windowGeneration;
}

SdlUse::~SdlUse() { uses.fetch_sub(1); }

}  // namespace framesink
