// Clips for tests.
#pragma once

#include <string>

#include "player_process.hpp"

namespace framesink::play {

// Runs `ffmpeg`, which makes the tests' clips and expected pictures. Fails the test if ffmpeg
// fails.
void makeWithFfmpeg(const Arguments& arguments);

// A YUV4MPEG2 stream of 16 x 8 pixels; each frame is a single grey, whose value is the frame's
// number, counted from 1.
std::string video(int frames, const std::string& rate);

}  // namespace framesink::play
