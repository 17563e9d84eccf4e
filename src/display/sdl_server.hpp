// The display server: owns every player on screen, and in threaded mode the one display thread that
// makes the windows, shows new frames and runs the SDL event loop.
//
// Operations on players may be called by any host thread. On the threaded server they take no lock
// that a display pass holds, except addPlayer; on the synchronous server everything happens inside
// the call, in the gate. A player id that is not found yields 0, false or no action.
//
// "Waits for the window": looks every 2 ms whether the window has been made; ends as for an unknown
// id when it can no longer come (no display thread, player removed, library leaving).
#pragma once

#include <SDL.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "display/display_thread.hpp"
#include "display/event_inbox.hpp"
#include "display/geometry.hpp"
#include "display/platform.hpp"
#include "display/player_list.hpp"
#include "display/sdl_player.hpp"
#include "display/sdl_session.hpp"
#include "display/thread_safety.hpp"

namespace framesink {

// What addPlayer returns when no player could be added; as signed 32-bit it is -1, "no player".
inline constexpr std::uint32_t kNoPlayer = 0xFFFFFFFF;

class SdlServer {
 public:
  explicit SdlServer(bool threaded);

  // Stops, and shuts SDL down for the whole process.
  virtual ~SdlServer();
  SdlServer(const SdlServer&) = delete;
  SdlServer& operator=(const SdlServer&) = delete;

  // Adds a player that shows a copy of `initialFrame` and returns its id: 0, 1, 2, ... The first
  // call initialises SDL video. Threaded: waits for the present display pass to end; the window is
  // made on the next one. Synchronous: makes the window.
  std::uint32_t addPlayer(const std::uint8_t* initialFrame, Size frameSize,
                          const std::string& title, WindowGeometry window, bool fullscreen);

  // Hands over a frame of that size; a player of another frame size takes nothing. Synchronous:
  // shows it at once, then drains the events, whether or not the player was found.
  void deliverFrame(std::int32_t playerId, const std::uint8_t* frame, Size frameSize);

  // Threaded: asks; the next pass closes. Synchronous: closes.
  void closePlayer(std::uint32_t playerId);

  // True when there is a player of that id that is not closing.
  bool hasOpenPlayer(std::uint32_t playerId) const;

  void raisePlayer(std::uint32_t playerId);                             // waits for the window
  void renamePlayer(std::uint32_t playerId, const std::string& title);  // waits for the window
  bool isPlayerFullscreen(std::uint32_t playerId) const;                // waits for the window
  std::int32_t getFrameWidth(std::uint32_t playerId) const;             // waits for the window
  std::int32_t getFrameHeight(std::uint32_t playerId) const;            // waits for the window

  // Place and size while not full screen; nothing for an unknown id. Waits for the window.
  std::optional<WindowGeometry> windowGeometry(std::uint32_t playerId) const;
  std::uint32_t getWindowWidth(std::uint32_t playerId) const;
  std::uint32_t getWindowHeight(std::uint32_t playerId) const;
  std::uint32_t getWindowX(std::uint32_t playerId) const;
  std::uint32_t getWindowY(std::uint32_t playerId) const;

  // Ends every wait of a host thread on this server, and the display thread's loop, for good.
  void beginLeaving() { leaving_ = true; }

  // Ends the display thread: waits up to 20 s, without joining, until its players are deleted and
  // the thread itself is gone. Synchronous: deletes the players. False when the thread is still
  // there, or players are another thread's to delete; then nothing that they use may be torn down.
  // On the display thread itself it does not wait.
  bool stop();

 private:
  using Players = PlayerList<SdlPlayer>;
  class Lock;
  class Alone;

  void start();
  void runDisplayThread();
  void runPass();
  bool lockForPass() FRAMESINK_TRIES(true, players_);
  void unlockAfterPass() FRAMESINK_RELEASES(players_);
  void servePlayers() FRAMESINK_REQUIRES(sdlGate, players_);
  void servePlayer(SdlPlayer& player) FRAMESINK_REQUIRES(sdlGate);
  void deleteAllPlayers();
  bool mayDeletePlayers() const;
  bool awaitDisplayThread();

  void openWindow(SdlPlayer& player) FRAMESINK_REQUIRES(sdlGate);
  void leaveFullscreenAll() FRAMESINK_REQUIRES(sdlGate);

  void pumpEvents(bool deferClose) FRAMESINK_REQUIRES(sdlGate, players_);
  bool nextEvent(SDL_Event& event) FRAMESINK_REQUIRES(sdlGate);
  void handOver(const SDL_Event& event) FRAMESINK_REQUIRES(sdlGate);
  void handleEvent(const SDL_Event& event, SdlPlayer& player, bool deferClose)
      FRAMESINK_REQUIRES(sdlGate, players_);
  void handleWindowEvent(const SDL_WindowEvent& event, SdlPlayer& player, bool deferClose)
      FRAMESINK_REQUIRES(sdlGate, players_);
  void removePlayer(std::uint32_t windowId) FRAMESINK_REQUIRES(sdlGate, players_);
  void removeNow(SdlPlayer* player) FRAMESINK_REQUIRES(sdlGate, players_);
  void awaitReclaim() FRAMESINK_REQUIRES(players_);

  SdlPlayer* player(std::uint32_t playerId) const FRAMESINK_REQUIRES(sdlGate);
  SdlPlayer* playerWithWindow(std::uint32_t windowId) const FRAMESINK_REQUIRES(sdlGate);
  bool canWindowCome(const SdlPlayer& player) const;
  template <class Result, class Action>
  Result withWindow(std::uint32_t playerId, Result absent, Action action) const;

  const bool threaded_;

  // Polled by the display thread; set by stop.
  std::atomic<std::uint8_t> quit_{0};
  std::atomic<bool> leaving_{false};  // never reset

  // Set by the first addPlayer, cleared by stop.
  std::atomic<std::uint8_t> started_{0};
  std::atomic<SDL_mutex*> mutex_{
      nullptr};  // threaded: held by a whole pass and while a player is added
  DisplayThread thread_;
  LibraryHold sdlCode_;       // from start until SDL is shut down
  bool openGl_ = false;       // set by start
  std::uint32_t waited_ = 0;  // milliseconds that stop has waited, of its one budget

  // Changed under the mutex (threaded) or in the gate (synchronous). Only who is in the gate
  // destroys players, so that whoever is there may look at either server's.
  Players players_;
  std::uint32_t nextPlayerId_ FRAMESINK_GUARDED_BY(players_) = 0;

  EventInbox inbox_ FRAMESINK_GUARDED_BY(sdlGate);
};

}  // namespace framesink
