// Plays all sources of a command line at the same time, on one thread. While a source waits for its
// input, the others stand still and closed windows go unnoticed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "command_line/options.hpp"
#include "report/status_line.hpp"
#include "showing/show.hpp"

namespace framesink::play {

class Player {
 public:
  // Opens the windows of all sources. `sources[i]` belongs to `options[i]`. Options and library must
  // outlive the player. Throws Failure.
  Player(const std::vector<Options>& options, const Library& library,
         std::vector<std::unique_ptr<Source>> sources);

  // Returns when every show is over or a signal has asked the player to stop. Throws Failure if the
  // library reports an error.
  void run();

  const std::vector<std::unique_ptr<Show>>& shows() const { return shows_; }

 private:
  Show* next() const;

  StatusLine status_;
  std::vector<std::unique_ptr<Show>> shows_;
};

}  // namespace framesink::play
