// The definition of all options, for CLI11.
#pragma once

#include "command_line/options.hpp"

namespace CLI {
class App;
}

namespace framesink::play {

// Makes `app` read the options of one source into `options` and those of the program into
// `program`. Both must outlive `app`.
void addOptions(CLI::App& app, Options& options, ProgramOptions& program);

// Throws Failure if the options contradict each other.
void checkOptions(const Options& options, bool hasKindOrType);

}  // namespace framesink::play
