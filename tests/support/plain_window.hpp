// A window without any library on top: what the tests of these helpers look at.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "support/x_connection.hpp"
#include "support/x_image.hpp"

namespace framesink::test {

struct WindowLook {
  Geometry place{60, 80, 64, 48};
  // Only the older WM_NAME, without _NET_WM_NAME.
  bool oldNameOnly = false;
  // 32 bits a pixel with an alpha channel, else the screen's own depth.
  bool alpha = false;
  bool mapped = true;
};

class PlainWindow {
 public:
  explicit PlainWindow(const std::string& title, const WindowLook& look = {});

  Window id() const { return id_; }
  void map();
  void requestFullscreen();
  void destroy();
  // Every pixel of the window gets `picture`'s, its upper 8 bits included.
  void paint(const Image& picture);

  // Waits for an event that `wanted` accepts and drops those before it.
  bool waitForEvent(const std::function<bool(const xcb_generic_event_t&)>& wanted);
  // A key pressed at the keyboard, not sent by another client.
  bool waitForKey(int keycode);
  bool waitForCloseMessage();
  bool waitForExpose();
  bool waitForSize(int width, int height);
  // Drops the events that have arrived; true when one was a key.
  bool sawKey();
  void dropEvents() { sawKey(); }

 private:
  void name(const std::string& title, bool oldNameOnly);

  XConnection x_;
  Window id_ = kNoWindow;
  xcb_gcontext_t context_ = 0;
  std::uint8_t depth_ = 24;
};

// Pixels that are all different, 0x00RRGGBB, plus `upperByte` in the unused bits.
Image distinctPixels(int width, int height, std::uint32_t upperByte = 0);

}  // namespace framesink::test
