// The frames that windows draw, taken from the textures on their way to the screen.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "display/geometry.hpp"
#include "support/sdl_recorder.hpp"
#include "support/x_image.hpp"

namespace framesink::test {

// Watches textures of one size, whichever window they belong to. Hooks on to SDL_LockTexture
// and SDL_UnlockTexture; `duringDrawing` runs between the choice of the buffer and its copying.
class ShownFrames {
 public:
  ShownFrames(
      SdlRecorder& recorder, Size size, std::function<void()> duringDrawing = [] {});

  ~ShownFrames();

  // In the order of drawing, 0x00RRGGBB.
  std::vector<Image> all() const;
  std::size_t count() const { return all().size(); }
  Image last() const;  // empty when there was none

 private:
  struct Album;
  const std::unique_ptr<Album> album_;
  const SdlHook beforeLock_;
  const SdlHook beforeUnlock_;
};

}  // namespace framesink::test
