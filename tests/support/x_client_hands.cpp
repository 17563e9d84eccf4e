// XClient's part that acts like a user.
#include "support/child_process.hpp"
#include "support/x_client.hpp"

namespace framesink::test {
namespace {

// The source of a request to the window manager: a pager or taskbar, on the user's behalf. A window
// manager obeys that, while it may refuse an application's request.
constexpr std::uint32_t kFromUser = 2;
constexpr std::uint32_t kRemove = 0;
constexpr std::uint32_t kAdd = 1;
constexpr std::uint32_t kIconicState = 3;
constexpr std::uint32_t kNow = XCB_CURRENT_TIME;

}  // namespace

// Without a window manager, sends the message that a window manager would send.
bool XClient::closeButton(Window window) {
  if (!exists(window)) return false;
  if (hasWindowManager()) {
    return x_.sendMessage(x_.root(), window, "_NET_CLOSE_WINDOW", {kNow, kFromUser});
  }
  return x_.sendMessage(window, window, "WM_PROTOCOLS", {x_.atom("WM_DELETE_WINDOW"), kNow});
}

bool XClient::activate(Window window) {
  if (!exists(window)) return false;
  if (hasWindowManager()) {
    x_.sendMessage(x_.root(), window, "_NET_ACTIVE_WINDOW", {kFromUser, kNow, kNoWindow});
  } else if (!raise(window) || !x_.check(xcb_set_input_focus_checked(
                                   x_.raw(), XCB_INPUT_FOCUS_PARENT, window, kNow))) {
    return false;
  }
  return waitUntil([&] { return hasFocus(window) || !exists(window); }) && exists(window);
}

// The server's keyboard gets the key, so it takes the way of a real one.
bool XClient::pressKey(Window window, const std::string& key) {
  if (!hasFocus(window) && !activate(window)) return false;
  ChildProcess xdotool({"xdotool", "key", key}, {.environment = {"DISPLAY=" + x_.display()}});
  return xdotool.wait() == ExitStatus{.code = 0} && xdotool.standardError().empty();
}

bool XClient::move(Window window, int x, int y) {
  return configure(window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                   {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)});
}

bool XClient::resize(Window window, int width, int height) {
  return configure(window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                   {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)});
}

bool XClient::raise(Window window) {
  return configure(window, XCB_CONFIG_WINDOW_STACK_MODE, {XCB_STACK_MODE_ABOVE});
}

// With a window manager, the server passes the request to it, and it answers in its own way.
bool XClient::configure(Window window, std::uint16_t mask,
                        const std::vector<std::uint32_t>& values) {
  return x_.check(xcb_configure_window_checked(x_.raw(), window, mask, values.data()));
}

bool XClient::iconify(Window window) {
  return hasWindowManager() && exists(window) &&
         x_.sendMessage(x_.root(), window, "WM_CHANGE_STATE", {kIconicState});
}

bool XClient::maximise(Window window) { return setMaximised(window, kAdd); }

bool XClient::restore(Window window) {
  return isIconified(window) ? activate(window) : setMaximised(window, kRemove);
}

bool XClient::setMaximised(Window window, std::uint32_t action) {
  return hasWindowManager() && exists(window) &&
         x_.sendMessage(x_.root(), window, "_NET_WM_STATE",
                        {action, x_.atom("_NET_WM_STATE_MAXIMIZED_HORZ"),
                         x_.atom("_NET_WM_STATE_MAXIMIZED_VERT"), kFromUser});
}

bool XClient::cover(Window window) {
  const Geometry place = geometry(window);
  if (place == Geometry{}) return false;
  const Window cover = xcb_generate_id(x_.raw());
  const std::uint32_t attributes[] = {kCoverColour, 1};
  const auto created = xcb_create_window_checked(
      x_.raw(), XCB_COPY_FROM_PARENT, cover, x_.root(), static_cast<std::int16_t>(place.x),
      static_cast<std::int16_t>(place.y), static_cast<std::uint16_t>(place.width),
      static_cast<std::uint16_t>(place.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, attributes);
  if (!x_.check(created) || !x_.check(xcb_map_window_checked(x_.raw(), cover))) return false;
  covers_.push_back(cover);
  return raise(cover);
}

bool XClient::uncover() {
  bool removed = !covers_.empty();
  for (const Window cover : covers_) {
    removed = x_.check(xcb_destroy_window_checked(x_.raw(), cover)) && removed;
  }
  covers_.clear();
  return removed;
}

}  // namespace framesink::test
