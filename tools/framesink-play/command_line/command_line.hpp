// Reads the command line of the program.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "command_line/options.hpp"

namespace framesink::play {

struct CommandLine {
  ProgramOptions program;
  std::vector<Options> sources;  // without a FILE the model alone
};

// Options before the first FILE apply to every FILE, options after a FILE to that one only. Options
// of the program may stand anywhere. For --help, prints the help and returns nothing. Throws Failure
// if the command line is wrong.
std::optional<CommandLine> parseCommandLine(int argc, char** argv);

}  // namespace framesink::play
