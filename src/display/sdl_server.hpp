// The display server: owns every player on screen, and in threaded mode the one display thread that
// makes the windows, shows new frames and runs the SDL event loop.
//
// Operations on players may be called by any host thread. On the threaded server they take no lock
// that a display pass holds, except addPlayer; on the synchronous server everything happens inside
// the call, in the gate. An unknown player id yields 0, false or no action.
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

#include "display/event_inbox.hpp"
#include "display/geometry.hpp"
#include "display/player_id.hpp"
#include "display/player_list.hpp"
#include "display/sdl_player.hpp"
#include "display/window_request.hpp"
#include "process/display_thread.hpp"
#include "process/platform.hpp"
#include "process/sdl_session.hpp"
#include "process/thread_safety.hpp"

namespace framesink {

class SdlServer;

// What a server knows of the process's other server. Without it, it is alone.
struct ServerSurroundings {
  const std::atomic<SdlServer*>* sibling = nullptr;  // null inside while there is none
  void (*stopAll)() = nullptr;                       // stops this server and its sibling
};

// A player as the host sees it. `geometry` is the window's place and size while it is not full screen.
struct PlayerState {
  Size frameSize;
  bool isFullscreen;
  WindowGeometry geometry;
};

class SdlServer {
 public:
  explicit SdlServer(bool threaded, ServerSurroundings surroundings = {});

  // Stops, and shuts SDL down for the whole process.
  virtual ~SdlServer();
  SdlServer(const SdlServer&) = delete;
  SdlServer& operator=(const SdlServer&) = delete;

  // Adds a player that shows a copy of `initialFrame` and returns its id, or kNoPlayer when the
  // server is stopping. The first call initialises SDL video. Threaded: waits for the present
  // display pass to end; the next one makes the window. Synchronous: makes the window.
  PlayerId addPlayer(const std::uint8_t* initialFrame, WindowRequest request);

  // Hands over a frame of that size; a player of another frame size takes nothing. Synchronous:
  // shows it at once, then drains the events, whether or not the player was found.
  void deliverFrame(PlayerId playerId, const std::uint8_t* frame, Size frameSize);

  // Threaded: asks; the next pass closes. Synchronous: closes.
  void closePlayer(PlayerId playerId);

  // True when there is a player of that id that is not closing.
  bool hasOpenPlayer(PlayerId playerId) const;

  void raisePlayer(PlayerId playerId);                             // waits for the window
  void renamePlayer(PlayerId playerId, const std::string& title);  // waits for the window

  // Nothing for an unknown id. Waits for the window.
  std::optional<PlayerState> playerState(PlayerId playerId) const;

  // Nothing for an unknown id. Waits for the window, and asks SDL nothing.
  std::optional<WindowGeometry> windowGeometry(PlayerId playerId) const;

  // Single parts of the state; 0 or false for an unknown id. Each waits for the window. Dormant: kept
  // as the server's interface although the library itself asks for whole states.
  bool isPlayerFullscreen(PlayerId playerId) const;
  std::int32_t getFrameWidth(PlayerId playerId) const;
  std::int32_t getFrameHeight(PlayerId playerId) const;
  std::uint32_t getWindowWidth(PlayerId playerId) const;
  std::uint32_t getWindowHeight(PlayerId playerId) const;
  std::uint32_t getWindowX(PlayerId playerId) const;
  std::uint32_t getWindowY(PlayerId playerId) const;

  // Ends every wait of a host thread on this server, and the display thread's loop, for good.
  void beginLeaving();

  // Ends the display thread: waits within the budget of unloading, without joining, until its
  // players are deleted and the thread itself is gone. Synchronous: deletes the players. False when
  // the thread is still there, or players are another thread's to delete; then nothing that they use
  // may be torn down. On the display thread itself it does not wait.
  bool stop();

 private:
  using Players = PlayerList<SdlPlayer>;
  class PlayersLock;

  void start();
  void startThread();
  static void threadMain(void* server);
  void runPass();
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
  void removePlayer(SdlPlayer& player) FRAMESINK_REQUIRES(sdlGate, players_);
  void awaitReclaim() FRAMESINK_REQUIRES(players_);

  SdlPlayer* player(PlayerId playerId) const FRAMESINK_REQUIRES(sdlGate);
  SdlPlayer* playerWithWindow(std::uint32_t windowId) const FRAMESINK_REQUIRES(sdlGate);
  bool canWindowCome(const SdlPlayer& player) const;
  template <class Result, class Action>
  Result withWindow(PlayerId playerId, Result absent, Action action) const;

  const bool threaded_;
  const ServerSurroundings surroundings_;

  std::atomic<std::uint8_t> quit_{0};  // the display thread ends its loop
  std::atomic<bool> leaving_{false};   // host threads end their waits; never reset

  // Set by the first addPlayer, cleared by stop.
  std::atomic<std::uint8_t> started_{0};
  // Threaded: held by a whole pass and while a player is added.
  std::atomic<SDL_mutex*> mutex_{nullptr};
  DisplayThread thread_;
  LibraryHold sdlCode_;  // from start until SDL is shut down
  bool openGl_ = false;  // set by start

  // Changed under a PlayersLock and, but for additions to the threaded server, in the gate: whoever
  // is in the gate may look at either server's players, and nobody else destroys them.
  Players players_;
  PlayerId nextPlayerId_ FRAMESINK_GUARDED_BY(players_) = 0;

  EventInbox inbox_ FRAMESINK_GUARDED_BY(sdlGate);
};

}  // namespace framesink
