#include "display/sdl_server.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <new>
#include <utility>

#include "display/event_rules.hpp"
#include "process/display_loss.hpp"
#include "process/opengl.hpp"
#include "process/wait_budget.hpp"
#include "process/x11_session.hpp"

namespace framesink {
namespace {

// All in milliseconds.
constexpr std::uint32_t kWindowPoll = 2;       // between checks whether a window exists
constexpr std::uint32_t kUnloadPoll = 10;      // between checks whether the players are gone
constexpr std::uint32_t kLockRetry = 1;        // before a failed lock is tried again
constexpr std::uint32_t kPassWithPlayers = 1;  // between passes of a server with players
constexpr std::uint32_t kPassWithout = 3;      // between passes of a server without players

SdlPlayer* findPlayer(std::span<SdlPlayer* const> players, PlayerId playerId) {
  for (SdlPlayer* player : players) {
    if (player->playerId() == playerId) return player;
  }
  return nullptr;
}

}  // namespace

// The lock for changing a server's players: the threaded server's mutex, or the gate for the
// synchronous server. Never lock the mutex inside the gate, because the display thread enters the
// gate while it holds the mutex.
class FRAMESINK_SCOPED_LOCK SdlServer::PlayersLock {
 public:
  enum Patience {
    kOnce,          // tries once: a display pass is skipped if the lock fails
    kUntilLeaving,  // retries for a host thread until the server is leaving
  };

  PlayersLock(SdlServer& server, Patience patience) FRAMESINK_ACQUIRES(server.players_)
      FRAMESINK_EXCLUDES(sdlGate)
      : gate_(sdlGate, std::defer_lock) {
    if (!server.threaded_) {
      gate_.lock();
      return;
    }
    // Only a host thread can outlive the display thread, so a pass saves the system call.
    const bool isThreadLost = patience == kUntilLeaving && server.thread_.isLost();
    mutex_ = isThreadLost ? nullptr : server.mutex_.load();
    while (mutex_ != nullptr && SDL_LockMutex(mutex_) != 0) {
      if (patience == kOnce || server.leaving_ || isDisplayLost()) mutex_ = nullptr;
      if (patience != kOnce) restInSdl(kLockRetry);
    }
  }
  ~PlayersLock() FRAMESINK_RELEASES() {
    if (mutex_ != nullptr) SDL_UnlockMutex(mutex_);
  }
  PlayersLock(const PlayersLock&) = delete;
  PlayersLock& operator=(const PlayersLock&) = delete;

  // False if the mutex could not be locked.
  explicit operator bool() const { return gate_.owns_lock() || mutex_ != nullptr; }

