// One display block with its window, started until it is destroyed.
#pragma once

#include <chrono>
#include <string>

#include "command_line/options.hpp"
#include "frames/frame_planes.hpp"
#include "host/library.hpp"

namespace framesink::play {

struct WindowSettings {
  std::string name;
  std::string title;
  std::optional<Place> position;
  std::optional<Extent> size;
  bool fullscreen = false;
  bool synchronous = false;
  bool open = true;
};

class BlockWindow {
 public:
  using Duration = std::chrono::steady_clock::duration;

  // Creates and starts the block, which opens its window unless the settings say otherwise.
  // `library` must outlive it. Throws Failure if the library reports an error.
  BlockWindow(const Library& library, const WindowSettings& settings,
              const InputDescription& description);
  ~BlockWindow();
  BlockWindow(const BlockWindow&) = delete;
  BlockWindow& operator=(const BlockWindow&) = delete;

  bool isOpen() const;

  // Sends a frame and returns the time that this took. Throws Failure if the library reports an
  // error.
  Duration update(const FramePlanes& planes);

 private:
  const Library& library_;
  std::string name_;
  void* block_ = nullptr;
};

}  // namespace framesink::play
