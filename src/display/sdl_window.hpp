// The on-screen half of a player: an SDL window, its renderer, one streaming texture of the frame's
// size, and the geometry that is remembered while the user moves and resizes the window.
#pragma once

#include <SDL.h>

#include <atomic>
#include <cstdint>
#include <string>

#include "display/geometry.hpp"
#include "display/window_request.hpp"
#include "process/sdl_session.hpp"
#include "process/thread_safety.hpp"

namespace framesink {

// SDL_WINDOW_FULLSCREEN_DESKTOP; a window with any of these flags counts as full screen.
inline constexpr std::uint32_t kFullscreenFlags = SDL_WINDOW_FULLSCREEN_DESKTOP;

// Made, drawn and destroyed on the thread that runs SDL for its player, inside the gate. The
// operations marked "any thread" may be called by host threads once the window is published.
class SdlWindow {
 public:
  // Failures go to standard error and leave a window that draws nothing. Position and size are
  // clamped for SDL and stored as requested. A full screen window is made hidden; see
  // enterFullscreen.
  explicit SdlWindow(const WindowRequest& request);
  virtual ~SdlWindow();
  SdlWindow(const SdlWindow&) = delete;
  SdlWindow& operator=(const SdlWindow&) = delete;

  // Uploads a whole frame (three planes, see frameBytes) and presents it.
  void showFrame(const std::uint8_t* frame) FRAMESINK_REQUIRES(sdlGate);

  // Makes the window full screen on the desktop, and visible.
  void enterFullscreen() FRAMESINK_REQUIRES(sdlGate);

  // Back to the stored size. False when SDL refused.
  bool leaveFullscreen() FRAMESINK_REQUIRES(sdlGate);

  // SDL's id of the window, by which events are routed; 0 when it has none, or no longer: a later
  // SDL may give the number to another window. Any thread.
  std::uint32_t windowId() const { return isSdlGone() ? 0 : windowId_; }

  // The SDL that the window was made in has been shut down: nothing of it is touched any more.
  bool isSdlGone() const;

  bool isFullscreen() const;                // any thread
  void raise();                             // any thread
  void setTitle(const std::string& title);  // any thread, one at a time

  // Windowed place and size, as asked for and then as events tell. Any thread.
  WindowGeometry geometry() const { return {position_, size_}; }
  void setStoredPosition(Position position) { position_ = position; }
  void setStoredSize(Size size) { size_ = size; }

 private:
  void createWindow(bool fullscreen);
  void setIcon();
  void createRenderer();
  void createTexture();
  void fitLogicalSize();

  const Size textureSize_;
  std::string title_;
  std::atomic<Position> position_;
  std::atomic<Size> size_;
  const std::uint32_t generation_;
  std::uint32_t windowId_ = 0;
  SDL_Window* window_ = nullptr;
  SDL_Renderer* renderer_ = nullptr;
  SDL_Texture* texture_ = nullptr;
  bool failed_ = false;  // no usable window: nothing is ever drawn
};

}  // namespace framesink
