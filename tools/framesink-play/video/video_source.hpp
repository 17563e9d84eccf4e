// Videos and images, read by FFmpeg's libraries.
#pragma once

#include <memory>
#include <string>

#include "sources/source.hpp"

namespace framesink::play {

// Opens a file, or standard input for "-", from the frame on that is due `begin` seconds after the
// first. A name with a number's place in it ("frame-%04d.png") that is no file stands for a sequence
// of images. Throws Failure when there is nothing to be shown. A read that is waiting for its input
// ends when the player is asked to stop.
std::unique_ptr<Source> makeVideoSource(const std::string& path, double begin);

}  // namespace framesink::play
