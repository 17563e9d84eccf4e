// A display server owns its players. The threaded server also owns the one display thread, which
// makes the windows, shows new frames and runs SDL's event loop.
//
// Any host thread may call the operations on players. On the threaded server, only addPlayer takes
// a lock that a display pass holds. On the synchronous server, everything happens inside the call,
// in the gate. For an unknown player id they return 0, false or an empty result, or do nothing.
//
// "Waits for the window" means: checks every 2 ms whether the window has been made. The wait ends
// as for an unknown id when the window can no longer appear, because there is no display thread,
// memory ran out, the player was removed, the display is lost or the library is leaving.
//
// Once the display is lost, no player is open any more and none can be added.
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

// What a server knows about the process's other server. By default there is none.
struct ServerSurroundings {
  const std::atomic<SdlServer*>* sibling = nullptr;  // points to null while there is no other
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

  // Stops the server and shuts SDL down for the whole process.
  virtual ~SdlServer();
  SdlServer(const SdlServer&) = delete;
  SdlServer& operator=(const SdlServer&) = delete;

  // Adds a player that shows a copy of `initialFrame`. Returns its id, or kNoPlayer if the server
  // is stopping or the display is lost. The first call initialises SDL video. Threaded: waits for the current display pass
  // to end; the next pass makes the window. Synchronous: makes the window. Throws std::bad_alloc.
  PlayerId addPlayer(const std::uint8_t* initialFrame, WindowRequest request);

  // Gives the player a frame of that size; a player with another frame size drops it. Synchronous:
  // shows the frame at once and then drains the events, even if there is no such player.
  void deliverFrame(PlayerId playerId, const std::uint8_t* frame, Size frameSize);

  // Threaded: the next pass closes the player. Synchronous: closes it at once.
  void closePlayer(PlayerId playerId);

  // True if the player exists and is not closing.
  bool hasOpenPlayer(PlayerId playerId) const;

  // Both wait for the window. Threaded: the next pass raises it or sets its title.
  void raisePlayer(PlayerId playerId);
  void renamePlayer(PlayerId playerId, const std::string& title);

  // Empty for an unknown id. Waits for the window.
  std::optional<PlayerState> playerState(PlayerId playerId) const;

  // Empty for an unknown id. Waits for the window; does not call SDL.
  std::optional<WindowGeometry> windowGeometry(PlayerId playerId) const;

  // Single parts of the state; 0 or false for an unknown id. Each waits for the window. Dormant:
  // kept as part of the server's interface although the library itself reads whole states.
  bool isPlayerFullscreen(PlayerId playerId) const;
  std::int32_t getFrameWidth(PlayerId playerId) const;
  std::int32_t getFrameHeight(PlayerId playerId) const;
  std::uint32_t getWindowWidth(PlayerId playerId) const;
  std::uint32_t getWindowHeight(PlayerId playerId) const;
  std::uint32_t getWindowX(PlayerId playerId) const;
  std::uint32_t getWindowY(PlayerId playerId) const;

  // Ends every wait of a host thread on this server, and the display thread's loop, for good.
  void beginLeaving() { leaving_ = true; }

  // Threaded: ends the display thread. Within the unload budget and without joining, waits until
  // the thread has deleted its players and is gone. Does not wait on the display thread itself.
  // Synchronous: deletes the players. Returns false if the display thread is still there or the
  // players are another thread's to delete; then nothing that they use may be torn down.
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
  void raiseWindows() FRAMESINK_REQUIRES(sdlGate, players_);
  void deleteAllPlayers();
  bool mayDeletePlayers() const;
  bool awaitDisplayThread();

  void openWindow(SdlPlayer& player) FRAMESINK_REQUIRES(sdlGate);
  void leaveFullscreenAll() FRAMESINK_REQUIRES(sdlGate);

  void pumpEvents(bool deferClose) FRAMESINK_REQUIRES(sdlGate, players_);
  void drainEvents(bool deferClose) FRAMESINK_REQUIRES(sdlGate, players_);
  void closeDestroyedWindows(bool deferClose) FRAMESINK_REQUIRES(sdlGate, players_);
  void close(SdlPlayer& player, bool deferClose) FRAMESINK_REQUIRES(sdlGate, players_);
  void closeIfSdlIsGone() FRAMESINK_REQUIRES(sdlGate, players_);
  bool nextEvent(SDL_Event& event) FRAMESINK_REQUIRES(sdlGate);
  void handOver(const SDL_Event& event) FRAMESINK_REQUIRES(sdlGate);
  void removePlayer(SdlPlayer& player) FRAMESINK_REQUIRES(sdlGate, players_);
  void removeAllPlayers() FRAMESINK_REQUIRES(sdlGate, players_);
  void awaitReclaim() FRAMESINK_REQUIRES(players_);

  SdlPlayer* player(PlayerId playerId) const FRAMESINK_REQUIRES(sdlGate);
  SdlPlayer* playerWithWindow(std::uint32_t windowId) const FRAMESINK_REQUIRES(sdlGate);
  void serveAtOnce(SdlPlayer& player) const;
  bool canWindowCome(const SdlPlayer& player) const;
  template <class Result, class Action>
  Result withWindow(PlayerId playerId, Result absent, Action action) const;

  const bool threaded_;
  const ServerSurroundings surroundings_;

  std::atomic<bool> quit_{false};     // ends the display thread's loop; set and reset by stop
  std::atomic<bool> leaving_{false};  // ends the loop and host threads' waits; never reset

  std::atomic<std::uint64_t> raises_{0};  // requested so far

  // Set by the first addPlayer, cleared by stop.
  std::atomic<bool> started_{false};
  // Threaded only: held during a whole pass and while a player is added.
  std::atomic<SDL_mutex*> mutex_{nullptr};
  DisplayThread thread_;
  LibraryHold sdlCode_;  // held from start until SDL is shut down
  bool openGl_ = false;  // set by start

  // Changed under a PlayersLock and inside the gate, except that additions to the threaded server
  // happen outside the gate. So a thread inside the gate may read either server's players, and no
  // other thread destroys them meanwhile.
  Players players_;
  PlayerId nextPlayerId_ FRAMESINK_GUARDED_BY(players_) = 0;

  EventInbox inbox_ FRAMESINK_GUARDED_BY(sdlGate);
  std::uint32_t foreignQuits_ FRAMESINK_GUARDED_BY(sdlGate) = 0;  // that this server has noticed
};

}  // namespace framesink
