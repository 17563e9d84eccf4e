// What keeps the host alive while SDL draws on X11: Xlib ends the process after the first error of
// a request and after the loss of the connection, unless handlers keep it from doing so.
//
// Everything that concerns only SDL's connection is attached to that connection. Only the handler
// for the loss of a connection belongs to the whole process, because SDL holds a second connection,
// which nobody else can reach. It passes on every loss that does not meet the library's own calls
// of SDL, and it is in force only while SDL is on X11.
//
// Xlib is looked up at run time, so that the library loads where there is none. Without it, and
// with a video driver other than x11, nothing here does anything.
#pragma once

#include <SDL.h>

#include <atomic>
#include <chrono>
#include <cstdint>

namespace framesink {

// Before SDL's video may start: handles the loss of a connection. Host threads, inside the gate.
void expectX11();

// True if DISPLAY names a local X server that accepts connections but does not react to them within
// `patience`. SDL would wait for it for ever.
bool isX11Silent(std::chrono::milliseconds patience);

// True while SDL's video driver is x11.
bool isOnX11();

// After SDL's video has started, and for each new window: if SDL is on X11, attaches the handlers
// to its connection, otherwise takes back what expectX11 did. If `window` is null, makes a hidden
// window for a moment, since SDL tells its connection only through a window. Inside the gate.
void attachX11(SDL_Window* window);

// After SDL has been shut down: takes everything back. Inside the gate.
void detachX11();

// The same before the library is unloaded, and gives Xlib back. Host threads.
void leaveX11();

// Keeps the library loaded if another handler for the loss of connections has been set over the
// library's, because that handler may call the library's at any time. Host threads.
void stayLoadedIfChained();

// True between attachX11 and detachX11 if SDL is on X11. Inside the gate.
bool isAttachedToX11();

// True while the connection is still the one that was attached: false once the host has shut SDL's
// video down, also if it has started it again. Any thread.
bool isX11ConnectionThere();

// True if the other end of the connection has closed it. Any thread.
bool hasX11HungUp();

// True if the X server answers a new connection within `patience` and before `giveUp`. Any thread.
bool doesX11Answer(std::chrono::milliseconds patience, const std::atomic<bool>& giveUp);

// Helps SDL out of waiting for a window manager that has ended. Waits for the X server. Any thread.
void showForgottenX11Window();

// Cuts the connection, so that a call that waits for the X server's answer ends. Any thread.
void cutX11();

// Notices that another client has destroyed one of the library's windows.
class X11WindowWatch {
 public:
  X11WindowWatch() = default;
  ~X11WindowWatch() { end(); }
  X11WindowWatch(const X11WindowWatch&) = delete;
  X11WindowWatch& operator=(const X11WindowWatch&) = delete;

  void begin(SDL_Window* window);

  // Call it before the window is destroyed. If another client has destroyed it already, SDL would
  // wait for ever for the window to disappear; this makes the wait end.
  void end();

  // True once another client has destroyed the window. Any thread.
  bool isDestroyed() const { return destroyed_; }

  // The X server has reported that the window is gone. False if it is not watched. Any thread.
  static bool noteDestroyed(std::uint64_t xWindow);

 private:
  std::uint64_t xWindow_ = 0;  // the X server's id; 0: none
  std::atomic<bool> destroyed_{false};
  X11WindowWatch* next_ = nullptr;
};

}  // namespace framesink
