// A window made without any library. The tests of these helpers look at it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "support/x_connection.hpp"
#include "support/x_image.hpp"

namespace framesink::test {

struct WindowLook {
  Geometry place{60, 80, 64, 48};
  // True: sets only the older WM_NAME, not _NET_WM_NAME.
  bool oldNameOnly = false;
  // True: 32 bits a pixel with an alpha channel. False: the screen's depth.
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
  // Fills the window with the pixels of `picture`, including their upper 8 bits.
  void paint(const Image& picture);

  // Waits for an event for which `wanted` returns true; drops the events before it.
  bool waitForEvent(const std::function<bool(const xcb_generic_event_t&)>& wanted);
  // Waits for a key press from the keyboard, not one that another client sent.
  bool waitForKey(int keycode);
  bool waitForCloseMessage();
  bool waitForExpose();
  bool waitForSize(int width, int height);
  // Drops the events that have arrived. Returns true if one of them was a key.
  bool sawKey();
  void dropEvents() { sawKey(); }

 private:
  void name(const std::string& title, bool oldNameOnly);

  XConnection x_;
  Window id_ = kNoWindow;
  xcb_gcontext_t context_ = 0;
  std::uint8_t depth_ = 24;
};

// Pixels 0x00RRGGBB that all differ, with `upperByte` in the unused upper bits.
Image distinctPixels(int width, int height, std::uint32_t upperByte = 0);

}  // namespace framesink::test
