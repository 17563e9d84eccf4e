#include "process/x11_session.hpp"

#if defined(SDL_VIDEO_DRIVER_X11)

#include <SDL_syswm.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "process/display_loss.hpp"
#include "process/display_watch.hpp"
#include "process/opengl.hpp"
#include "process/thread_safety.hpp"
#include "process/video_driver.hpp"
#include "process/x11_errors.hpp"
#include "process/x11_forgotten_window.hpp"
#include "process/x11_shared_memory.hpp"
#include "process/x11_socket.hpp"
#include "process/xlib.hpp"

// Weak, so that the library still loads with an SDL that lacks this function.
#pragma weak SDL_GetWindowWMInfo

namespace framesink {
namespace {

// Changed inside the gate only. The loader is asked once, on the host's thread.
constinit Xlib xlib;
constinit bool isXlibSought = false;

// ---- SDL's connection ----

constinit std::atomic<Display*> connection{nullptr};
constinit std::atomic<KnownSocket> connectionSocket{KnownSocket{}};
constinit std::atomic<std::uint32_t> anyWindow{0};  // of the connection
constinit std::array<char, 256> connectionName{};

bool getWmInfo(SDL_Window* window, SDL_SysWMinfo& info) {
  if (&SDL_GetWindowWMInfo == nullptr) return false;
  SDL_VERSION(&info.version);
  return SDL_GetWindowWMInfo(window, &info) == SDL_TRUE && info.subsystem == SDL_SYSWM_X11;
}

// ---- The loss of a connection ----

constinit std::atomic<XIOErrorHandler> handlerBefore{nullptr};
constinit std::atomic<bool> isHandlerSet{false};

// A thread inside the library's calls of SDL may still use a connection of the host's, in a
// callback of the host's that SDL calls.
bool isSdls(Display* lost) {
  Display* known = connection;
  return known == nullptr || lost == known ||
         std::strcmp(xlib.displayString(lost), xlib.displayString(known)) == 0;
}

// Xlib calls it with the connection locked for other threads, which would then wait for ever.
void loseIfSdls(Display* lost) {
  if (!isCallingSdl() || !isSdls(lost)) return;
  xlib.unlockDisplay(lost);
  loseDisplay();
}

int onIoError(Display* lost) {
  loseIfSdls(lost);
  const XIOErrorHandler before = handlerBefore;
  return before == nullptr ? 0 : before(lost);
}

// Xlib calls it after onIoError, and also where a handler of the host's has replaced onIoError.
void onExitAfterIoError(Display* lost, void*) {
  loseIfSdls(lost);
  std::exit(1);
}

void setHandler() {
  if (isHandlerSet.exchange(true)) return;
  handlerBefore = xlib.setIoErrorHandler(onIoError);
}

void takeHandlerBack() {
  if (!isHandlerSet || !xlib.isOpen() || *xlib.ioErrorHandler != onIoError) return;
  xlib.setIoErrorHandler(handlerBefore);
  isHandlerSet = false;
}

// ---- Windows that other clients destroy ----

constinit Mutex watchesMutex;
constinit X11WindowWatch* watches FRAMESINK_GUARDED_BY(watchesMutex) = nullptr;
constinit XEventConverter destroyNotifyBefore = nullptr;

// SDL ignores that a window was destroyed, and waits until a window that it makes is shown. For a
// window that is destroyed before it is watched, the event therefore says that it is shown.
Bool onDestroyNotify(Display* display, XEvent* event, xEvent* wire) {
  const bool isWatched = X11WindowWatch::noteDestroyed(wire->u.destroyNotify.window);
  const Bool isEvent = destroyNotifyBefore(display, event, wire);
  if (!isWatched) {
    const Window window = event->xdestroywindow.window;
    event->type = event->xany.type = MapNotify;
    event->xmap.window = window;
    event->xmap.override_redirect = False;
  }
  return isEvent;
}

// ---- Attaching ----

// May meet a connection that it was attached to before.
void attach(const SDL_SysWMinfo& info) {
  Display* display = info.info.x11.display;
  connection = display;
  anyWindow = static_cast<std::uint32_t>(info.info.x11.window);
  std::strncpy(connectionName.data(), xlib.displayString(display), connectionName.size() - 1);
  connectionSocket = identify(xlib.connectionNumber(display));
  setHandler();
  startDisplayWatch({.answers = doesX11Answer,
                     .showForgotten = showForgottenX11Window,
                     .cut = cutX11,
                     .isLocal = isLocal(xlib.connectionNumber(display))});
  if (xlib.setIoErrorExitHandler != nullptr) {
    xlib.setIoErrorExitHandler(display, onExitAfterIoError, nullptr);
  }
  attachX11Errors(xlib, display);
  const XEventConverter before = xlib.setWireToEvent(display, DestroyNotify, onDestroyNotify);
  if (before != onDestroyNotify) destroyNotifyBefore = before;
  avoidForeignMemory(xlib, display);
  tellX11Errors();
}

bool getWmInfoOfHiddenWindow(SDL_SysWMinfo& info) {
  SDL_Window* window = SDL_CreateWindow("", 0, 0, 1, 1, SDL_WINDOW_HIDDEN);
  if (window == nullptr) return false;
  const bool isKnown = getWmInfo(window, info);
  SDL_DestroyWindow(window);
  return isKnown;
}

}  // namespace

bool X11WindowWatch::noteDestroyed(std::uint64_t xWindow) {
  const MutexLock lock(watchesMutex);
  bool isWatched = false;
  for (X11WindowWatch* watch = watches; watch != nullptr; watch = watch->next_) {
    if (watch->xWindow_ == xWindow) watch->destroyed_ = isWatched = true;
  }
  return isWatched;
}

bool isOnX11() {
  const char* driver = videoDriver();
  return driver != nullptr && std::string_view(driver) == "x11";
}

bool isX11Silent(std::chrono::milliseconds patience) {
  return isDisplaySilent(std::getenv("DISPLAY"), patience);
}

void expectX11() {
  if (!isXlibSought) {
    isXlibSought = true;
    const char* display = std::getenv("DISPLAY");
    const bool mayLoad = display != nullptr && *display != '\0';
    if (&SDL_GetWindowWMInfo != nullptr && xlib.open(mayLoad)) openXcb();
  }
  if (xlib.isOpen()) setHandler();
}

void attachX11(SDL_Window* window) {
  if (connection != nullptr || !xlib.isOpen()) return;
  if (!isOnX11()) {
    takeHandlerBack();
    return;
  }
  SDL_SysWMinfo info;
  if (window == nullptr ? getWmInfoOfHiddenWindow(info) : getWmInfo(window, info)) attach(info);
}

void detachX11() {
  endDisplayWatch();
  connectionSocket = KnownSocket{};
  connection = nullptr;
  takeHandlerBack();
}

void leaveX11() {
  detachX11();
  closeXcb();
  xlib.close();
  isXlibSought = false;
}

void stayLoadedIfChained() {
  static constinit std::atomic<bool> isKept{false};
  if (!isHandlerSet || !xlib.isOpen() || *xlib.ioErrorHandler == onIoError) return;
  if (!isKept.exchange(true)) stayLoaded();
}

bool isAttachedToX11() { return connection != nullptr; }

bool isX11ConnectionThere() { return isThere(connectionSocket); }

bool hasX11HungUp() {
  const KnownSocket socket = connectionSocket;
  return isThere(socket) && hasHungUp(socket.descriptor);
}

bool doesX11Answer(std::chrono::milliseconds patience, const std::atomic<bool>& giveUp) {
  const KnownSocket socket = connectionSocket;
  return isThere(socket) && doesServerAnswer(socket.descriptor, patience, &giveUp);
}

void showForgottenX11Window() {
  if (isX11ConnectionThere()) showForgottenWindow(connectionName.data(), anyWindow);
}

void cutX11() {
  const KnownSocket socket = connectionSocket;
  if (isThere(socket)) cut(socket.descriptor);
}

void X11WindowWatch::begin(SDL_Window* window) {
  SDL_SysWMinfo info;
  if (connection == nullptr || !getWmInfo(window, info)) return;
  xWindow_ = info.info.x11.window;
  {
    const MutexLock lock(watchesMutex);
    next_ = watches;
    watches = this;
  }
  // Its end may have been reported before it was watched.
  XWindowAttributes attributes;
  if (xlib.getWindowAttributes(connection, xWindow_, &attributes) == 0) destroyed_ = true;
}

void X11WindowWatch::end() {
  if (xWindow_ == 0) return;
  const std::uint64_t xWindow = std::exchange(xWindow_, 0);
  {
    const MutexLock lock(watchesMutex);
    X11WindowWatch** link = &watches;
    while (*link != this) link = &(*link)->next_;
    *link = next_;
  }
  Display* display = connection;
  if (!destroyed_ || display == nullptr || isDisplayLost()) return;
  XEvent event{};
  event.xunmap.type = UnmapNotify;
  event.xunmap.display = display;
  event.xunmap.event = event.xunmap.window = xWindow;
  xlib.putBackEvent(display, &event);
}

}  // namespace framesink

#else

namespace framesink {
void expectX11() {}
void attachX11(SDL_Window*) {}
bool isOnX11() { return false; }
bool isX11Silent(std::chrono::milliseconds) { return false; }
void detachX11() {}
void leaveX11() {}
void stayLoadedIfChained() {}
bool isAttachedToX11() { return false; }
bool isX11ConnectionThere() { return false; }
bool hasX11HungUp() { return false; }
bool doesX11Answer(std::chrono::milliseconds, const std::atomic<bool>&) { return true; }
void showForgottenX11Window() {}
void cutX11() {}
bool X11WindowWatch::noteDestroyed(std::uint64_t) { return false; }
void X11WindowWatch::begin(SDL_Window*) {}
void X11WindowWatch::end() {}
}  // namespace framesink

#endif
