#include "display/sdl_server.hpp"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <new>
#include <utility>

#include "display/host_calls.hpp"
#include "display/opengl.hpp"
#include "display/sdl_session.hpp"
#include "display/server_instances.hpp"

namespace framesink {
namespace {

constexpr std::uint32_t kWindowPoll = 2;   // milliseconds between looks whether a window exists
constexpr std::uint32_t kUnloadPoll = 10;  // milliseconds between looks whether players are gone
constexpr std::uint32_t kLockRetry = 1;    // milliseconds before a failed lock is tried again
constexpr std::uint32_t kPassWithPlayers = 1;  // milliseconds between passes
constexpr std::uint32_t kPassWithout = 3;
constexpr auto kLongestWait = static_cast<std::uint32_t>(kLongestUnload.count());

SdlPlayer* findPlayer(std::span<SdlPlayer* const> players, std::uint32_t playerId) {
  for (SdlPlayer* player : players) {
    if (player->playerId() == playerId) return player;
  }
  return nullptr;
}

}  // namespace

// The server's mutex for a host thread: retried without limit while it can still be had. Never
// asked for in the gate, which the display thread takes while it holds the mutex.
class FRAMESINK_SCOPED_LOCK SdlServer::Lock {
 public:
  explicit Lock(SdlServer& server) FRAMESINK_ACQUIRES(server.players_) FRAMESINK_EXCLUDES(sdlGate)
      : mutex_(server.thread_.isLost() ? nullptr : server.mutex_.load()) {
    while (mutex_ != nullptr && SDL_LockMutex(mutex_) != 0) {
      if (server.leaving_) mutex_ = nullptr;
      SDL_Delay(kLockRetry);
    }
  }
  ~Lock() FRAMESINK_RELEASES() {
    if (mutex_ != nullptr) SDL_UnlockMutex(mutex_);
  }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  explicit operator bool() const { return mutex_ != nullptr; }

