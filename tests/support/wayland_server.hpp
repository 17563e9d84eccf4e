// A private Wayland compositor for the windows under test.
#pragma once

#include <string>
#include <vector>

#include "support/child_process.hpp"
#include "support/temporary_folder.hpp"

namespace framesink::test {

class XServer;

// Runs weston in a window on that X server. There a test can see what weston shows, and weston has
// a pointer and a keyboard; without them SDL 2.26 crashes in SDL_Init.
class WaylandServer {
 public:
  // Throws std::runtime_error with the reason if weston is missing or not ready within 20 s.
  explicit WaylandServer(const XServer& server);

  // The environment of a program that is to find this compositor and no other display.
  std::vector<std::string> environment() const;

 private:
  TemporaryFolder folder_;  // for the sockets; only this user may enter it
  ChildProcess compositor_;
};

}  // namespace framesink::test
