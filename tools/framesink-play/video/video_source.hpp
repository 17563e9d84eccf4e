// Videos, images and sequences of images, read by FFmpeg's libraries.
#pragma once

#include <memory>
#include <string>

#include "sources/source.hpp"

namespace framesink::play {

// Opens a file, or standard input for "-", and skips the frames that are due before `begin` seconds.
// A name with a number's place in it ("frame-%04d.png") names a sequence of images, unless a file
// has that name. A stop signal ends a read that waits for input. Throws Failure if nothing can be
// shown.
std::unique_ptr<Source> makeVideoSource(const std::string& path, double begin);

}  // namespace framesink::play
