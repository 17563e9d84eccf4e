// --doctor: what is here, and whether windows work; to be pasted into a bug report.
#pragma once

#include "command_line/options.hpp"
#include "system/failure.hpp"

namespace framesink::play {

// Writes the report to standard output, with a test window of one second, and returns the status to
// end with.
ExitStatus runDoctor(const ProgramOptions& options);

}  // namespace framesink::play
