// The user's eyes and hands on the windows of an X server.
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

// Has a connection of its own, so it may work in the process whose windows it looks at. For one
// thread. An operation that fails (the window is gone, the server died) says so in its result and
// in lastError(); none ends the process. The hands return once the server has taken the request,
// not once the window has followed it: wait for that with waitUntil.
class XClient {
 public:
  // `display` as in DISPLAY; "" takes DISPLAY itself. Throws std::runtime_error.
  explicit XClient(const std::string& display = "") : x_(display) {}

  XConnection& connection() { return x_; }
  const std::string& lastError() const { return x_.lastError(); }

  // Windows by title, anywhere in the tree, shown or not. Taken at one instant.
  std::vector<Window> windows(const std::string& title);
  std::optional<Window> findWindow(const std::string& title);
  // The first window with this title that is on the screen and, where a window manager runs, taken
  // over by it. Throws std::runtime_error after `deadline`.
  Window waitForWindow(const std::string& title, std::chrono::milliseconds deadline = kDeadline);
  // True once no window has this title, shown or not.
  bool waitForNoWindow(const std::string& title, std::chrono::milliseconds deadline = kDeadline);
  // _NET_WM_NAME, else WM_NAME, else "".
  std::string title(Window window);
  // Mapped with all its ancestors.
  bool isViewable(Window window);
  bool exists(Window window);

  // Of the window without its frame, in root coordinates; all zero on failure.
  Geometry geometry(Window window);
  Geometry screenGeometry() const;
  // What the window shows; parts that another window covers may read as 0. Empty on failure, which
  // includes a window that is not viewable or not wholly on the screen.
  Image pixels(Window window);
  // `part` in the window's own coordinates.
  Image pixels(Window window, const Geometry& part);
  // What is on the screen, whatever window shows it.
  Image rootPixels();
  Image rootPixels(const Geometry& part);

  bool hasWindowManager();
  // One of the window's _NET_WM_STATE, for example "_NET_WM_STATE_HIDDEN".
  bool hasState(Window window, const std::string& state);
  // Covers the whole screen, as the user sees it. A window's claim to be fullscreen proves nothing
  // where no window manager answers it; a window manager's word is hasState(window,
  // "_NET_WM_STATE_FULLSCREEN").
  bool isFullscreen(Window window);
  bool isMaximised(Window window);
  bool isIconified(Window window);
  // Keyboard input goes to the window or to a child of it.
  bool hasFocus(Window window);
  // The window manager's active window; without one, the window with the focus.
  Window activeWindow();
  // The topmost window that the window manager looks after; without one, the topmost viewable
  // window.
  Window stackingTop();

  // The hands. False on failure.
  bool closeButton(Window window);
  // Raises the window, gives it the focus and waits for that.
  bool activate(Window window);
  // Activates the window if it has not the focus, then presses and releases a key on the keyboard.
  // `key` as xdotool names it, for example "Escape" or "ctrl+q".
  bool pressKey(Window window, const std::string& key);
  // With a window manager, the place of the frame's corner.
  bool move(Window window, int x, int y);
  bool resize(Window window, int width, int height);
  bool raise(Window window);
  // These three need a window manager.
  bool iconify(Window window);
  bool maximise(Window window);
  // Out of the icon and out of the maximised size.
  bool restore(Window window);

  // Puts a window of kCoverColour on top, exactly over this one, until uncover() or until this
  // client goes; what was covered is then exposed.
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
