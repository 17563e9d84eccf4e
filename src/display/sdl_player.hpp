// One displayed stream: the double buffer between host and display, and the player's window.
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
  // Copies the initial frame. createWindow makes the window later.
  SdlPlayer(const std::uint8_t* initialFrame, WindowRequest request, PlayerId playerId);
  virtual ~SdlPlayer();  // on the thread that runs SDL for the player
  SdlPlayer(const SdlPlayer&) = delete;
  SdlPlayer& operator=(const SdlPlayer&) = delete;

  PlayerId playerId() const { return playerId_; }
  Size frameSize() const { return request_.frameSize; }
  bool isFullscreenWanted() const { return request_.fullscreen; }

  // The thread that made the player. It also makes a synchronous player's window.
  OsThreadId maker() const { return maker_; }

  // ---- Any host thread ----

  // Copies `frame` (frameBytes(frameSize()) bytes) into the buffer that is not marked for display
  // and marks it. Takes no lock and never waits. Two calls within one display pass may tear the
  // picture for that pass only, because the newest frame is always drawn again, whole.
  void submitFrame(const std::uint8_t* frame);

  void requestClose() { closeRequested_ = true; }
  bool isCloseRequested() const { return closeRequested_; }

  // Keeps the library loaded until settle(). Making a window loads libraries, which on Windows a
  // thread cannot do while another thread unloads one.
  void holdLibrary() { untilSettled_ = holdThisLibrary(); }

  // Null until the window has been made, switched to full screen if requested, and shown. A window
  // that SDL could not create counts as made.
  SdlWindow* window() const { return window_; }

  // True if memory ran out while the window was made, so that waiting for it is pointless.
  bool isWindowImpossible() const { return windowImpossible_; }

  // Ask the thread that runs SDL for the player to raise the window or to set its title, so that
  // no host thread is ever inside SDL's window code beside that thread. Tickets begin at 1 and say
  // in which order windows are raised. The latest request counts.
  void requestRaise(std::uint64_t ticket) { raiseTicket_ = ticket; }
  void requestTitle(std::string title);

  // ---- The thread that runs SDL for the player ----

  // Makes the window and publishes it.
  void createWindow() FRAMESINK_REQUIRES(sdlGate);
  void giveUpWindow() FRAMESINK_REQUIRES(sdlGate) { windowImpossible_ = true; }

  // Ends the hold of holdLibrary(): the window was made in an earlier pass, or never will be.
  void settle() { untilSettled_.letGo(); }

  // The ticket of the raise that is requested; 0 if none is.
  std::uint64_t raiseTicket() const { return raiseTicket_; }

  // Do what was requested. The window must exist.
  void serveTitle() FRAMESINK_REQUIRES(sdlGate);
  void serveRaise() FRAMESINK_REQUIRES(sdlGate);

  bool hasNewFrame() const { return newFrame_; }

  // Draws the newest frame whole, even if it was drawn before. The window must exist.
  void showNewestFrame() FRAMESINK_REQUIRES(sdlGate);

 private:
  // Both marks are in one word, so that host threads that submit at the same time cannot leave a
  // pair with which every later frame would be dropped.
  struct alignas(8) BufferMarks {
    std::uint32_t displayBuffer;  // has the frame to show: 1 is buffer1_, otherwise buffer2_
    std::uint32_t writeState;     // gets the next frame: 1 is buffer1_, otherwise buffer2_
  };

  const std::uint8_t* displayBuffer() const;

  const WindowRequest request_;
  const std::size_t frameBytes_;
  const PlayerId playerId_;
  const OsThreadId maker_ = currentThread();

  const std::unique_ptr<std::uint8_t[]> buffer1_;
  const std::unique_ptr<std::uint8_t[]> buffer2_;
  std::atomic<BufferMarks> marks_{BufferMarks{0, 0}};

  // Set by the host after the copy, cleared by the display before it chooses the buffer to read. So
  // a frame that arrives while another is drawn is shown next, and the last frame is never lost.
  std::atomic<bool> newFrame_{false};
  std::atomic<bool> closeRequested_{false};

  std::atomic<std::uint64_t> raiseTicket_{0};
  std::atomic<bool> titleRequested_{false};
  Mutex titleMutex_;
  std::string requestedTitle_ FRAMESINK_GUARDED_BY(titleMutex_);
  std::atomic<SdlWindow*> window_{nullptr};  // owned
  std::atomic<bool> windowImpossible_{false};
  LibraryHold untilSettled_;
};

}  // namespace framesink
