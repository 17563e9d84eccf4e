#include "display/server_instances.hpp"

#include <array>
#include <atomic>

#include "process/display_loss.hpp"
#include "process/display_watch.hpp"
#include "process/host_calls.hpp"

namespace framesink {
namespace {

constinit std::array<std::atomic<SdlServer*>, 2> servers{};  // indexed by `synchronous`; null: none

// Makes a server when constructed and ends it when destroyed. A server that cannot be stopped
// safely stays as it is until the process ends, without SDL_Quit.
class ServerLife {
 public:
  explicit ServerLife(bool synchronous)
      : synchronous_(synchronous),
        server_(new SdlServer(
            !synchronous, {.sibling = &servers[!synchronous], .stopAll = [] { stopServers(); }})) {
    claimForThisProcess();
    servers[synchronous] = server_;
  }

  // Stops both servers first, because SDL is shut down for both. No window may be left to SDL_Quit:
  // if the pointer is in it, libX11 loads libXcursor from inside dlclose, that dlclose unmaps it
  // again, and the process's next use of X crashes.
  ~ServerLife() {
    if (!stopServers()) return;
    servers[synchronous_] = nullptr;
    delete server_;
  }

  ServerLife(const ServerLife&) = delete;
  ServerLife& operator=(const ServerLife&) = delete;

  SdlServer& server() { return *server_; }

 private:
  const bool synchronous_;
  SdlServer* const server_;
};

}  // namespace

SdlServer& threadedServer() {
  static ServerLife life(false);
  return life.server();
}

SdlServer& synchronousServer() {
  static ServerLife life(true);
  return life.server();
}

SdlServer& serverFor(bool synchronous) {
  return synchronous ? synchronousServer() : threadedServer();
}

SdlServer* existingServer(bool synchronous) { return servers[synchronous]; }

bool stopServers() {
  for (SdlServer* server : servers) {
    if (server != nullptr) server->beginLeaving();
  }
  expectDisplayLoss();
  hurryDisplayWatch();
  if (!endHostCalls()) return false;
  for (SdlServer* server : servers) {
    if (server != nullptr && !server->stop()) return false;
  }
  return true;
}

}  // namespace framesink