 private:
  std::unique_lock<SdlGate> gate_;
  SDL_mutex* mutex_ = nullptr;
};

SdlServer::SdlServer(bool threaded, ServerSurroundings surroundings)
    : threaded_(threaded), surroundings_(surroundings) {}

SdlServer::~SdlServer() {
  stop();
  quitSdl(unloadBudget());
  leaveX11();
  sdlCode_.letGo();
}

// ---- Players ----

PlayerId SdlServer::addPlayer(const std::uint8_t* initialFrame, WindowRequest request) {
  if (leaving_) return kNoPlayer;
  if (!started_ && !isDisplayLost()) start();
  if (isDisplayLost()) {
    reportNoWindow();
    return kNoPlayer;
  }
  if (threaded_ && openGl_ && surroundings_.stopAll != nullptr) {
    callFirstAtExit(surroundings_.stopAll);
  }
  const PlayersLock lock(*this, PlayersLock::kUntilLeaving);
  if (isDisplayLost()) reportNoWindow();
  if (!lock || leaving_ || isDisplayLost()) return kNoPlayer;
  const PlayerId playerId = nextPlayerId_++;
  auto player = std::make_unique<SdlPlayer>(initialFrame, std::move(request), playerId);
  if (!threaded_) {
    const InGate gate;
    closeIfSdlIsGone();
    openWindow(*player);
  } else if (thread_.isRunning()) {
    player->holdLibrary();
  }
  players_.add(std::move(player));
  return playerId;
}

void SdlServer::deliverFrame(PlayerId playerId, const std::uint8_t* frame, Size frameSize) {
  if (threaded_) {
    if (isDisplayLost()) return;
    const Players::Reader reader(players_);
    SdlPlayer* player = findPlayer(reader.players(), playerId);
    if (player != nullptr && player->frameSize() == frameSize) player->submitFrame(frame);
    return;
  }
  if (isDisplayLost() && players_.empty()) return;
  const PlayersLock lock(*this, PlayersLock::kOnce);
  const InGate gate;
  closeIfSdlIsGone();
  SdlPlayer* shown = player(playerId);
  if (shown != nullptr && shown->frameSize() == frameSize) {
    shown->submitFrame(frame);
    shown->showNewestFrame();
  }
  pumpEvents(false);
}

void SdlServer::closePlayer(PlayerId playerId) {
  if (threaded_) {
    const Players::Reader reader(players_);
    SdlPlayer* player = findPlayer(reader.players(), playerId);
    if (player != nullptr) player->requestClose();
    return;
  }
  const PlayersLock lock(*this, PlayersLock::kOnce);
  const InGate gate;
  closeIfSdlIsGone();
  if (SdlPlayer* closed = player(playerId)) removePlayer(*closed);
}

// Without a thread, nothing else notices the loss of the display between frames.
bool SdlServer::hasOpenPlayer(PlayerId playerId) const {
  if (!threaded_ && hasX11HungUp()) declareDisplayLost();
  if (isDisplayLost()) return false;
  const Players::Reader reader(players_);
  const SdlPlayer* player = findPlayer(reader.players(), playerId);
  return player != nullptr && !player->isCloseRequested();
}

bool SdlServer::canWindowCome(const SdlPlayer& player) const {
  return !leaving_ && !isDisplayLost() && thread_.isRunning() && !thread_.isLost() &&
         !player.isWindowImpossible();
}

template <class Result, class Action>
Result SdlServer::withWindow(PlayerId playerId, Result absent, Action action) const {
  for (;;) {
    if (isDisplayLost()) return absent;
    {
      std::unique_lock gate(sdlGate, std::defer_lock);
      if (!threaded_) gate.lock();
      const Players::Reader reader(players_);
      SdlPlayer* player = findPlayer(reader.players(), playerId);
      if (player == nullptr) return absent;
      if (player->window() != nullptr) return action(*player);
      if (!canWindowCome(*player)) return absent;
    }
    restInSdl(kWindowPoll);
  }
}

void SdlServer::raisePlayer(PlayerId playerId) {
  withWindow(playerId, false, [&](SdlPlayer& player) {
    player.requestRaise(++raises_);
    serveAtOnce(player);
    return true;
  });
}

void SdlServer::renamePlayer(PlayerId playerId, const std::string& title) {
  withWindow(playerId, false, [&](SdlPlayer& player) {
    player.requestTitle(title);
    serveAtOnce(player);
    return true;
  });
}

// Without a thread, nobody else serves requests.
void SdlServer::serveAtOnce(SdlPlayer& player) const {
  if (threaded_) return;
  const InGate gate;
  player.serveTitle();
  player.serveRaise();
}

bool SdlServer::isPlayerFullscreen(PlayerId playerId) const {
  return withWindow(playerId, false,
                    [](SdlPlayer& player) { return player.window()->isFullscreen(); });
}

std::int32_t SdlServer::getFrameWidth(PlayerId playerId) const {
  return withWindow(playerId, std::int32_t{0}, [](SdlPlayer& player) {
    return static_cast<std::int32_t>(player.frameSize().width);
  });
}

std::int32_t SdlServer::getFrameHeight(PlayerId playerId) const {
  return withWindow(playerId, std::int32_t{0}, [](SdlPlayer& player) {
    return static_cast<std::int32_t>(player.frameSize().height);
  });
}

std::optional<PlayerState> SdlServer::playerState(PlayerId playerId) const {
  return withWindow(playerId, std::optional<PlayerState>{}, [](SdlPlayer& player) {
    const SdlWindow& window = *player.window();
    return std::optional(PlayerState{.frameSize = player.frameSize(),
                                     .isFullscreen = window.isFullscreen(),
                                     .geometry = window.geometry()});
  });
}

std::optional<WindowGeometry> SdlServer::windowGeometry(PlayerId playerId) const {
  return withWindow(playerId, std::optional<WindowGeometry>{},
                    [](SdlPlayer& player) { return std::optional(player.window()->geometry()); });
}

std::uint32_t SdlServer::getWindowWidth(PlayerId playerId) const {
  return windowGeometry(playerId).value_or(WindowGeometry{}).size.width;
}

std::uint32_t SdlServer::getWindowHeight(PlayerId playerId) const {
  return windowGeometry(playerId).value_or(WindowGeometry{}).size.height;
}

std::uint32_t SdlServer::getWindowX(PlayerId playerId) const {
  return windowGeometry(playerId).value_or(WindowGeometry{}).position.x;
}

std::uint32_t SdlServer::getWindowY(PlayerId playerId) const {
  return windowGeometry(playerId).value_or(WindowGeometry{}).position.y;
}

// ---- Start and stop ----

// In the gate, because several host threads may add a first player at the same time.
void SdlServer::start() {
  const InGate gate;
  if (started_) return;
  initVideo();
  if (isDisplayLost()) return;
  foreignQuits_ = foreignQuits();
  openGl_ = isOpenGlInUse();
  sdlCode_ = holdSdl();
  if (threaded_) startThread();
  started_ = true;
}

void SdlServer::startThread() {
  if (openGl_) stayLoaded();
  quit_ = false;
  mutex_ = SDL_CreateMutex();
  thread_.start("sdlVideoPlayers", threadMain, this);
}

bool SdlServer::stop() {
  if (!started_) return true;
  beginLeaving();
  quit_ = true;
  if (threaded_) {
    if (!awaitDisplayThread()) return false;
  } else {
    if (!mayDeletePlayers()) return false;
    deleteAllPlayers();
  }
  SDL_mutex* const mutex = mutex_.exchange(nullptr);
  if (!isDisplayLost()) SDL_DestroyMutex(mutex);
  started_ = false;
  quit_ = false;  // Reset right after the wait, deliberately; leaving_ stays.
  return true;
}

// On Windows, only the thread that made a window can destroy it. If this thread deleted another
// thread's players, their windows would stay behind, so the players stay too, and so does SDL.
bool SdlServer::mayDeletePlayers() const {
  const auto isOurs = [](const SdlPlayer* player) { return player->maker() == currentThread(); };
  return !kWindowsAreTheirThreads || std::ranges::all_of(players_.players(), isOurs);
}

bool SdlServer::awaitDisplayThread() {
  if (thread_.isThisThread()) return false;
  WaitBudget& budget = unloadBudget();
  while (thread_.isRunning() && !players_.empty() && !thread_.isLost() && !budget.isSpent()) {
    restInSdl(kUnloadPoll);
    budget.count(std::chrono::milliseconds(kUnloadPoll));
  }
  if (thread_.awaitEnd(budget)) return true;
  budget.spend();
  return false;
}

// ---- The display thread ----

void SdlServer::threadMain(void* server) {
  auto& self = *static_cast<SdlServer*>(server);
  if ((SDL_WasInit(SDL_INIT_EVERYTHING) & SDL_INIT_VIDEO) == 0) {
    std::fprintf(stderr, "Internal error: SDL video subsystem is not initialized.\n");
  }
  while (!self.quit_ && !self.leaving_ && !isDisplayLost()) {
    self.runPass();
    if (!isDisplayLost()) SDL_Delay(self.players_.empty() ? kPassWithout : kPassWithPlayers);
  }
  self.deleteAllPlayers();
}

void SdlServer::runPass() {
  const PlayersLock lock(*this, PlayersLock::kOnce);
  if (!lock) return;
  const InGate gate;
  closeIfSdlIsGone();
  servePlayers();
  raiseWindows();
  pumpEvents(true);
}

void SdlServer::servePlayers() {
  for (std::size_t i = 0; i < players_.players().size(); ++i) {
    SdlPlayer& player = *players_.players()[i];
    servePlayer(player);
    // Deliberately, the walk skips the player that moves into this place. It is served on the next
    // pass, 1 ms later.
    if (player.isCloseRequested()) players_.remove(&player);
  }
  players_.reclaim();
}

void SdlServer::servePlayer(SdlPlayer& player) {
  if (player.window() != nullptr || player.isWindowImpossible()) {
    player.settle();
  } else {
    try {
      openWindow(player);
    } catch (const std::bad_alloc&) {
      player.giveUpWindow();
    }
  }
  if (player.window() == nullptr) return;
  player.serveTitle();
  if (player.hasNewFrame()) player.showNewestFrame();
}

// In the order of the requests, because the window that was raised last is on top. Later requests
// wait for the next pass, however many there are.
void SdlServer::raiseWindows() {
  const std::uint64_t last = raises_;
  for (;;) {
    SdlPlayer* first = nullptr;
    for (SdlPlayer* player : players_.players()) {
      const std::uint64_t ticket = player->raiseTicket();
      if (ticket != 0 && ticket <= last && (first == nullptr || ticket < first->raiseTicket()))
        first = player;
    }
    if (first == nullptr) return;
    first->serveRaise();
  }
}

// Deletes the players even if the lock fails, because at the server's end nobody else changes them.
void SdlServer::deleteAllPlayers() {
  const PlayersLock lock(*this, PlayersLock::kOnce);
  const InGate gate;
  noticeForeignQuit();
  removeAllPlayers();
}

// ---- Windows and events ----

void SdlServer::openWindow(SdlPlayer& player) {
  if (player.isFullscreenWanted()) leaveFullscreenAll();
  player.createWindow();
}

// At most one window is full screen at a time.
void SdlServer::leaveFullscreenAll() {
  for (SdlPlayer* player : players_.players()) {
    SdlWindow* window = player->window();
    if (window == nullptr || !window->isFullscreen() || !window->leaveFullscreen()) continue;
    while (window->isFullscreen() && !leaving_) restInSdl(kWindowPoll);
    restInSdl(kWindowPoll);
  }
}

SdlPlayer* SdlServer::player(PlayerId playerId) const {
  return findPlayer(players_.players(), playerId);
}

SdlPlayer* SdlServer::playerWithWindow(std::uint32_t windowId) const {
  for (SdlPlayer* player : players_.players()) {
    const SdlWindow* window = player->window();
    if (window == nullptr || window->isSdlGone()) continue;
    if (window->windowId() == windowId) return player;
  }
  return nullptr;
}

void SdlServer::pumpEvents(bool deferClose) {
  drainEvents(deferClose);
  closeDestroyedWindows(deferClose);
  if (isDisplayLost()) removeAllPlayers();
}

// An event that belongs to none of this server's windows ends the drain, deliberately; later events
// wait for the next pass. Such an event, for example an application event, is dropped unless it
// belongs to a window of the other server.
void SdlServer::drainEvents(bool deferClose) {
  SDL_Event event;
  while (nextEvent(event)) {
    SdlPlayer* player = playerWithWindow(event.window.windowID);
    if (player == nullptr) {
      handOver(event);
      return;
    }
    if (handleEvent(event, *player) == AfterEvent::kClose) close(*player, deferClose);
  }
}

void SdlServer::close(SdlPlayer& player, bool deferClose) {
  if (deferClose) {
    player.requestClose();
  } else {
    removePlayer(player);
  }
}

// A window that another program destroyed counts as closed by the user.
void SdlServer::closeDestroyedWindows(bool deferClose) {
  for (std::size_t i = players_.players().size(); i-- > 0;) {
    SdlPlayer& player = *players_.players()[i];
    const SdlWindow* window = player.window();
    if (window != nullptr && window->isDestroyedByOthers()) close(player, deferClose);
  }
}

// The host has shut SDL down, and the windows with it.
void SdlServer::closeIfSdlIsGone() {
  noticeForeignQuit();
  if (std::exchange(foreignQuits_, foreignQuits()) != foreignQuits()) removeAllPlayers();
}

bool SdlServer::nextEvent(SDL_Event& event) {
  if (inbox_.take(event)) return true;
  bool isThere = false;
  return callSdl([&] { isThere = SDL_PollEvent(&event) != 0; }) && isThere;
}

void SdlServer::handOver(const SDL_Event& event) {
  SdlServer* other = surroundings_.sibling == nullptr ? nullptr : surroundings_.sibling->load();
  if (other != nullptr && other->playerWithWindow(event.window.windowID) != nullptr) {
    other->inbox_.put(event);
  }
}

// The wait is short: inside the gate, the only readers are other threads that check whether a
// player is open.
void SdlServer::removePlayer(SdlPlayer& player) {
  players_.remove(&player);
  awaitReclaim();
}

void SdlServer::removeAllPlayers() {
  players_.removeAll();
  awaitReclaim();
}

void SdlServer::awaitReclaim() {
  while (!players_.reclaim()) sleepFor(std::chrono::milliseconds(1));
}

}  // namespace framesink
