// The command line as a whole: what the user asks of the program, and of each source.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "command_line/options.hpp"

namespace framesink::play {

struct CommandLine {
  ProgramOptions program;
  std::vector<Options> sources;  // one at least: the model, when there is no FILE
};

// Reads the command line. Options before the first FILE hold for all of them, those after a FILE
// for that one only, except those of the program. Nothing when the user only asked for help, which
// is then printed. Throws Failure for what cannot be understood.
std::optional<CommandLine> parseCommandLine(int argc, char** argv);

}  // namespace framesink::play
