#include "process/sdl_session.hpp"

#include <SDL.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "process/display_loss.hpp"
#include "process/display_watch.hpp"
#include "process/platform.hpp"
#include "process/sdl_hints.hpp"
#include "process/video_driver.hpp"
#include "process/x11_session.hpp"

namespace framesink {
namespace {

bool isVideoUp() { return (SDL_WasInit(SDL_INIT_VIDEO) & SDL_INIT_VIDEO) != 0; }

// A mark in SDL's list of hints, which lives exactly until SDL is shut down.
constexpr const char* kSession = "FRAMESINK_SESSION";
constexpr const char* kSessionMark = "under way";  // a value that no environment has by chance

constinit bool isMarked = false;     // used inside the gate only
constinit bool openGlInUse = false;  // used inside the gate only
constinit bool isRefusalTold = false;
constinit std::atomic<std::uint32_t> quits{0};

// True for the values of SDL_HINT_FRAMEBUFFER_ACCELERATION with which SDL draws without OpenGL.
bool isPlain(const char* acceleration) {
  const std::string_view value = acceleration == nullptr ? "" : acceleration;
  return value == "0" || value == "false" || value == "software";
}

// Whatever the user or the host chose: exit() on another thread than the main one, and threaded
// windows beside synchronous ones, crash in OpenGL drivers on X11, and OpenGL would gain nothing.
void drawWithoutOpenGl() {
  const char* const renderer = SDL_GetHint(SDL_HINT_RENDER_DRIVER);
  const bool isRendererPlain =
      renderer == nullptr || *renderer == '\0' || std::string_view(renderer) == "software";
  const char* const acceleration = SDL_GetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION);
  const bool isAsked = !isRendererPlain ||
                       (acceleration != nullptr && *acceleration != '\0' && !isPlain(acceleration));
  if (!canSetHints()) return;
  if (isAsked && !isRefusalTold) {
    isRefusalTold = true;
    std::fputs("On X11, windows are drawn without OpenGL, whatever SDL's hints say.\n", stderr);
  }
  setHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0", SDL_HINT_OVERRIDE);
  setHint(SDL_HINT_RENDER_DRIVER, "software", SDL_HINT_OVERRIDE);
}

// SDL_HINT_DEFAULT is the lowest priority, so a user's environment variables win.
void setSdlHints() {
  // Without this hint, SDL draws software windows on X11 through OpenGL. It then recreates the
  // window, starts the driver's threads, takes four times as long for a frame, and loads libraries
  // while a dlclose may hold the loader's lock.
  setHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0", SDL_HINT_DEFAULT);
  // Leaves Ctrl-C and SIGTERM to the host.
  setHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1", SDL_HINT_DEFAULT);
  // Leaves the desktop's compositor on.
  setHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0", SDL_HINT_DEFAULT);
  setHint(kSession, kSessionMark, SDL_HINT_OVERRIDE);
}

// SDL_VIDEO_DRIVER is SDL 3's name, which counts where SDL 2 is a layer over it.
bool isDriverAskedFor() {
  const char* const hint = SDL_GetHint(SDL_HINT_VIDEODRIVER);
  const char* const variable = std::getenv("SDL_VIDEO_DRIVER");
  return (hint != nullptr && *hint != '\0') || (variable != nullptr && *variable != '\0');
}

// Some SDLs take the offscreen driver by themselves where there is no display, some do not. The
// model runs on as silently with both.
bool startOffscreen() {
  if (!canSetHints() || isDriverAskedFor()) return false;
  setHint(SDL_HINT_VIDEODRIVER, "offscreen", SDL_HINT_DEFAULT);
  return SDL_Init(SDL_INIT_VIDEO) >= 0;
}

bool isMarkThere() {
  const char* const mark = SDL_GetHint(kSession);
  return mark != nullptr && std::string_view(mark) == kSessionMark;
}

// Also notices a host that has shut video down and started it again: on X11, SDL then has another
// connection; elsewhere, the mark is gone.
bool isSessionOver() {
  if (isAttachedToX11()) return !isX11ConnectionThere();
  if (!isMarked) return false;
  return (canAskForVideoDriver() && videoDriver() == nullptr) || !isMarkThere();
}

// A list of drivers, or nothing.
bool mayDriverBeX11() {
  const char* const hint = SDL_GetHint(SDL_HINT_VIDEODRIVER);
  return hint == nullptr || *hint == '\0' ||
         std::string_view(hint).find("x11") != std::string_view::npos;
}

bool startVideo() {
  bool isUp = SDL_Init(SDL_INIT_VIDEO) >= 0;
  if (!isUp) {
    const std::string reason = SDL_GetError();  // before other calls of SDL change it
    isUp = startOffscreen();
    if (!isUp) std::fprintf(stderr, "Could not initialize SDL: %s\n", reason.c_str());
  }
  SDL_EnableScreenSaver();
#if defined(_WIN32)
  // Nobody types text into these windows. With text input on, SDL sets up input methods when a
  // window first gets the focus. They load libraries, wait for the other server's thread at every
  // change of focus, and shut COM down on the thread that unloads the library, which is the host's.
  SDL_StopTextInput();
#endif
  return isUp;
}

}  // namespace

void prepareVideo() {
  setSdlHints();
  expectX11();
}

void joinVideo(SDL_Window* window) {
  // Missing if the host has shut SDL down and started it again, or if SDL ran out of memory.
  if (!isMarkThere()) setSdlHints();
  isMarked = isMarkThere();
  if (isOnX11()) drawWithoutOpenGl();
  attachX11(window);
}

bool isOpenGlInUse() { return openGlInUse; }

void initVideo() {
  if (inheritDisplayLoss()) return;
  const bool wasUp = isVideoUp();
  if (!wasUp && mayDriverBeX11() && isX11Silent(kLongestSilence)) {
    declareDisplayLost();
    return;
  }
  const bool mayHostAccelerate = wasUp && !isPlain(SDL_GetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION));
  callSdl([&] {
    prepareVideo();
    if (wasUp || startVideo()) joinVideo(nullptr);
    openGlInUse = mayHostAccelerate || drawsThroughOpenGl(videoDriver());
  });
}

void noticeForeignQuit() {
  if (isDisplayLost() || !isSessionOver()) return;
  isMarked = false;
  endSdlGeneration();
  detachX11();
  quits.fetch_add(1);
}

std::uint32_t foreignQuits() { return quits; }

void restInSdl(std::uint32_t milliseconds) {
  if (isDisplayLost()) {
    sleepFor(std::chrono::milliseconds(milliseconds));
  } else {
    SDL_Delay(milliseconds);
  }
}

void quitSdl(WaitBudget& budget) {
  endSdlGeneration(budget);
  const InGate gate;
  callSdl([] { SDL_Quit(); });
  isMarked = false;
  detachX11();
}

void quitSdl() {
  WaitBudget budget(kLongestUnload);
  quitSdl(budget);
}

}  // namespace framesink
