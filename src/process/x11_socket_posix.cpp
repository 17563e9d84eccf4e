#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string_view>

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

using Flag = std::atomic<bool>;

constexpr std::chrono::milliseconds kSlice{50};  // between looks whether to give up

bool becomes(int socket, short events, std::chrono::milliseconds patience, const Flag* giveUp) {
  pollfd polled{.fd = socket, .events = events, .revents = 0};
  for (auto left = patience; left > kSlice; left -= kSlice) {
    if (::poll(&polled, 1, static_cast<int>(kSlice.count())) > 0) return true;
    if (giveUp != nullptr && *giveUp) return false;
  }
  return ::poll(&polled, 1, static_cast<int>(std::min(patience, kSlice).count())) > 0;
}

// The first message of the X protocol, of a version 0.0 that does not exist.
constexpr std::array<std::uint8_t, 12> kGreeting = {
    std::endian::native == std::endian::little ? std::uint8_t{'l'} : std::uint8_t{'B'}};

struct Address {
  sockaddr_storage storage{};
  socklen_t bytes = sizeof storage;

  sockaddr* get() { return reinterpret_cast<sockaddr*>(&storage); }
};

enum class Answer { kReaction, kSilence, kNobody };

Answer ask(Address& server, std::chrono::milliseconds patience, const Flag* giveUp) {
  const Socket second(server.storage.ss_family);
  if (::connect(second.descriptor(), server.get(), server.bytes) != 0 && errno != EINPROGRESS) {
    return errno == EAGAIN ? Answer::kSilence : Answer::kNobody;  // EAGAIN: others wait, too
  }
  if (!becomes(second.descriptor(), POLLOUT, patience, giveUp)) return Answer::kSilence;
  const auto sent = ::send(second.descriptor(), kGreeting.data(), kGreeting.size(), MSG_NOSIGNAL);
  if (sent != static_cast<ssize_t>(kGreeting.size())) return Answer::kNobody;
  const bool reacts = becomes(second.descriptor(), POLLIN, patience, giveUp);
  return reacts ? Answer::kReaction : Answer::kSilence;
}

// The address of a local display's socket, in the file system or in Linux's abstract namespace.
Address localAddress(unsigned long display, bool isAbstract) {
  Address address;
  auto& socket = reinterpret_cast<sockaddr_un&>(address.storage);
  socket.sun_family = AF_UNIX;
  char* const path = socket.sun_path + (isAbstract ? 1 : 0);
  const int length =
      std::snprintf(path, sizeof socket.sun_path - 1, "/tmp/.X11-unix/X%lu", display);
  address.bytes = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) +
                                         static_cast<std::size_t>(length) + 1);
  return address;
}

}  // namespace

KnownSocket identify(int descriptor) {
  struct stat facts {};
  if (::fstat(descriptor, &facts) != 0) return {};
  return {descriptor, static_cast<std::uint32_t>(facts.st_ino)};
}

bool isThere(const KnownSocket& socket) {
  return socket.descriptor >= 0 && identify(socket.descriptor).identity == socket.identity;
}

bool isLocal(int socket) {
  Address server;
  return ::getpeername(socket, server.get(), &server.bytes) == 0 &&
         server.storage.ss_family == AF_UNIX;
}

bool hasHungUp(int socket) {
  pollfd polled{.fd = socket, .events = POLLRDHUP, .revents = 0};
  return ::poll(&polled, 1, 0) > 0 && (polled.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

void cut(int socket) { ::shutdown(socket, SHUT_RDWR); }

bool doesServerAnswer(int socket, std::chrono::milliseconds patience, const Flag* giveUp) {
  Address server;
  if (::getpeername(socket, server.get(), &server.bytes) != 0) return false;
  return ask(server, patience, giveUp) == Answer::kReaction;
}

bool isDisplaySilent(const char* displayName, std::chrono::milliseconds patience) {
  const std::string_view name = displayName == nullptr ? "" : displayName;
  const std::size_t colon = name.rfind(':');
  if (colon == std::string_view::npos || (colon != 0 && name.substr(0, colon) != "unix")) {
    return false;
  }
  const unsigned long number = std::strtoul(displayName + colon + 1, nullptr, 10);
  for (const bool isAbstract : {true, false}) {
    Address server = localAddress(number, isAbstract);
    const Answer answer = ask(server, patience, nullptr);
    if (answer != Answer::kNobody) return answer == Answer::kSilence;
  }
  return false;
}

}  // namespace framesink
