// Replaces the rest of this folder in a player without FFmpeg.
#include "sources/input_file.hpp"
#include "video/video_source.hpp"

namespace framesink::play {

std::unique_ptr<Source> makeVideoSource(const std::string& path, double) {
  failFor(path, "cannot be read, this player was built without FFmpeg");
}

}  // namespace framesink::play
