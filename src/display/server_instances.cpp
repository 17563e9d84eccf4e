#include "display/server_instances.hpp"

#include <array>
#include <atomic>

#include "process/host_calls.hpp"

namespace framesink {
namespace {

constinit std::array<std::atomic<SdlServer*>, 2> servers{};  // by `synchronous`

// Makes a server and ends it. One that cannot be stopped safely is left as it is to the end of the
// process, without SDL_Quit.
class ServerLife {
 public:
  explicit ServerLife(bool synchronous)
      : synchronous_(synchronous),
        server_(new SdlServer(
            !synchronous, {.sibling = &servers[!synchronous], .stopAll = [] { stopServers(); }})) {
    claimForThisProcess();
    servers[synchronous] = server_;
  }

  // SDL is shut down for both servers, so both stop first, whichever was made first. No window may
  // be left to SDL_Quit: with the pointer in one, Xlib would load its cursor library from inside
  // dlclose, lose it to that dlclose, and crash in the process's next use of X.
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
  if (!endHostCalls()) return false;
  for (SdlServer* server : servers) {
    if (server != nullptr && !server->stop()) return false;
  }
  return true;
}

}  // namespace framesink
