#include <dlfcn.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <span>

#include "process/platform.hpp"
#include "process/x11_forgotten_window.hpp"

namespace framesink {
namespace {

struct Xcb {
  void* handle = nullptr;  // of the loader
  decltype(&::xcb_connect) connect = nullptr;
  decltype(&::xcb_disconnect) disconnect = nullptr;
  decltype(&::xcb_connection_has_error) hasError = nullptr;
  decltype(&::xcb_get_setup) getSetup = nullptr;
  decltype(&::xcb_setup_roots_iterator) roots = nullptr;
  decltype(&::xcb_screen_next) nextScreen = nullptr;
  decltype(&::xcb_query_tree) queryTree = nullptr;
  decltype(&::xcb_poll_for_reply) pollForReply = nullptr;
  decltype(&::xcb_query_tree_children) children = nullptr;
  decltype(&::xcb_query_tree_children_length) childrenLength = nullptr;
  decltype(&::xcb_get_window_attributes) getAttributes = nullptr;
  decltype(&::xcb_map_window) mapWindow = nullptr;
  decltype(&::xcb_flush) flush = nullptr;
};

constinit Xcb xcb;

template <class Function>
bool look(const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(xcb.handle, name));
  return function != nullptr;
}

bool find() {
  return look("xcb_connect", xcb.connect) && look("xcb_disconnect", xcb.disconnect) &&
         look("xcb_connection_has_error", xcb.hasError) && look("xcb_get_setup", xcb.getSetup) &&
         look("xcb_setup_roots_iterator", xcb.roots) && look("xcb_screen_next", xcb.nextScreen) &&
         look("xcb_query_tree", xcb.queryTree) && look("xcb_poll_for_reply", xcb.pollForReply) &&
         look("xcb_query_tree_children", xcb.children) &&
         look("xcb_query_tree_children_length", xcb.childrenLength) &&
         look("xcb_get_window_attributes", xcb.getAttributes) &&
         look("xcb_map_window", xcb.mapWindow) && look("xcb_flush", xcb.flush);
}

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

constexpr std::chrono::milliseconds kPatience{2000};  // for one reply
constexpr std::chrono::milliseconds kRest{5};

class Connection {
 public:
  explicit Connection(const char* displayName)
      : connection_(xcb.connect(displayName, &screenNumber_)) {}
  ~Connection() { xcb.disconnect(connection_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  xcb_connection_t* get() const { return connection_; }
  // The reply to that request; null if the X server refuses or is silent.
  template <class Reply>
  std::unique_ptr<Reply, Free> reply(unsigned sequence) const {
    xcb.flush(connection_);
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    for (auto left = kPatience; left > kRest; left -= kRest) {
      if (xcb.pollForReply(connection_, sequence, &reply, &error) != 0) break;
      sleepFor(kRest);
    }
    std::free(error);
    return std::unique_ptr<Reply, Free>(static_cast<Reply*>(reply));
  }

  bool isUp() const { return xcb.hasError(connection_) == 0; }
  std::uint32_t idMask() const { return xcb.getSetup(connection_)->resource_id_mask; }

  xcb_window_t root() const {
    xcb_screen_iterator_t screen = xcb.roots(xcb.getSetup(connection_));
    for (int i = 0; i < screenNumber_ && screen.rem > 1; ++i) xcb.nextScreen(&screen);
    return screen.data->root;
  }

 private:
  int screenNumber_ = 0;
  xcb_connection_t* const connection_;
};

bool isForgotten(const Connection& connection, xcb_window_t window) {
  const auto cookie = xcb.getAttributes(connection.get(), window);
  const auto attributes = connection.reply<xcb_get_window_attributes_reply_t>(cookie.sequence);
  return attributes != nullptr && attributes->map_state == XCB_MAP_STATE_UNMAPPED &&
         attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT && attributes->override_redirect == 0;
}

// Ids grow, so the newest window has the greatest one.
xcb_window_t newestForgotten(const Connection& connection, std::uint32_t client) {
  const auto cookie = xcb.queryTree(connection.get(), connection.root());
  const auto tree = connection.reply<xcb_query_tree_reply_t>(cookie.sequence);
  xcb_window_t newest = XCB_WINDOW_NONE;
  if (tree == nullptr) return newest;
  const auto length = static_cast<std::size_t>(xcb.childrenLength(tree.get()));
  for (const xcb_window_t window : std::span(xcb.children(tree.get()), length)) {
    const bool isSdls = (window & ~connection.idMask()) == client;
    if (isSdls && window > newest && isForgotten(connection, window)) newest = window;
  }
  return newest;
}

}  // namespace

void openXcb() {
  if (xcb.handle != nullptr) return;
  xcb.handle = ::dlopen("libxcb.so.1", RTLD_LAZY | RTLD_NOLOAD);
  if (xcb.handle != nullptr && !find()) closeXcb();
}

void closeXcb() {
  if (xcb.handle != nullptr) ::dlclose(xcb.handle);
  xcb = Xcb();
}

void showForgottenWindow(const char* displayName, std::uint32_t anyWindow) {
  if (xcb.handle == nullptr) return;
  const Connection connection(displayName);
  if (!connection.isUp()) return;
  const xcb_window_t window = newestForgotten(connection, anyWindow & ~connection.idMask());
  if (window == XCB_WINDOW_NONE) return;
  xcb.mapWindow(connection.get(), window);
  xcb.flush(connection.get());
}

}  // namespace framesink
