// Fixtures that own a server, without a screen.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "display/sdl_server.hpp"
#include "display_helpers.hpp"
#include "process/platform.hpp"

namespace framesink::test {

using Numbers = std::vector<std::int64_t>;
using Names = std::vector<std::string>;

class ServerTest : public DummyVideoTest {
 protected:
  explicit ServerTest(bool threaded) : server(threaded) {}

  // Adds a player and waits until its window has been made.
  std::uint32_t open(const Opening& opening = {}) {
    const std::uint32_t player = addPlayer(server, opening);
    EXPECT_TRUE(hasWindow(server, player));
    return player;
  }

  // SDL's id of the newest window.
  std::uint32_t lastWindowId() const {
    return static_cast<std::uint32_t>(recorder.last("SDL_GetWindowID").result);
  }

  const int hostThread = static_cast<int>(currentThread());
  SdlServer server;
};

class ThreadedServerTest : public ServerTest {
 protected:
  ThreadedServerTest() : ServerTest(true) {}
};

class SynchronousServerTest : public ServerTest {
 protected:
  SynchronousServerTest() : ServerTest(false) {}
};

}  // namespace framesink::test
