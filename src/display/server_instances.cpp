#include "display/server_instances.hpp"

#include <array>
#include <atomic>

#include "display/host_calls.hpp"

namespace framesink {
namespace {

constinit std::array<std::atomic<SdlServer*>, 2> servers{};  // by `synchronous`

// Makes a server and ends it. When its end cannot be had safely, because Xlib called exit() from
// inside one of our SDL calls, the display thread is stuck, or host calls still run, the server is
// left as it is to the end of the process, without SDL_Quit.
class ServerLife {
 public:
  explicit ServerLife(bool synchronous)
      : synchronous_(synchronous),
        process_(currentProcess()),
        server_(new SdlServer(!synchronous)) {
    servers[synchronous] = server_;
  }

  ~ServerLife() {
    if (process_ != currentProcess()) return;  // a fork: windows and connection are the parent's
    for (SdlServer* server : servers) {
      if (server != nullptr) server->beginLeaving();
    }
    if (!endHostCalls()) return;
    // SDL is shut down for both servers, so the display thread ends first, whichever was made
    // first.
    SdlServer* threaded = servers[false];
    if (threaded != nullptr && !threaded->stop()) return;
    servers[synchronous_] = nullptr;
    delete server_;
  }

  ServerLife(const ServerLife&) = delete;
  ServerLife& operator=(const ServerLife&) = delete;

  SdlServer& server() { return *server_; }

 private:
  const bool synchronous_;
  const std::uint64_t process_;
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

}  // namespace framesink
