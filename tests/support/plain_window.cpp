#include "support/plain_window.hpp"

#include <array>
#include <memory>
#include <stdexcept>

#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

constexpr std::uint32_t kEvents = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_EXPOSURE |
                                  XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_FOCUS_CHANGE;

xcb_visualid_t visualOfDepth(const xcb_screen_t& screen, int depth) {
  auto depths = xcb_screen_allowed_depths_iterator(&screen);
  for (; depths.rem > 0; xcb_depth_next(&depths)) {
    if (depths.data->depth == depth && xcb_depth_visuals_length(depths.data) > 0) {
      return xcb_depth_visuals(depths.data)->visual_id;
    }
  }
  throw std::runtime_error("no visual of the wanted depth");
}

int typeOf(const xcb_generic_event_t& event) { return event.response_type & 0x7F; }

}  // namespace

PlainWindow::PlainWindow(const std::string& title, const WindowLook& look)
    : depth_(look.alpha ? 32 : x_.screen().root_depth) {
  const xcb_visualid_t visual =
      look.alpha ? visualOfDepth(x_.screen(), depth_) : x_.screen().root_visual;
  const xcb_colormap_t colours = xcb_generate_id(x_.raw());
  xcb_create_colormap(x_.raw(), XCB_COLORMAP_ALLOC_NONE, colours, x_.root(), visual);
  id_ = xcb_generate_id(x_.raw());
  const std::array<std::uint32_t, 3> attributes{0, kEvents, colours};
  const Geometry& g = look.place;
  xcb_create_window(x_.raw(), depth_, id_, x_.root(), static_cast<std::int16_t>(g.x),
                    static_cast<std::int16_t>(g.y), static_cast<std::uint16_t>(g.width),
                    static_cast<std::uint16_t>(g.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                    XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, attributes.data());
  context_ = xcb_generate_id(x_.raw());
  xcb_create_gc(x_.raw(), context_, id_, 0, nullptr);
  name(title, look.oldNameOnly);
  const xcb_atom_t close = x_.atom("WM_DELETE_WINDOW");
  xcb_change_property(x_.raw(), XCB_PROP_MODE_REPLACE, id_, x_.atom("WM_PROTOCOLS"), XCB_ATOM_ATOM,
                      32, 1, &close);
  // Declares the place as chosen by the user, so that a window manager keeps it.
  constexpr std::uint32_t kUserPosition = 1;
  const std::array<std::uint32_t, 18> hints{kUserPosition};
  xcb_change_property(x_.raw(), XCB_PROP_MODE_REPLACE, id_, XCB_ATOM_WM_NORMAL_HINTS,
                      XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(), hints.data());
  if (look.mapped) map();
  xcb_flush(x_.raw());
}

void PlainWindow::name(const std::string& title, bool oldNameOnly) {
  const auto length = static_cast<std::uint32_t>(title.size());
  const std::string oldTitle = oldNameOnly ? title : "another name";
  xcb_change_property(x_.raw(), XCB_PROP_MODE_REPLACE, id_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(oldTitle.size()), oldTitle.data());
  if (oldNameOnly) return;
  xcb_change_property(x_.raw(), XCB_PROP_MODE_REPLACE, id_, x_.atom("_NET_WM_NAME"),
                      x_.atom("UTF8_STRING"), 8, length, title.data());
}

void PlainWindow::map() { x_.check(xcb_map_window_checked(x_.raw(), id_)); }

void PlainWindow::requestFullscreen() {
  x_.sendMessage(x_.root(), id_, "_NET_WM_STATE", {1, x_.atom("_NET_WM_STATE_FULLSCREEN")});
}

void PlainWindow::destroy() { x_.check(xcb_destroy_window_checked(x_.raw(), id_)); }

void PlainWindow::paint(const Image& picture) {
  const auto bytes = static_cast<std::uint32_t>(picture.pixels.size() * sizeof(std::uint32_t));
  x_.check(xcb_put_image_checked(x_.raw(), XCB_IMAGE_FORMAT_Z_PIXMAP, id_, context_,
                                 static_cast<std::uint16_t>(picture.width),
                                 static_cast<std::uint16_t>(picture.height), 0, 0, 0, depth_, bytes,
                                 reinterpret_cast<const std::uint8_t*>(picture.pixels.data())));
}

bool PlainWindow::waitForEvent(const std::function<bool(const xcb_generic_event_t&)>& wanted) {
  return waitUntil([&] {
    while (Reply<xcb_generic_event_t> event{xcb_poll_for_event(x_.raw())}) {
      if (wanted(*event)) return true;
    }
    return false;
  });
}

bool PlainWindow::waitForKey(int keycode) {
  return waitForEvent([&](const xcb_generic_event_t& event) {
    return event.response_type == XCB_KEY_PRESS &&
           reinterpret_cast<const xcb_key_press_event_t&>(event).detail == keycode;
  });
}

bool PlainWindow::waitForCloseMessage() {
  return waitForEvent([&](const xcb_generic_event_t& event) {
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    return typeOf(event) == XCB_CLIENT_MESSAGE && message.type == x_.atom("WM_PROTOCOLS") &&
           message.data.data32[0] == x_.atom("WM_DELETE_WINDOW");
  });
}

bool PlainWindow::waitForExpose() {
  return waitForEvent([](const xcb_generic_event_t& event) { return typeOf(event) == XCB_EXPOSE; });
}

bool PlainWindow::waitForSize(int width, int height) {
  return waitForEvent([&](const xcb_generic_event_t& event) {
    const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
    return typeOf(event) == XCB_CONFIGURE_NOTIFY && change.width == width &&
           change.height == height;
  });
}

bool PlainWindow::sawKey() {
  bool seen = false;
  while (Reply<xcb_generic_event_t> event{xcb_poll_for_event(x_.raw())}) {
    seen = seen || typeOf(*event) == XCB_KEY_PRESS;
  }
  return seen;
}

Image distinctPixels(int width, int height, std::uint32_t upperByte) {
  Image image{width, height, {}};
  for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(width * height); ++i) {
    image.pixels.push_back((upperByte << 24) | ((0xFE0301 + 0x10203 * i) & 0xFFFFFF));
  }
  return image;
}

}  // namespace framesink::test
