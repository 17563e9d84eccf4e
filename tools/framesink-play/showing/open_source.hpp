// Makes a source from the options.
#pragma once

#include <memory>

#include "command_line/options.hpp"
#include "sources/source.hpp"

namespace framesink::play {

// Opens the source that the options name, after the seconds that --seek skips. Throws Failure.
std::unique_ptr<Source> openSource(const Options& options);

}  // namespace framesink::play
