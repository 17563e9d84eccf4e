// Plays all sources of a command line at the same time, on one thread: while one of them waits for
// its input, the others stand still, and closed windows go unnoticed.
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
  // Opens the sources' windows. Options and library must outlive the player. `sources` belong to
  // `options` one by one. Throws Failure.
  Player(const std::vector<Options>& options, const Library& library,
         std::vector<std::unique_ptr<Source>> sources);

  // Returns when every show is over, or when a signal asks for it. Throws Failure when the library
  // has something to say.
  void run();

  const std::vector<std::unique_ptr<Show>>& shows() const { return shows_; }

 private:
  Show* next() const;

  StatusLine status_;
  std::vector<std::unique_ptr<Show>> shows_;
};

}  // namespace framesink::play
