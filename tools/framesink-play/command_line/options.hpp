// What the user asks for: of one source, and of the program.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "frames/picture.hpp"
#include "frames/raw_form.hpp"
#include "frames/sample_type.hpp"

namespace framesink::play {

struct Extent {
  int width, height;
};

struct Place {
  int x, y;
};

struct Options {
  std::string source;          // empty: the built-in model; "-": standard input
  std::optional<RawForm> raw;  // of the source's samples, which names kind and type
  std::optional<Kind> kind;
  const SampleType* type = nullptr;  // null: not asked for
  Layout layout = Layout::kColumn;
  int windows = 1;  // of each kind and type shown
  bool synchronous = false;
  std::optional<Extent> size;
  std::optional<Place> position;
  bool fullscreen = false;
  std::optional<double> rate;  // frames per second; infinite: as fast as possible
  double seek = 0;             // seconds of the source that are left out
  bool loop = false;
  std::optional<std::uint64_t> frames;
  std::optional<double> duration;  // seconds
  std::optional<double> hold;      // seconds; infinite: until the windows are closed
  std::string title;
  std::string dumpFile;

  bool measured = false;  // for statistics

  // Where this source stands among the others.
  int windowsBefore = 0;
  int windowsInAll = 1;
  bool ownPosition = false;  // of the options of this source alone, not of all
  bool ownFullscreen = false;

  // Without a word about them the model shows one window of each kind.
  bool isDemo() const { return source.empty() && !kind && type == nullptr; }
};

struct ProgramOptions {
  std::string sharedLibrary;  // empty: the usual one
  std::string statistics;     // "text" or "json"; empty: none
  bool version = false;
  bool doctor = false;
};

}  // namespace framesink::play
