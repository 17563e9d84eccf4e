// A private Wayland compositor for the windows under test.
#pragma once

#include <string>
#include <vector>

#include "support/child_process.hpp"
#include "support/temporary_folder.hpp"

namespace framesink::test {

class XServer;

// Runs weston, whose screen is a window on that X server: there one can see what it shows, and it
// has the pointer and the keyboard without which SDL 2.26 crashes in SDL_Init.
class WaylandServer {
 public:
  // Throws std::runtime_error with the reason when weston is missing or not ready within 20 s.
  explicit WaylandServer(const XServer& server);

  // What a program that shall find this compositor alone has in its environment.
  std::vector<std::string> environment() const;

 private:
  TemporaryFolder folder_;  // its sockets; for its user alone, as all temporary folders here
  ChildProcess compositor_;
};

}  // namespace framesink::test
