#include "support/wayland_server.hpp"

#include <filesystem>
#include <stdexcept>

#include "support/x_server.hpp"

namespace framesink::test {
namespace {

constexpr const char* kSocket = "wayland-of-the-test";

std::vector<std::string> compositorCommand() {
  return {"weston",        "--backend=x11-backend.so",
          "--use-pixman",  "--no-config",
          "--idle-time=0", "--width=1024",
          "--height=768",  std::string("--socket=") + kSocket};
}

}  // namespace

WaylandServer::WaylandServer(const XServer& server)
    : compositor_(compositorCommand(), {.environment = {"DISPLAY=" + server.display(),
                                                        "XDG_RUNTIME_DIR=" + folder_.path()}}) {
  const auto listens = [&] { return std::filesystem::exists(folder_.path() + "/" + kSocket); };
  waitUntil([&] { return listens() || !compositor_.isRunning(); }, std::chrono::seconds(20));
  if (listens()) return;
  const std::string how =
      compositor_.isRunning() ? "is not ready after 20 s" : "ended at its start";
  throw std::runtime_error("weston " + how + ": " + compositor_.standardError());
}

std::vector<std::string> WaylandServer::environment() const {
  return {"XDG_RUNTIME_DIR=" + folder_.path(), std::string("WAYLAND_DISPLAY=") + kSocket, "DISPLAY",
          "SDL_VIDEODRIVER=wayland"};
}

}  // namespace framesink::test
