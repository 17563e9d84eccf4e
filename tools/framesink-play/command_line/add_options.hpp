// The options as CLI11 knows them.
#pragma once

#include "command_line/options.hpp"

namespace CLI {
class App;
}

namespace framesink::play {

// Lets `app` read the options of one source, and those of the program, into the two records, which
// must outlive it.
void addOptions(CLI::App& app, Options& options, ProgramOptions& program);

// Ends in Failure when the options do not go together.
void checkOptions(const Options& options, bool hasKindOrType);

}  // namespace framesink::play
