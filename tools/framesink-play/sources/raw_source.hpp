// Raw samples from a file or a pipe, sent as they are.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "frames/raw_form.hpp"
#include "sources/source.hpp"

namespace framesink::play {

// Opens a file, or standard input for "-". Frames are due `interval` seconds apart. The first
// `skipped` frames are read and dropped. A stop signal ends a read that waits for input, except of a
// pipe on Windows. Throws Failure if the file cannot be opened.
std::unique_ptr<Source> makeRawSource(const std::string& path, const RawForm& form, double interval,
                                      std::uint64_t skipped);

}  // namespace framesink::play
