#include "shown_frames.hpp"

#include <map>
#include <mutex>

namespace framesink::test {

struct ShownFrames::Album {
  std::mutex mutex;
  // By texture: where SDL_LockTexture writes the address of the pixels.
  std::map<std::int64_t, void* const*> locked;
  std::vector<Image> images;

  void note(std::int64_t texture, std::int64_t whereThePixelsWillBe) {
    const std::lock_guard lock(mutex);
    locked[texture] =
        reinterpret_cast<void* const*>(static_cast<std::intptr_t>(whereThePixelsWillBe));
  }

  void take(std::int64_t texture, Size size) {
    const std::lock_guard lock(mutex);
    const std::size_t count = std::size_t{size.width} * size.height;
    const auto* pixels = static_cast<const std::uint32_t*>(*locked.at(texture));
    Image image{
        static_cast<int>(size.width), static_cast<int>(size.height), {pixels, pixels + count}};
    for (auto& pixel : image.pixels) pixel &= 0x00FFFFFF;
    images.push_back(std::move(image));
  }
};

ShownFrames::ShownFrames(SdlRecorder& recorder, Size size, std::function<void()> duringDrawing)
    : album_(std::make_unique<Album>()),
      beforeLock_(recorder.before(
          "SDL_LockTexture",
          [album = album_.get(), duringDrawing = std::move(duringDrawing)](const SdlCall& call) {
            album->note(call.arguments[0], call.arguments[2]);
            duringDrawing();
          })),
      beforeUnlock_(
          recorder.before("SDL_UnlockTexture", [album = album_.get(), size](const SdlCall& call) {
            album->take(call.arguments[0], size);
          })) {}

ShownFrames::~ShownFrames() = default;

std::vector<Image> ShownFrames::all() const {
  const std::lock_guard lock(album_->mutex);
  return album_->images;
}

Image ShownFrames::last() const {
  const std::vector<Image> images = all();
  return images.empty() ? Image{} : images.back();
}

}  // namespace framesink::test
