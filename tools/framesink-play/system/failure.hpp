// The exit statuses of framesink-play, and the exception that carries one.
#pragma once

#include <stdexcept>
#include <string>

namespace framesink::play {

enum ExitStatus : int { kPlayed = 0, kSourceTrouble, kUsageTrouble, kLibraryTrouble, kNoDisplay };

// Ends the player with `status`. main prints `what` as one line on standard error.
struct Failure : std::runtime_error {
  Failure(ExitStatus exitStatus, const std::string& what)
      : std::runtime_error(what), status(exitStatus) {}

  ExitStatus status;
};

}  // namespace framesink::play
