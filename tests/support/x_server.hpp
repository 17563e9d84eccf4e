// A private X server in memory for the windows under test.
#pragma once

#include <string>

#include "support/child_process.hpp"
#include "support/scoped_variable.hpp"
#include "support/x_connection.hpp"

namespace framesink::test {

struct ScreenSize {
  int width = 1280;
  int height = 1024;
};

// Runs Xvfb on a display number that the server picks itself. While it lives, DISPLAY of this
// process names it and SDL_VIDEODRIVER and WAYLAND_DISPLAY keep SDL on it.
class XServer {
 public:
  // Throws std::runtime_error with the reason when Xvfb is missing or not ready within 20 s.
  explicit XServer(ScreenSize size = {});

  // As in DISPLAY, for example ":3".
  const std::string& display() const { return display_; }
  pid_t pid() const { return server_.pid(); }
  bool isRunning() { return server_.isRunning(); }

 private:
  ChildProcess server_;
  std::string display_;
  // The server ends by itself when its last client has gone: with this one, whatever ends the test.
  // A signal alone is not enough, for it gets lost when it comes as the server goes to sleep.
  XConnection keeper_;
  ScopedVariable displayVariable_;
  ScopedVariable waylandVariable_;
  ScopedVariable videoDriverVariable_;
};

// The server of this test process, started at the first call and again after somebody killed it. It
// is never destroyed but dies with the process: a library that still holds a connection while its
// own exit handlers run must not lose it, for that would end the process with an error.
XServer& sharedXServer();

}  // namespace framesink::test
