#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstdint>

#include "process/x11_socket.hpp"

namespace framesink {
namespace {

class Socket {
 public:
  explicit Socket(int family)
      : descriptor_(::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {}
  ~Socket() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  int descriptor() const { return descriptor_; }

 private:
  const int descriptor_;
};

bool becomes(int socket, short events, std::chrono::milliseconds patience) {
  pollfd polled{.fd = socket, .events = events, .revents = 0};
  return ::poll(&polled, 1, static_cast<int>(patience.count())) > 0;
}

// The first message of the X protocol, version 11.0, without authorisation.
constexpr std::array<std::uint8_t, 12> kGreeting =
    std::endian::native == std::endian::little
        ? std::array<std::uint8_t, 12>{'l', 0, 11, 0, 0, 0, 0, 0, 0, 0, 0, 0}
        : std::array<std::uint8_t, 12>{'B', 0, 0, 11, 0, 0, 0, 0, 0, 0, 0, 0};

}  // namespace

bool hasHungUp(int socket) {
  pollfd polled{.fd = socket, .events = POLLRDHUP, .revents = 0};
  return ::poll(&polled, 1, 0) > 0 && (polled.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

void cut(int socket) { ::shutdown(socket, SHUT_RDWR); }

bool doesServerAnswer(int socket, std::chrono::milliseconds patience) {
  sockaddr_storage server{};
  socklen_t bytes = sizeof server;
  auto* address = reinterpret_cast<sockaddr*>(&server);
  if (::getpeername(socket, address, &bytes) != 0) return false;
  const Socket second(server.ss_family);
  if (::connect(second.descriptor(), address, bytes) != 0 && errno != EINPROGRESS) return false;
  if (!becomes(second.descriptor(), POLLOUT, patience)) return false;
  const auto sent = ::send(second.descriptor(), kGreeting.data(), kGreeting.size(), MSG_NOSIGNAL);
  return sent == static_cast<ssize_t>(kGreeting.size()) &&
         becomes(second.descriptor(), POLLIN, patience);
}

}  // namespace framesink
