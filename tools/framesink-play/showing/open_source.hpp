// From the command line to a source.
#pragma once

#include <memory>

#include "command_line/options.hpp"
#include "sources/source.hpp"

namespace framesink::play {

// Opens what the options name, from the second that they ask for on. Throws Failure.
std::unique_ptr<Source> openSource(const Options& options);

}  // namespace framesink::play
