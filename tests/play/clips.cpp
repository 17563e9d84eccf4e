#include "clips.hpp"

#include <gtest/gtest.h>

namespace framesink::play {

void makeWithFfmpeg(const Arguments& arguments) {
  Arguments line{"ffmpeg", "-nostdin", "-loglevel", "error", "-y"};
  line.insert(line.end(), arguments.begin(), arguments.end());
  ASSERT_TRUE(runProgram(line)) << "the program ffmpeg is needed";
}

std::string video(int frames, const std::string& rate) {
  std::string text = "YUV4MPEG2 W16 H8 F" + rate + " Ip C420\n";
  for (int i = 1; i <= frames; ++i)
    text += "FRAME\n" + std::string(16 * 8 * 3 / 2, static_cast<char>(i));
  return text;
}

}  // namespace framesink::play
