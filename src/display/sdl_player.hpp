// One displayed stream: the double buffer between the host and the display, and the player's
// window.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "display/geometry.hpp"
#include "display/player_id.hpp"
#include "display/sdl_window.hpp"
#include "display/window_request.hpp"
#include "process/platform.hpp"
#include "process/sdl_session.hpp"
#include "process/thread_safety.hpp"

namespace framesink {

class SdlPlayer {
 public:
  // Copies the initial frame. The window comes later, by createWindow.
  SdlPlayer(const std::uint8_t* initialFrame, WindowRequest request, PlayerId playerId);
  virtual ~SdlPlayer();  // on the thread that runs SDL for the player
  SdlPlayer(const SdlPlayer&) = delete;
  SdlPlayer& operator=(const SdlPlayer&) = delete;

  PlayerId playerId() const { return playerId_; }
  Size frameSize() const { return request_.frameSize; }
  bool isFullscreenWanted() const { return request_.fullscreen; }

  // A synchronous player's window is made by the thread that makes the player.
  OsThreadId maker() const { return maker_; }

  // ---- Any host thread ----

  // Copies `frame` (frameBytes(frameSize()) bytes) into the buffer that is not marked for
  // display and marks it. Takes no lock and never waits. Two calls within one display pass may tear
  // the picture for that pass only: the newest frame is always drawn again whole.
  void submitFrame(const std::uint8_t* frame);

  void requestClose() { closeRequested_ = 1; }
  bool isCloseRequested() const { return closeRequested_ != 0; }

  // Keeps the library loaded until the display has had the window for a pass, or given it up:
  // windows load libraries when they are made, which a thread cannot do on Windows while another
  // unloads one.
  void holdLibrary() { untilSettled_ = holdThisLibrary(); }

  // Null until the window is made, full screen if so wanted, and shown. A window that SDL could not
  // create counts as made.
  SdlWindow* window() const { return window_; }

  // Waiting for the window is pointless: memory ran out when it was to be made.
  bool isWindowImpossible() const { return windowImpossible_; }

  // The window gets the title. Needs the window. Throws std::bad_alloc, and then keeps the old title.
  void setTitle(const std::string& title);

  // ---- The thread that runs SDL for the player ----

  // Makes the window and publishes it.
  void createWindow() FRAMESINK_REQUIRES(sdlGate);
  void giveUpWindow() FRAMESINK_REQUIRES(sdlGate) { windowImpossible_ = true; }

  // The window has been there for a pass, or never will be.
  void settle() { untilSettled_.letGo(); }

  bool hasNewFrame() const { return newFrame_ != 0; }

  // Draws the newest frame whole, new or not. Needs the window.
  void showNewestFrame() FRAMESINK_REQUIRES(sdlGate);

 private:
  // Both in one word, so that host threads that submit at the same time never leave a pair from
  // which no frame would be taken.
  struct alignas(8) BufferMarks {
    std::uint32_t displayBuffer;  // holds the frame to show: 1 is buffer 1, else buffer 2
    std::uint32_t writeState;     // gets the next frame: likewise
  };

  const std::uint8_t* displayBuffer() const;

  const WindowRequest request_;
  const std::size_t frameBytes_;
  const PlayerId playerId_;
  const OsThreadId maker_ = currentThread();

  const std::unique_ptr<std::uint8_t[]> buffer1_;
  const std::unique_ptr<std::uint8_t[]> buffer2_;
  std::atomic<BufferMarks> marks_{BufferMarks{0, 0}};

  // Set by the host after the copy, taken by the display before it chooses the buffer to read, so
  // that a frame that comes while another is drawn is shown next and the last one is never lost.
  std::atomic<std::uint8_t> newFrame_{0};
  std::atomic<std::uint8_t> closeRequested_{0};

  Mutex titleMutex_;                         // host threads set a title one at a time
  std::atomic<SdlWindow*> window_{nullptr};  // owned
  std::atomic<bool> windowImpossible_{false};
  LibraryHold untilSettled_;
};

}  // namespace framesink
