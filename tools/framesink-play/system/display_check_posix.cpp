#include "system/display_check.hpp"

#include <netdb.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "system/failure.hpp"

namespace framesink::play {
namespace {

constexpr int kFirstXPort = 6000;
constexpr timeval kPatience{5, 0};

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

bool answers(int family, const sockaddr* address, socklen_t bytes) {
  const int socketNumber = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socketNumber < 0) return false;
  setsockopt(socketNumber, SOL_SOCKET, SO_SNDTIMEO, &kPatience, sizeof kPatience);
  const bool connected = connect(socketNumber, address, bytes) == 0;
  close(socketNumber);
  return connected;
}

// A leading zero byte makes `path` one of Linux's abstract names.
bool socketAnswers(const std::string& path) {
  sockaddr_un address{};
  if (path.size() >= sizeof address.sun_path) return false;
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.data(), path.size());
  const auto bytes = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
  return answers(AF_UNIX, reinterpret_cast<const sockaddr*>(&address), bytes);
}

bool hostAnswers(const std::string& host, int port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) return false;
  bool any = false;
  for (const addrinfo* at = found; at != nullptr && !any; at = at->ai_next) {
    any = answers(at->ai_family, at->ai_addr, at->ai_addrlen);
  }
  freeaddrinfo(found);
  return any;
}

// `display` has the form [host]:number[.screen].
bool xServerAnswers(const std::string& display) {
  const auto colon = display.rfind(':');
  if (colon == std::string::npos) return false;
  int number = 0;
  const char* end = display.data() + display.size();
  if (std::from_chars(display.data() + colon + 1, end, number).ec != std::errc()) return false;
  const std::string host = display.substr(0, colon);
  if (!host.empty() && host != "unix") return hostAnswers(host, kFirstXPort + number);
  const std::string path = "/tmp/.X11-unix/X" + std::to_string(number);
  return socketAnswers(std::string(1, '\0') + path) || socketAnswers(path);
}

bool waylandAnswers(const std::string& display) {
  const bool absolute = display.front() == '/';
  return socketAnswers(absolute ? display : variable("XDG_RUNTIME_DIR") + "/" + display);
}

}  // namespace

void requireDisplay() {
  const std::string driver = variable("SDL_VIDEODRIVER");
  if (!driver.empty() && driver != "x11" && driver != "wayland") return;
  const std::string display = variable("DISPLAY");
  const std::string wayland = variable("WAYLAND_DISPLAY");
  if (display.empty() && wayland.empty()) {
    throw Failure(kNoDisplay, "no display: set DISPLAY or WAYLAND_DISPLAY (or run under xvfb-run)");
  }
  if (!display.empty() && xServerAnswers(display)) return;
  if (!wayland.empty() && waylandAnswers(wayland)) return;
  throw Failure(kNoDisplay,
                "no display: nothing answers at " +
                    (display.empty() ? "WAYLAND_DISPLAY=" + wayland : "DISPLAY=" + display));
}

}  // namespace framesink::play
