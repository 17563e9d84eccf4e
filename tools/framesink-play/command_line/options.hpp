// What the user asks for: the options of one source and those of the program.
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
  std::optional<RawForm> raw;  // contains kind and type; excludes --kind and --type
  std::optional<Kind> kind;
  const SampleType* type = nullptr;  // null: no --type
  Layout layout = Layout::kColumn;
  int windows = 1;  // per kind and type
  bool synchronous = false;
  std::optional<Extent> size;
  std::optional<Place> position;
  bool fullscreen = false;
  std::optional<double> rate;  // frames per second; infinite: "max"
  double seek = 0;             // seconds of the source to skip
  bool loop = false;
  std::optional<std::uint64_t> frames;
  std::optional<double> duration;  // seconds
  std::optional<double> hold;      // seconds; infinite: until the user closes the windows
  std::string title;
  std::string dumpFile;

  bool measured = false;  // collect --stats

  // Set from all sources together.
  int windowsBefore = 0;       // of the sources that precede this one
  int windowsInAll = 1;        // of all sources
  bool ownPosition = false;    // --position follows this FILE
  bool ownFullscreen = false;  // --fullscreen follows this FILE

  // The model without --kind and --type shows one window of each kind.
  bool isDemo() const { return source.empty() && !kind && type == nullptr; }
};

struct ProgramOptions {
  std::string sharedLibrary;  // empty: the default one
  std::string statistics;     // "text" or "json"; empty: none
  bool version = false;
  bool doctor = false;
};

}  // namespace framesink::play
