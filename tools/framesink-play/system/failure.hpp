// The ways in which framesink-play ends.
#pragma once

#include <stdexcept>
#include <string>

namespace framesink::play {

enum ExitStatus : int { kPlayed = 0, kSourceTrouble, kUsageTrouble, kLibraryTrouble, kNoDisplay };

// Ends the player: `what` is told to the user in one line on standard error.
struct Failure : std::runtime_error {
  Failure(ExitStatus exitStatus, const std::string& what)
      : std::runtime_error(what), status(exitStatus) {}

  ExitStatus status;
};

}  // namespace framesink::play
