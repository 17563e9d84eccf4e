// What a user sees and does with the windows of an X server.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/wait_until.hpp"
#include "support/x_connection.hpp"
#include "support/x_image.hpp"

namespace framesink::test {

// Has its own connection, so it may be used in the process that owns the windows. For one thread. A
// failed operation (the window is gone, the server died) is reported by its result and lastError();
// none ends the process. The user's actions return once the server has the request, not once the
// window has followed it: use waitUntil for that.
class XClient {
 public:
  // `display` as in DISPLAY; "" takes DISPLAY itself. Throws std::runtime_error.
  explicit XClient(const std::string& display = "") : x_(display) {}

  XConnection& connection() { return x_; }
  const std::string& lastError() const { return x_.lastError(); }

  // All windows with this title in the whole tree, shown or not, at one instant.
  std::vector<Window> windows(const std::string& title);
  std::optional<Window> findWindow(const std::string& title);
  // The first window with this title that is on the screen and, if a window manager runs, is
  // managed by it. Throws std::runtime_error after `deadline`.
  Window waitForWindow(const std::string& title, std::chrono::milliseconds deadline = kDeadline);
  // Waits until no window has this title, shown or not. Returns false after `deadline`.
  bool waitForNoWindow(const std::string& title, std::chrono::milliseconds deadline = kDeadline);
  // _NET_WM_NAME; WM_NAME if that is missing; otherwise "".
  std::string title(Window window);
  // True if the window and all its ancestors are mapped.
  bool isViewable(Window window);
  bool exists(Window window);

  // The window without its frame, in root coordinates; all zero on failure.
  Geometry geometry(Window window);
  Geometry screenGeometry() const;
  // What the window shows; parts covered by another window may read as 0. Empty on failure; it
  // fails if the window is not viewable or not completely on the screen.
  Image pixels(Window window);
  // `part` in the window's own coordinates.
  Image pixels(Window window, const Geometry& part);
  // What the screen shows, from all windows.
  Image rootPixels();
  Image rootPixels(const Geometry& part);

  bool hasWindowManager();
  // Whether `state` is in the window's _NET_WM_STATE, for example "_NET_WM_STATE_HIDDEN".
  bool hasState(Window window, const std::string& state);
  // Whether the window covers the whole screen, as the user sees it. A window's own claim proves
  // nothing if no window manager runs. The window manager's view is
  // hasState(window, "_NET_WM_STATE_FULLSCREEN").
  bool isFullscreen(Window window);
  bool isMaximised(Window window);
  bool isIconified(Window window);
  // Whether keyboard input goes to the window or to one of its children.
  bool hasFocus(Window window);
  // The window manager's active window. Without a window manager, the window with the focus.
  Window activeWindow();
  // The topmost managed window. Without a window manager, the topmost viewable window.
  Window stackingTop();

  // The user's actions. All return false on failure.
  bool closeButton(Window window);
  // Raises the window, gives it the focus and waits until it has it.
  bool activate(Window window);
  // Presses and releases a key of the keyboard; activates the window first if it lacks the focus.
  // `key` is xdotool's name, for example "Escape" or "ctrl+q".
  bool pressKey(Window window, const std::string& key);
  // x and y are the window's corner; with a window manager, the frame's corner.
  bool move(Window window, int x, int y);
  bool resize(Window window, int width, int height);
  bool raise(Window window);
  // These three need a window manager.
  bool iconify(Window window);
  bool maximise(Window window);
  // Restores the window from its icon or its maximised size.
  bool restore(Window window);

  // Puts a window of kCoverColour on top, exactly over this one, until uncover() or until this
  // client is destroyed. The windows below are exposed then.
  bool cover(Window window);
  bool uncover();
  static constexpr std::uint32_t kCoverColour = 0x00FF00FF;

 private:
  bool isManaged(Window window);
  bool setMaximised(Window window, std::uint32_t action);
  bool configure(Window window, std::uint16_t mask, const std::vector<std::uint32_t>& values);

  XConnection x_;
  std::vector<Window> covers_;
};

}  // namespace framesink::test
