// --doctor: a report on library, SDL, pixkit and display, to paste into a bug report.
#pragma once

#include "command_line/options.hpp"
#include "system/failure.hpp"

namespace framesink::play {

// Prints the report to standard output and returns the exit status. Shows a test window for one
// second.
ExitStatus runDoctor(const ProgramOptions& options);

}  // namespace framesink::play
