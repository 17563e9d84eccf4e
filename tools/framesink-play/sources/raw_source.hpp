// Raw samples from a file or a pipe, shown as they are.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "frames/raw_form.hpp"
#include "sources/source.hpp"

namespace framesink::play {

// Opens a file, or standard input for "-". Frames are due `interval` seconds apart; `skipped` of
// them are read and left out at the beginning. Throws Failure when it cannot be opened. A read that
// is waiting for its input ends when the player is asked to stop; on Windows one of a pipe waits on.
std::unique_ptr<Source> makeRawSource(const std::string& path, const RawForm& form, double interval,
                                      std::uint64_t skipped);

}  // namespace framesink::play
