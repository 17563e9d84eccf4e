// One connection to an X server, for one thread.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace framesink::test {

// X's id of a window; the same number as Xlib's Window.
using Window = std::uint32_t;
inline constexpr Window kNoWindow = 0;

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

// Uses xcb and not Xlib, so that errors, and even the server's death, are returned to the caller.
// Xlib has one error handler per process, which SDL also sets, and exits.
class XConnection {
 public:
  // `display` is in the form of DISPLAY; "" means DISPLAY itself. Throws std::runtime_error if the
  // server cannot be reached.
  explicit XConnection(const std::string& display = "");
  ~XConnection();
  XConnection(const XConnection&) = delete;
  XConnection& operator=(const XConnection&) = delete;

  xcb_connection_t* raw() const { return connection_; }
  const std::string& display() const { return display_; }
  const xcb_screen_t& screen() const { return *screen_; }
  Window root() const { return screen_->root; }

  // Waits for the reply to a request: reply(xcb_get_geometry_reply, xcb_get_geometry(raw(),
  // window)). Null on failure.
  template <class Answer, class Cookie>
  Reply<Answer> reply(Answer* (*collect)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                      Cookie cookie) {
    xcb_generic_error_t* error = nullptr;
    Reply<Answer> answer(collect(connection_, cookie, &error));
    note(error, answer != nullptr);
    return answer;
  }

  // For a ..._checked request: waits until the server has handled it. Returns false if it failed.
  bool check(xcb_void_cookie_t request);

  xcb_atom_t atom(const std::string& name);

  // A property's 32-bit items; empty if the property is missing.
  std::vector<std::uint32_t> items(Window window, const std::string& property);
  xcb_get_property_cookie_t askProperty(Window window, const std::string& property);
  std::string text(xcb_get_property_cookie_t asked);

  // Sends a client message of five items about `window` to `receiver`.
  bool sendMessage(Window receiver, Window window, const std::string& type,
                   const std::vector<std::uint32_t>& items);

  // Describes the last failure, for a test's message.
  const std::string& lastError() const { return lastError_; }

 private:
  void note(xcb_generic_error_t* error, bool succeeded);

  std::string display_;
  xcb_connection_t* connection_;
  const xcb_screen_t* screen_;
  std::map<std::string, xcb_atom_t> atoms_;
  std::string lastError_;
};

}  // namespace framesink::test
