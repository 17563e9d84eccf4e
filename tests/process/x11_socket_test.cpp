#include "process/x11_socket.hpp"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <string>
#include <thread>
#include <utility>

#include "support/os_facts.hpp"
#include "support/temporary_folder.hpp"
#include "support/wait_until.hpp"

namespace framesink::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kShort{100};
constexpr std::size_t kGreetingBytes = 12;

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  ~Descriptor() { close(); }
  Descriptor& operator=(Descriptor&&) = delete;

  int number() const { return number_; }
  void close() {
    if (number_ >= 0) ::close(number_);
    number_ = -1;
  }

 private:
  int number_;
};

std::pair<Descriptor, Descriptor> connectedPair() {
  std::array<int, 2> ends{-1, -1};
  EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

// ---- KnownSocket ----

TEST(X11Socket, IsThereUntilItIsClosed) {
  auto [ours, theirs] = connectedPair();
  const KnownSocket known = identify(ours.number());
  EXPECT_TRUE(isThere(known));
  theirs.close();
  EXPECT_TRUE(isThere(known));
  ours.close();
  EXPECT_FALSE(isThere(known));
  EXPECT_FALSE(isThere(KnownSocket{}));
}

TEST(X11Socket, IsNotTakenForALaterOneWithItsDescriptor) {
  auto [ours, theirs] = connectedPair();
  const KnownSocket known = identify(ours.number());
  const auto [later, other] = connectedPair();
  ASSERT_EQ(::dup2(later.number(), ours.number()), ours.number());
  EXPECT_FALSE(isThere(known));
}

// ---- hasHungUp ----

TEST(X11Socket, AnOpenConnectionHasNotHungUp) {
  const auto [ours, theirs] = connectedPair();
  EXPECT_FALSE(hasHungUp(ours.number()));
}

TEST(X11Socket, UnreadDataIsNoHangUp) {
  const auto [ours, theirs] = connectedPair();
  ASSERT_EQ(::write(theirs.number(), "x", 1), 1);
  EXPECT_FALSE(hasHungUp(ours.number()));
}

TEST(X11Socket, AClosedConnectionHasHungUp) {
  auto [ours, theirs] = connectedPair();
  theirs.close();
  EXPECT_TRUE(hasHungUp(ours.number()));
}

TEST(X11Socket, AClosedConnectionHasHungUpThoughDataIsUnread) {
  auto [ours, theirs] = connectedPair();
  ASSERT_EQ(::write(theirs.number(), "x", 1), 1);
  theirs.close();
  EXPECT_TRUE(hasHungUp(ours.number()));
}

// ---- cut ----

TEST(X11Socket, CuttingEndsAThreadsWaitForDataAndKeepsTheDescriptor) {
  const auto [ours, theirs] = connectedPair();
  std::atomic<ssize_t> got{-2};
  std::atomic<pid_t> readerId{0};
  std::thread reader([&got, &readerId, number = ours.number()] {
    readerId = ::gettid();
    char byte = 0;
    got = ::read(number, &byte, 1);
  });
  EXPECT_TRUE(waitUntil([&] { return readerId != 0 && isAsleep(readerId); }));
  EXPECT_EQ(got, -2);
  cut(ours.number());
  EXPECT_TRUE(waitUntil([&] { return got != -2; }));
  EXPECT_EQ(got, 0);
  EXPECT_GE(::fcntl(ours.number(), F_GETFD), 0);
  EXPECT_TRUE(hasHungUp(ours.number()));
  if (got == -2) ::shutdown(theirs.number(), SHUT_RDWR);
  reader.join();
}

// ---- doesServerAnswer ----

// A server that does with each connection after the first what its `reaction` does.
class Server {
 public:
  enum class Reaction { kAnswers, kCloses, kSaysNothing, kAcceptsNothing };

  Server(int family, Reaction reaction) : family_(family), reaction_(reaction) {
    makeAddress();
    EXPECT_EQ(::bind(listener_.number(), address(), bytes_), 0);
    // Room for one connection that is not accepted.
    EXPECT_EQ(::listen(listener_.number(), reaction == Reaction::kAcceptsNothing ? 0 : 8), 0);
    EXPECT_EQ(::getsockname(listener_.number(), address(), &bytes_), 0);
    EXPECT_EQ(::connect(client_.number(), address(), bytes_), 0);
    if (reaction != Reaction::kAcceptsNothing) thread_ = std::thread([this] { serve(); });
  }
  ~Server() {
    ::shutdown(listener_.number(), SHUT_RDWR);  // ends accept()
    if (thread_.joinable()) thread_.join();
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // The first connection.
  int client() const { return client_.number(); }

  std::array<char, kGreetingBytes> greeting() const { return greeting_; }

  // Ends the server; its address then leads nowhere.
  void close() {
    ::shutdown(listener_.number(), SHUT_RDWR);
    if (thread_.joinable()) thread_.join();
    listener_.close();
  }

 private:
  sockaddr* address() { return reinterpret_cast<sockaddr*>(&address_); }

  void makeAddress() {
    address_.ss_family = static_cast<sa_family_t>(family_);
    if (family_ == AF_UNIX) {
      auto& unix = reinterpret_cast<sockaddr_un&>(address_);
      std::strncpy(unix.sun_path, (folder_.path() + "/server").c_str(), sizeof unix.sun_path - 1);
      bytes_ = sizeof unix;
    } else {
      auto& inet = reinterpret_cast<sockaddr_in&>(address_);
      inet.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
      bytes_ = sizeof inet;
    }
  }

  void serve() {
    const Descriptor first(::accept(listener_.number(), nullptr, nullptr));
    const Descriptor second(::accept(listener_.number(), nullptr, nullptr));
    if (second.number() < 0) return;
    if (reaction_ != Reaction::kSaysNothing) {
      ::recv(second.number(), greeting_.data(), greeting_.size(), MSG_WAITALL);
      if (reaction_ == Reaction::kAnswers) (void)::send(second.number(), "\1", 1, MSG_NOSIGNAL);
      return;
    }
    const Descriptor end(::accept(listener_.number(), nullptr, nullptr));  // until the test ends
  }

  const int family_;
  const Reaction reaction_;
  const TemporaryFolder folder_;
  Descriptor listener_{::socket(family_, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  Descriptor client_{::socket(family_, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  sockaddr_storage address_{};
  socklen_t bytes_ = 0;
  std::array<char, kGreetingBytes> greeting_{};
  std::thread thread_;
};

using Reaction = Server::Reaction;

class X11ServerTest : public testing::TestWithParam<int> {
 protected:
  // Asks the server, and fails the test if that takes longer than `patience` allows.
  static bool answers(const Server& server, std::chrono::milliseconds patience) {
    const auto began = Clock::now();
    const bool result = doesServerAnswer(server.client(), patience);
    EXPECT_LT(Clock::now() - began, 2 * patience + kAtOnce);
    return result;
  }
};
INSTANTIATE_TEST_SUITE_P(X11Socket, X11ServerTest, testing::Values(AF_UNIX, AF_INET),
                         [](const auto& family) {
                           return std::string(family.param == AF_UNIX ? "Unix" : "Tcp");
                         });

TEST_P(X11ServerTest, ThatAnswersIsAsked) {
  Server server(GetParam(), Reaction::kAnswers);
  EXPECT_TRUE(answers(server, kDeadline));
  server.close();
  const auto greeting = server.greeting();
  EXPECT_TRUE(greeting[0] == 'l' || greeting[0] == 'B');
  EXPECT_EQ(greeting[2], 0);  // a version that the server refuses
  EXPECT_EQ(greeting[3], 0);
}

TEST_P(X11ServerTest, ThatSaysNothingIsGivenUpEarlyOnRequest) {
  const Server server(GetParam(), Reaction::kSaysNothing);
  const std::atomic<bool> giveUp{true};
  const auto start = Clock::now();
  EXPECT_FALSE(doesServerAnswer(server.client(), std::chrono::seconds(20), &giveUp));
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));
}

TEST_P(X11ServerTest, ThatClosesTheConnectionAnswers) {
  const Server server(GetParam(), Reaction::kCloses);
  EXPECT_TRUE(answers(server, kDeadline));
}

TEST_P(X11ServerTest, ThatSaysNothingDoesNotAnswer) {
  const Server server(GetParam(), Reaction::kSaysNothing);
  EXPECT_FALSE(answers(server, kShort));
}

TEST_P(X11ServerTest, ThatAcceptsNothingDoesNotAnswer) {
  const Server server(GetParam(), Reaction::kAcceptsNothing);
  EXPECT_FALSE(answers(server, kShort));
}

TEST_P(X11ServerTest, ThatIsGoneDoesNotAnswer) {
  Server server(GetParam(), Reaction::kAcceptsNothing);
  server.close();
  EXPECT_FALSE(answers(server, kDeadline));
}

TEST_P(X11ServerTest, IsAskedWithoutLeavingADescriptorOpen) {
  const std::size_t before = openFileDescriptors();
  {
    const Server server(GetParam(), Reaction::kAnswers);
    EXPECT_TRUE(answers(server, kDeadline));
  }
  EXPECT_EQ(openFileDescriptors(), before);
}

TEST(X11Socket, AServerWithoutAnAddressDoesNotAnswer) {
  const Descriptor lonely(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  EXPECT_FALSE(doesServerAnswer(lonely.number(), kShort));
}

// ---- isDisplaySilent ----

// The name of a display that listens in the abstract namespace.
class Display {
 public:
  explicit Display(int backlog) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const int length = std::snprintf(address.sun_path + 1, sizeof address.sun_path - 1,
                                     "/tmp/.X11-unix/X%d", number_);
    const auto bytes = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 +
                                              static_cast<std::size_t>(length));
    EXPECT_EQ(::bind(listener_.number(), reinterpret_cast<sockaddr*>(&address), bytes), 0);
    EXPECT_EQ(::listen(listener_.number(), backlog), 0);
  }

  std::string name() const { return ":" + std::to_string(number_) + ".0"; }
  int listener() const { return listener_.number(); }

 private:
  const int number_ = 1'000'000 + ::getpid();
  const Descriptor listener_{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};

TEST(X11Display, ThatNobodyServesIsNotSilent) {
  for (const char* name : {":999999", "", "no display", "host:1", "localhost:10.0"}) {
    EXPECT_FALSE(isDisplaySilent(name, kShort)) << name;
  }
  EXPECT_FALSE(isDisplaySilent(nullptr, kShort));
}

TEST(X11Display, ThatTakesConnectionsAndSaysNothingIsSilent) {
  const Display display(8);
  EXPECT_TRUE(isDisplaySilent(display.name().c_str(), kShort));
  EXPECT_TRUE(isDisplaySilent(("unix" + display.name()).c_str(), kShort));
}

TEST(X11Display, ThatReactsIsNotSilent) {
  const Display display(8);
  std::thread server(
      [&] { const Descriptor client(::accept(display.listener(), nullptr, nullptr)); });
  EXPECT_FALSE(isDisplaySilent(display.name().c_str(), kDeadline));
  server.join();
}

}  // namespace
}  // namespace framesink::test
