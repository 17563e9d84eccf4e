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

// Runs Xvfb on a display number that the server chooses. While it lives, DISPLAY of this process
// names it, and SDL_VIDEODRIVER and WAYLAND_DISPLAY make SDL use it.
class XServer {
 public:
  // Throws std::runtime_error with the reason if Xvfb is missing or not ready within 20 s.
  explicit XServer(ScreenSize size = {});

  // In the form of DISPLAY, for example ":3".
  const std::string& display() const { return display_; }
  pid_t pid() const { return server_.pid(); }
  bool isRunning() { return server_.isRunning(); }

 private:
  ChildProcess server_;
  std::string display_;
  // The server ends when its last client disconnects. This client disconnects however the test
  // ends. The signal alone is not enough: it gets lost if it arrives as the server goes to sleep.
  XConnection keeper_;
  ScopedVariable displayVariable_;
  ScopedVariable waylandVariable_;
  ScopedVariable videoDriverVariable_;
};

// The server of this test process, started at the first call, and again if it was killed. It is
// never destroyed and ends with the process, because libraries may still be connected to it while
// exit handlers run. A lost connection would end the process with an error.
XServer& sharedXServer();

}  // namespace framesink::test
