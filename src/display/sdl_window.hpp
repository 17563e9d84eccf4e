// The on-screen half of a player: an SDL window, its renderer, one streaming texture of the frame's
// size, and the position and size that are stored while the user moves and resizes the window.
#pragma once

#include <SDL.h>

#include <atomic>
#include <cstdint>
#include <string>

#include "display/geometry.hpp"
#include "display/window_request.hpp"
#include "process/sdl_session.hpp"
#include "process/thread_safety.hpp"
#include "process/x11_session.hpp"

namespace framesink {

// SDL_WINDOW_FULLSCREEN_DESKTOP; a window with any of these flags counts as full screen.
inline constexpr std::uint32_t kFullscreenFlags = SDL_WINDOW_FULLSCREEN_DESKTOP;

// Made, drawn and destroyed on the thread that runs SDL for its player, inside the gate. The
// operations marked "any thread" may be called by host threads once the window is published. Once
// its SDL is gone or the display is lost, no operation does anything.
class SdlWindow {
 public:
  // On failure, prints to standard error and leaves a window that draws nothing. Clamps position
  // and size for SDL but stores them as requested. Makes a full-screen window hidden;
  // enterFullscreen shows it.
  explicit SdlWindow(const WindowRequest& request);
  virtual ~SdlWindow();
  SdlWindow(const SdlWindow&) = delete;
  SdlWindow& operator=(const SdlWindow&) = delete;

  // Uploads a whole frame (three planes, see frameBytes) and presents it.
  void showFrame(const std::uint8_t* frame) FRAMESINK_REQUIRES(sdlGate);

  // Makes the window full screen on the desktop, and visible.
  void enterFullscreen() FRAMESINK_REQUIRES(sdlGate);

  void raise() FRAMESINK_REQUIRES(sdlGate);
  void setTitle(std::string title) FRAMESINK_REQUIRES(sdlGate);

  // Leaves full screen and restores the stored size. False if SDL fails to leave full screen.
  bool leaveFullscreen() FRAMESINK_REQUIRES(sdlGate);

  // SDL's id of the window, by which events are routed. 0 if the window has none, or once its SDL
  // has been shut down, because a later SDL may reuse the number. Any thread.
  std::uint32_t windowId() const { return isSdlGone() ? 0 : windowId_; }

  // True once the SDL in which the window was made has been shut down. Its SDL objects must not be
  // touched any more.
  bool isSdlGone() const;

  bool isFullscreen() const;  // any thread

  // True once another program has destroyed the window. Any thread.
  bool isDestroyedByOthers() const { return watch_.isDestroyed(); }

  // Position and size while not full screen: at first as requested, then as events report. Any
  // thread.
  WindowGeometry geometry() const { return {position_, size_}; }
  void setStoredPosition(Position position) { position_ = position; }
  void setStoredSize(Size size) { size_ = size; }

 private:
  void create(bool fullscreen);
  void createWindow(bool fullscreen);
  void setIcon();
  void createRenderer();
  void createTexture();
  void fitLogicalSize();
  void draw(const std::uint8_t* frame);

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
  X11WindowWatch watch_;
};

}  // namespace framesink
