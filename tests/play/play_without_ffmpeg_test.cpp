#include <gtest/gtest.h>

#include "player_process.hpp"

namespace framesink::play {
namespace {

TEST(PlayWithoutFfmpeg, RefusesFilesInOneLineWithStatus1) {
  const Scratch scratch;
  const std::string path = scratch.write("a.ppm", "P6 1 1 255\n***");
  const Outcome outcome = runPlayer({path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "framesink-play: " + path + ": cannot be read, this player was built without FFmpeg\n");
}

}  // namespace
}  // namespace framesink::play
