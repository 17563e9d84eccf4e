// One block of the library with its window, for as long as the host runs its model.
#pragma once

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
  // Creates and starts a block whose window opens at once, if at all. `library` must outlive it. Throws
  // Failure when the library refuses.
  BlockWindow(const Library& library, const WindowSettings& settings,
              const InputDescription& description);
  ~BlockWindow();
  BlockWindow(const BlockWindow&) = delete;
  BlockWindow& operator=(const BlockWindow&) = delete;

  bool isOpen() const;

  // Sends a frame. Throws Failure when the library has something to say.
  void update(const FramePlanes& planes);

 private:
  const Library& library_;
  std::string name_;
  void* block_ = nullptr;
};

}  // namespace framesink::play
