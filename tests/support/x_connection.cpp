#include "support/x_connection.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "support/scoped_variable.hpp"

namespace framesink::test {
namespace {

constexpr std::uint32_t kLongest = 1 << 20;  // length of a property, in units of 4 bytes

std::string describe(const xcb_generic_error_t& error) {
  static constexpr std::array kNames{
      "Success",   "BadRequest", "BadValue",    "BadWindow",   "BadPixmap", "BadAtom",
      "BadCursor", "BadFont",    "BadMatch",    "BadDrawable", "BadAccess", "BadAlloc",
      "BadColor",  "BadGC",      "BadIDChoice", "BadName",     "BadLength", "BadImplementation"};
  const std::string name = error.error_code < kNames.size() ? kNames[error.error_code]
                                                            : std::to_string(error.error_code);
  return name + " for request " + std::to_string(error.major_code) + " on resource " +
         std::to_string(error.resource_id);
}

}  // namespace

XConnection::XConnection(const std::string& display)
    : display_(display.empty() ? environmentVariable("DISPLAY").value_or("") : display) {
  int number = 0;
  connection_ = xcb_connect(display_.c_str(), &number);
  if (xcb_connection_has_error(connection_)) {
    xcb_disconnect(connection_);
    throw std::runtime_error("cannot connect to X display \"" + display_ + "\"");
  }
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
  for (; number > 0 && screens.rem > 1; --number) xcb_screen_next(&screens);
  screen_ = screens.data;
}

XConnection::~XConnection() { xcb_disconnect(connection_); }

bool XConnection::check(xcb_void_cookie_t request) {
  xcb_generic_error_t* error = xcb_request_check(connection_, request);
  const bool succeeded = !error && !xcb_connection_has_error(connection_);
  note(error, succeeded);
  return succeeded;
}

void XConnection::note(xcb_generic_error_t* error, bool succeeded) {
  if (error) {
    lastError_ = describe(*error);
  } else if (!succeeded) {
    lastError_ = "connection to " + display_ + " lost";
  }
  std::free(error);
}

xcb_atom_t XConnection::atom(const std::string& name) {
  const auto known = atoms_.find(name);
  if (known != atoms_.end()) return known->second;
  const auto length = static_cast<std::uint16_t>(name.size());
  const auto answer =
      reply(xcb_intern_atom_reply, xcb_intern_atom(connection_, 0, length, name.c_str()));
  if (!answer) return XCB_ATOM_NONE;
  return atoms_[name] = answer->atom;
}

std::vector<std::uint32_t> XConnection::items(Window window, const std::string& property) {
  const auto answer = reply(xcb_get_property_reply, askProperty(window, property));
  if (!answer || answer->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
  return {first, first + answer->value_len};
}

xcb_get_property_cookie_t XConnection::askProperty(Window window, const std::string& property) {
  return xcb_get_property(connection_, 0, window, atom(property), XCB_ATOM_ANY, 0, kLongest);
}

std::string XConnection::text(xcb_get_property_cookie_t asked) {
  const auto answer = reply(xcb_get_property_reply, asked);
  if (!answer || answer->format != 8) return "";
  const auto* first = static_cast<const char*>(xcb_get_property_value(answer.get()));
  return {first, first + answer->value_len};
}

bool XConnection::sendMessage(Window receiver, Window window, const std::string& type,
                              const std::vector<std::uint32_t>& items) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = atom(type);
  std::copy_n(items.begin(), std::min<std::size_t>(items.size(), 5), event.data.data32);
  const std::uint32_t listeners =
      receiver == root() ? XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY
                         : XCB_EVENT_MASK_NO_EVENT;
  return check(xcb_send_event_checked(connection_, 0, receiver, listeners,
                                      reinterpret_cast<const char*>(&event)));
}

}  // namespace framesink::test
