// Records the frames that windows draw, as they stand in the windows' textures.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "display/geometry.hpp"
#include "support/sdl_recorder.hpp"
#include "support/x_image.hpp"

namespace framesink::test {

// Records the textures of all windows, which must have one size. Hooks SDL_LockTexture and
// SDL_UnlockTexture. `duringDrawing` runs after the player chose a buffer and before it copies it.
class ShownFrames {
 public:
  ShownFrames(
      SdlRecorder& recorder, Size size, std::function<void()> duringDrawing = [] {});

  ~ShownFrames();

  // The frames in the order of drawing; their pixels are 0x00RRGGBB.
  std::vector<Image> all() const;
  std::size_t count() const { return all().size(); }
  Image last() const;  // empty if nothing was drawn

 private:
  struct Album;
  const std::unique_ptr<Album> album_;
  const SdlHook beforeLock_;
  const SdlHook beforeUnlock_;
};

}  // namespace framesink::test
