// The lines of --doctor about the process and what it has loaded. All go to standard output.
#pragma once

#include "host/library.hpp"

namespace framesink::play {

// The environment variables that decide about display, drawing and loading.
void printEnvironment();

void printLibrary(const Library& library);

// The version and the video drivers of the SDL that the library has loaded.
void printSdl();

// The range of each sample type, as the loaded pixkit defines it.
void printRanges();

// The video driver in use and SDL's hints. Requires an open window.
void printHints();

}  // namespace framesink::play
