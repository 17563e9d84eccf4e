#include "support/x_client.hpp"

#include <algorithm>
#include <stdexcept>

namespace framesink::test {
namespace {

// While one lives, only this client can change the window tree.
class ServerGrab {
 public:
  explicit ServerGrab(XConnection& x) : x_(x) { xcb_grab_server(x_.raw()); }
  ~ServerGrab() {
    xcb_ungrab_server(x_.raw());
    xcb_flush(x_.raw());
  }
  ServerGrab(const ServerGrab&) = delete;
  ServerGrab& operator=(const ServerGrab&) = delete;

 private:
  XConnection& x_;
};

// Sends all requests about one window before it waits for the first reply.
struct Visit {
  Visit(XConnection& x, Window which)
      : window(which),
        children(xcb_query_tree(x.raw(), which)),
        netName(x.askProperty(which, "_NET_WM_NAME")),
        name(x.askProperty(which, "WM_NAME")) {}

  std::string collectTitle(XConnection& x) const {
    const std::string first = x.text(netName);
    const std::string second = x.text(name);
    return first.empty() ? second : first;
  }

  Window window;
  xcb_query_tree_cookie_t children;
  xcb_get_property_cookie_t netName;
  xcb_get_property_cookie_t name;
};

std::vector<Window> childrenOf(const Reply<xcb_query_tree_reply_t>& tree) {
  if (!tree) return {};
  const Window* first = xcb_query_tree_children(tree.get());
  return {first, first + xcb_query_tree_children_length(tree.get())};
}

}  // namespace

std::vector<Window> XClient::windows(const std::string& title) {
  const ServerGrab grab(x_);
  std::vector<Window> found;
  for (std::vector<Window> level{x_.root()}; !level.empty();) {
    std::vector<Visit> visits;
    for (const Window window : level) visits.emplace_back(x_, window);
    level.clear();
    for (const Visit& visit : visits) {
      const auto children = childrenOf(x_.reply(xcb_query_tree_reply, visit.children));
      level.insert(level.end(), children.begin(), children.end());
      if (visit.collectTitle(x_) == title) found.push_back(visit.window);
    }
  }
  return found;
}

std::optional<Window> XClient::findWindow(const std::string& title) {
  const std::vector<Window> found = windows(title);
  return found.empty() ? std::nullopt : std::optional(found.front());
}

Window XClient::waitForWindow(const std::string& title, std::chrono::milliseconds deadline) {
  Window shown = kNoWindow;
  const auto isShown = [&](Window window) { return isViewable(window) && isManaged(window); };
  const auto appeared = [&] {
    const std::vector<Window> found = windows(title);
    const auto first = std::find_if(found.begin(), found.end(), isShown);
    if (first != found.end()) shown = *first;
    return shown != kNoWindow;
  };
  if (waitUntil(appeared, deadline)) return shown;
  throw std::runtime_error("no window \"" + title + "\" on the screen after " +
                           std::to_string(deadline.count()) + " ms");
}

bool XClient::waitForNoWindow(const std::string& title, std::chrono::milliseconds deadline) {
  return waitUntil([&] { return windows(title).empty(); }, deadline);
}

std::string XClient::title(Window window) { return Visit(x_, window).collectTitle(x_); }

bool XClient::isViewable(Window window) {
  const auto attributes =
      x_.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x_.raw(), window));
  return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool XClient::exists(Window window) {
  return x_.reply(xcb_get_geometry_reply, xcb_get_geometry(x_.raw(), window)) != nullptr;
}

// A window that bypasses the window manager counts as managed.
bool XClient::isManaged(Window window) {
  const auto attributes =
      x_.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x_.raw(), window));
  if (!attributes) return false;
  return attributes->override_redirect || !hasWindowManager() ||
         !x_.items(window, "WM_STATE").empty();
}

Geometry XClient::geometry(Window window) {
  const auto size = x_.reply(xcb_get_geometry_reply, xcb_get_geometry(x_.raw(), window));
  const auto place = x_.reply(xcb_translate_coordinates_reply,
                              xcb_translate_coordinates(x_.raw(), window, x_.root(), 0, 0));
  if (!size || !place) return {};
  return {place->dst_x, place->dst_y, size->width, size->height};
}

Geometry XClient::screenGeometry() const {
  return {0, 0, x_.screen().width_in_pixels, x_.screen().height_in_pixels};
}

// Reads the property of the window that the root names, because the root's own property remains
// after the window manager's death.
bool XClient::hasWindowManager() {
  const auto supporting = x_.items(x_.root(), "_NET_SUPPORTING_WM_CHECK");
  return supporting.size() == 1 &&
         x_.items(supporting[0], "_NET_SUPPORTING_WM_CHECK") == supporting;
}

bool XClient::hasState(Window window, const std::string& state) {
  const auto states = x_.items(window, "_NET_WM_STATE");
  return std::find(states.begin(), states.end(), x_.atom(state)) != states.end();
}

bool XClient::isFullscreen(Window window) {
  return isViewable(window) && geometry(window) == screenGeometry();
}

bool XClient::isMaximised(Window window) {
  return hasState(window, "_NET_WM_STATE_MAXIMIZED_HORZ") &&
         hasState(window, "_NET_WM_STATE_MAXIMIZED_VERT");
}

bool XClient::isIconified(Window window) { return hasState(window, "_NET_WM_STATE_HIDDEN"); }

bool XClient::hasFocus(Window window) {
  const auto focus = x_.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x_.raw()));
  if (!focus) return false;
  // Walks up from the focus. The ids 0 and 1 mean "none" and "wherever the pointer is".
  for (Window current = focus->focus; current > XCB_INPUT_FOCUS_POINTER_ROOT;) {
    if (current == window) return true;
    const auto tree = x_.reply(xcb_query_tree_reply, xcb_query_tree(x_.raw(), current));
    current = tree ? tree->parent : kNoWindow;
  }
  return false;
}

Window XClient::activeWindow() {
  if (hasWindowManager()) {
    const auto active = x_.items(x_.root(), "_NET_ACTIVE_WINDOW");
    return active.empty() ? kNoWindow : active[0];
  }
  const auto focus = x_.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x_.raw()));
  return focus && focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT ? focus->focus : kNoWindow;
}

Window XClient::stackingTop() {
  if (hasWindowManager()) {
    const auto stacking = x_.items(x_.root(), "_NET_CLIENT_LIST_STACKING");
    return stacking.empty() ? kNoWindow : stacking.back();
  }
  const ServerGrab grab(x_);
  const auto windows =
      childrenOf(x_.reply(xcb_query_tree_reply, xcb_query_tree(x_.raw(), x_.root())));
  const auto top = std::find_if(windows.rbegin(), windows.rend(),
                                [&](Window window) { return isViewable(window); });
  return top == windows.rend() ? kNoWindow : *top;
}

}  // namespace framesink::test
