// The windows of one source, grouped by the kind and type of their frames.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "command_line/options.hpp"
#include "frames/frame_planes.hpp"
#include "host/block_window.hpp"
#include "host/conversion_twin.hpp"
#include "host/library.hpp"
#include "report/time_histogram.hpp"
#include "sources/source.hpp"

namespace framesink::play {

// Frames of one kind and type, with the windows that show them.
struct View {
  FramePlanes planes;
  std::vector<std::unique_ptr<BlockWindow>> windows;
  std::unique_ptr<ConversionTwin> twin = {};  // of the first window; null without --stats
  TimeHistogram hostTimes = {};
};

// Returns the library's name for window `number` of the player, counted from 1.
std::string windowName(int number);

// Opens all windows that the options ask for. The source must have a frame. Throws Failure.
std::vector<View> openViews(const Options& options, const Library& library, const Source& source);

}  // namespace framesink::play