 private:
  SDL_mutex* mutex_;
};

// In the gate of a server whose players no other thread changes: it is synchronous, or at its end.
class FRAMESINK_SCOPED_LOCK SdlServer::Alone {
 public:
  explicit Alone([[maybe_unused]] SdlServer& server) FRAMESINK_ACQUIRES(sdlGate, server.players_) {
    sdlGate.lock();
  }
  ~Alone() FRAMESINK_RELEASES() { sdlGate.unlock(); }
  Alone(const Alone&) = delete;
  Alone& operator=(const Alone&) = delete;
};

SdlServer::SdlServer(bool threaded) : threaded_(threaded) {}

SdlServer::~SdlServer() {
  stop();
  quitSdl();
  sdlCode_.letGo();
}

// ---- Players
// ------------------------------------------------------------------------------------------

std::uint32_t SdlServer::addPlayer(const std::uint8_t* initialFrame, Size frameSize,
                                   const std::string& title, WindowGeometry window,
                                   bool fullscreen) {
  if (leaving_) return kNoPlayer;
  if (started_ == 0) start();
  if (threaded_ && openGl_) callFirstAtExit([] { stopServers(); });
  const auto make = [&](std::uint32_t playerId) {
    return std::make_unique<SdlPlayer>(initialFrame, frameSize, title, window, fullscreen,
                                       playerId);
  };
  if (threaded_) {
    const Lock lock(*this);
    if (!lock || leaving_) return kNoPlayer;
    const std::uint32_t playerId = nextPlayerId_++;
    auto player = make(playerId);
    if (thread_.isRunning()) player->holdLibrary();
    players_.add(std::move(player));
    return playerId;
  }
  const Alone alone(*this);
  const std::uint32_t playerId = nextPlayerId_++;
  auto player = make(playerId);
  openWindow(*player);
  players_.add(std::move(player));
  return playerId;
}

void SdlServer::deliverFrame(std::int32_t playerId, const std::uint8_t* frame, Size frameSize) {
  const auto id = static_cast<std::uint32_t>(playerId);
  if (threaded_) {
    const Players::Reader reader(players_);
    SdlPlayer* player = findPlayer(reader.players(), id);
    if (player != nullptr && player->frameSize() == frameSize) player->submitFrame(frame);
    return;
  }
  const Alone alone(*this);
  SdlPlayer* shown = player(id);
  if (shown != nullptr && shown->frameSize() == frameSize) {
    shown->submitFrame(frame);
    shown->showNewestFrame();
  }
  pumpEvents(false);
}

void SdlServer::closePlayer(std::uint32_t playerId) {
  if (threaded_) {
    const Players::Reader reader(players_);
    SdlPlayer* player = findPlayer(reader.players(), playerId);
    if (player != nullptr) player->requestClose();
    return;
  }
  const Alone alone(*this);
  removeNow(player(playerId));
}

bool SdlServer::hasOpenPlayer(std::uint32_t playerId) const {
  const Players::Reader reader(players_);
  const SdlPlayer* player = findPlayer(reader.players(), playerId);
  return player != nullptr && !player->isCloseRequested();
}

bool SdlServer::canWindowCome(const SdlPlayer& player) const {
  return !leaving_ && thread_.isRunning() && !thread_.isLost() && !player.isWindowImpossible();
}

template <class Result, class Action>
Result SdlServer::withWindow(std::uint32_t playerId, Result absent, Action action) const {
  for (;;) {
    {
      std::unique_lock gate(sdlGate, std::defer_lock);
      if (!threaded_) gate.lock();
      const Players::Reader reader(players_);
      SdlPlayer* player = findPlayer(reader.players(), playerId);
      if (player == nullptr) return absent;
      if (player->window() != nullptr) return action(*player);
      if (!canWindowCome(*player)) return absent;
    }
    SDL_Delay(kWindowPoll);
  }
}

void SdlServer::raisePlayer(std::uint32_t playerId) {
  withWindow(playerId, false, [](SdlPlayer& player) {
    player.window()->raise();
    return true;
  });
}

void SdlServer::renamePlayer(std::uint32_t playerId, const std::string& title) {
  withWindow(playerId, false, [&](SdlPlayer& player) {
    player.setTitle(title);
    return true;
  });
}

bool SdlServer::isPlayerFullscreen(std::uint32_t playerId) const {
  return withWindow(playerId, false,
                    [](SdlPlayer& player) { return player.window()->isFullscreen(); });
}

std::int32_t SdlServer::getFrameWidth(std::uint32_t playerId) const {
  return withWindow(playerId, std::int32_t{0}, [](SdlPlayer& player) {
    return static_cast<std::int32_t>(player.frameSize().width);
  });
}

std::int32_t SdlServer::getFrameHeight(std::uint32_t playerId) const {
  return withWindow(playerId, std::int32_t{0}, [](SdlPlayer& player) {
    return static_cast<std::int32_t>(player.frameSize().height);
  });
}

std::optional<WindowGeometry> SdlServer::windowGeometry(std::uint32_t playerId) const {
  return withWindow(playerId, std::optional<WindowGeometry>{},
                    [](SdlPlayer& player) { return std::optional(player.window()->geometry()); });
}

std::uint32_t SdlServer::getWindowWidth(std::uint32_t playerId) const {
  return windowGeometry(playerId).value_or(WindowGeometry{}).size.width;
}

std::uint32_t SdlServer::getWindowHeight(std::uint32_t playerId) const {
  return windowGeometry(playerId).value_or(WindowGeometry{}).size.height;
}

std::uint32_t SdlServer::getWindowX(std::uint32_t playerId) const {
  return windowGeometry(playerId).value_or(WindowGeometry{}).position.x;
}

std::uint32_t SdlServer::getWindowY(std::uint32_t playerId) const {
  return windowGeometry(playerId).value_or(WindowGeometry{}).position.y;
}

// ---- Start and stop
// -----------------------------------------------------------------------------------

// Host threads that add the first player at the same time meet in the gate.
void SdlServer::start() {
  const InGate gate;
  if (started_ != 0) return;
  openGl_ = isOpenGlInUse();
  initSdlVideo();
  sdlCode_ = holdSdl();
  if (threaded_) {
    if (openGl_) stayLoaded();
    quit_ = 0;
    mutex_ = SDL_CreateMutex();
    thread_.start(
        "sdlVideoPlayers",
        [](void* server) { static_cast<SdlServer*>(server)->runDisplayThread(); }, this);
  }
  started_ = 1;
}

bool SdlServer::stop() {
  if (started_ == 0) return true;
  beginLeaving();
  quit_ = 1;
  if (threaded_) {
    if (!awaitDisplayThread()) return false;
  } else {
    if (!mayDeletePlayers()) return false;
    deleteAllPlayers();
  }
  SDL_DestroyMutex(mutex_.exchange(nullptr));
  started_ = 0;
  quit_ = 0;  // Right after the wait, deliberately; leaving_ stays.
  return true;
}

// Windows of another thread would be left behind without their players: they keep SDL then.
bool SdlServer::mayDeletePlayers() const {
  const auto isOurs = [](const SdlPlayer* player) { return player->maker() == currentThread(); };
  return !kWindowsAreTheirThreads || std::ranges::all_of(players_.players(), isOurs);
}

// Sleeps are counted, and the clock looked at, as sleeps may take much longer than was asked for.
bool SdlServer::awaitDisplayThread() {
  using Clock = std::chrono::steady_clock;
  if (thread_.isThisThread()) return false;
  waited_ = std::max(waited_, static_cast<std::uint32_t>(waitedForHostCalls().count()));
  const auto left = [this] {
    return std::chrono::milliseconds(kLongestWait - std::min(waited_, kLongestWait));
  };
  const auto deadline = Clock::now() + left();
  while (thread_.isRunning() && !players_.empty() && waited_ < kLongestWait && !thread_.isLost() &&
         Clock::now() < deadline) {
    SDL_Delay(kUnloadPoll);
    waited_ += kUnloadPoll;
  }
  const bool ended = thread_.awaitEnd(std::min(deadline, Clock::now() + left()));
  waited_ = kLongestWait;
  return ended;
}

// ---- The display thread
// -------------------------------------------------------------------------------

void SdlServer::runDisplayThread() {
  if ((SDL_WasInit(SDL_INIT_EVERYTHING) & SDL_INIT_VIDEO) == 0) {
    std::fprintf(stderr, "Internal error: SDL video subsystem is not initialized.\n");
  }
  while (quit_ == 0 && !leaving_) {
    runPass();
    SDL_Delay(players_.empty() ? kPassWithout : kPassWithPlayers);
  }
  deleteAllPlayers();
}

void SdlServer::runPass() {
  if (!lockForPass()) return;
  {
    const InGate gate;
    servePlayers();
    pumpEvents(true);
  }
  unlockAfterPass();
}

FRAMESINK_IS_THE_LOCK bool SdlServer::lockForPass() { return SDL_LockMutex(mutex_) == 0; }

FRAMESINK_IS_THE_LOCK void SdlServer::unlockAfterPass() { SDL_UnlockMutex(mutex_); }

void SdlServer::servePlayers() {
  for (std::size_t i = 0; i < players_.players().size(); ++i) {
    SdlPlayer& player = *players_.players()[i];
    servePlayer(player);
    // The walk skips the entry that moves down; it is served on the next pass, 1 ms later.
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
  if (player.window() != nullptr && player.hasNewFrame()) player.showNewestFrame();
}

void SdlServer::deleteAllPlayers() {
  const bool locked = SDL_LockMutex(mutex_) == 0;
  {
    const Alone alone(*this);
    players_.removeAll();
    awaitReclaim();
  }
  if (locked) SDL_UnlockMutex(mutex_);
}

// ---- Windows and events
// -------------------------------------------------------------------------------

void SdlServer::openWindow(SdlPlayer& player) {
  if (player.isFullscreenWanted()) leaveFullscreenAll();
  player.createWindow();
}

// Only one window is ever full screen.
void SdlServer::leaveFullscreenAll() {
  for (SdlPlayer* player : players_.players()) {
    SdlWindow* window = player->window();
    if (window == nullptr || !window->isFullscreen() || !window->leaveFullscreen()) continue;
    while (window->isFullscreen() && !leaving_) SDL_Delay(kWindowPoll);
    SDL_Delay(kWindowPoll);
  }
}

SdlPlayer* SdlServer::player(std::uint32_t playerId) const {
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

// An event that belongs to no window of ours ends the drain and is dropped, application events
// included; the rest waits for the next pass.
void SdlServer::pumpEvents(bool deferClose) {
  SDL_Event event;
  while (nextEvent(event)) {
    SdlPlayer* player = playerWithWindow(event.window.windowID);
    if (player == nullptr) {
      handOver(event);
      return;
    }
    handleEvent(event, *player, deferClose);
  }
}

bool SdlServer::nextEvent(SDL_Event& event) {
  return inbox_.take(event) || SDL_PollEvent(&event) != 0;
}

void SdlServer::handOver(const SDL_Event& event) {
  SdlServer* other = existingServer(/*synchronous=*/threaded_);
  if (other != nullptr && other->playerWithWindow(event.window.windowID) != nullptr) {
    other->inbox_.put(event);
  }
}

void SdlServer::handleEvent(const SDL_Event& event, SdlPlayer& player, bool deferClose) {
  if (event.type == SDL_WINDOWEVENT) {
    handleWindowEvent(event.window, player, deferClose);
  } else if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE) {
    if (player.window()->isFullscreen()) player.window()->leaveFullscreen();
  }
}

void SdlServer::handleWindowEvent(const SDL_WindowEvent& event, SdlPlayer& player,
                                  bool deferClose) {
  SdlWindow& window = *player.window();
  const auto data1 = static_cast<std::uint32_t>(event.data1);
  const auto data2 = static_cast<std::uint32_t>(event.data2);
  switch (event.event) {
    case SDL_WINDOWEVENT_EXPOSED:
    case SDL_WINDOWEVENT_MAXIMIZED:
    case SDL_WINDOWEVENT_RESTORED:
      player.showNewestFrame();
      break;
    case SDL_WINDOWEVENT_MOVED:
      window.setStoredPosition({data1, data2});
      break;
    case SDL_WINDOWEVENT_RESIZED:
      if (!window.isFullscreen()) window.setStoredSize({data1, data2});
      player.showNewestFrame();
      break;
    case SDL_WINDOWEVENT_CLOSE:
      if (deferClose) {
        player.requestClose();
      } else {
        removePlayer(event.windowID);
      }
      break;
    default:
      break;
  }
}

void SdlServer::removePlayer(std::uint32_t windowId) { removeNow(playerWithWindow(windowId)); }

// In the gate the only readers are other threads' looks whether a player is open, and those are
// short.
void SdlServer::removeNow(SdlPlayer* player) {
  if (player == nullptr) return;
  players_.remove(player);
  awaitReclaim();
}

void SdlServer::awaitReclaim() {
  while (!players_.reclaim()) sleepFor(std::chrono::milliseconds(1));
}

}  // namespace framesink
