// Clips for tests.
#pragma once

#include <string>

#include "player_process.hpp"

namespace framesink::play {

// Runs the program `ffmpeg`, which makes tests' clips and expected pictures. The test fails when it
// does.
void makeWithFfmpeg(const Arguments& arguments);

// A YUV4MPEG2 stream of 16 x 8 pixels, its frames of one grey each, numbered from 1.
std::string video(int frames, const std::string& rate);

}  // namespace framesink::play
