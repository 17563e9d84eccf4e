#include "support/x_server.hpp"

#include <stdexcept>
#include <vector>

namespace framesink::test {
namespace {

std::vector<std::string> serverCommand(ScreenSize size) {
  const std::string screen = std::to_string(size.width) + "x" + std::to_string(size.height) + "x24";
  return {"Xvfb", "-displayfd", "1",   "-screen", "0",
          screen, "-nolisten",  "tcp", "-ac",     "-terminate"};
}

// -displayfd makes the server write its display number once it accepts connections.
std::string readDisplay(ChildProcess& server) {
  const auto written = [&] { return server.standardOutput().find('\n') != std::string::npos; };
  waitUntil([&] { return written() || !server.isRunning(); }, std::chrono::seconds(20));
  if (!written()) {
    const std::string how = server.isRunning() ? "is not ready after 20 s" : "ended at its start";
    throw std::runtime_error("Xvfb " + how + ": " + server.standardError());
  }
  const std::string output = server.standardOutput();
  return ":" + output.substr(0, output.find('\n'));
}

}  // namespace

// Uses SIGTERM because the server then removes its socket.
XServer::XServer(ScreenSize size)
    : server_(serverCommand(size), {.environment = {}, .endSignal = SIGTERM}),
      display_(readDisplay(server_)),
      keeper_(display_),
      displayVariable_("DISPLAY", display_),
      waylandVariable_("WAYLAND_DISPLAY", std::nullopt),
      videoDriverVariable_("SDL_VIDEODRIVER", "x11") {}

XServer& sharedXServer() {
  static XServer* server = nullptr;
  if (server && !server->isRunning()) {
    delete server;
    server = nullptr;
  }
  if (!server) server = new XServer;
  return *server;
}

}  // namespace framesink::test
