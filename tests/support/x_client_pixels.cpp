// XClient's part that reads pixels.
#include <algorithm>
#include <cstring>
#include <span>

#include "support/x_client.hpp"

namespace framesink::test {
namespace {

constexpr std::uint32_t kColourBits = 0x00FFFFFF;

// True if pixels of this visual are 0x??RRGGBB in this machine's byte order. A server in memory has
// no others at depths 24 and 32.
bool holdsRgb(const XConnection& x, xcb_visualid_t id) {
  auto depth = xcb_screen_allowed_depths_iterator(&x.screen());
  for (; depth.rem > 0; xcb_depth_next(&depth)) {
    const std::span visuals(xcb_depth_visuals(depth.data),
                            static_cast<std::size_t>(xcb_depth_visuals_length(depth.data)));
    for (const xcb_visualtype_t& visual : visuals) {
      if (visual.visual_id == id) {
        return depth.data->depth >= 24 && visual.red_mask == 0xFF0000 &&
               visual.green_mask == 0x00FF00 && visual.blue_mask == 0x0000FF;
      }
    }
  }
  return false;
}

}  // namespace

Image XClient::pixels(Window window) {
  const Geometry whole = geometry(window);
  return pixels(window, {0, 0, whole.width, whole.height});
}

Image XClient::pixels(Window window, const Geometry& part) {
  const auto answer = x_.reply(
      xcb_get_image_reply,
      xcb_get_image(x_.raw(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<std::int16_t>(part.x),
                    static_cast<std::int16_t>(part.y), static_cast<std::uint16_t>(part.width),
                    static_cast<std::uint16_t>(part.height), ~0U));
  if (!answer || !holdsRgb(x_, answer->visual)) return {};
  Image image{part.width, part.height, {}};
  image.pixels.resize(static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height));
  const std::size_t bytes = image.pixels.size() * sizeof(std::uint32_t);
  if (static_cast<std::size_t>(xcb_get_image_data_length(answer.get())) != bytes) return {};
  std::memcpy(image.pixels.data(), xcb_get_image_data(answer.get()), bytes);
  for (std::uint32_t& pixel : image.pixels) pixel &= kColourBits;
  return image;
}

Image XClient::rootPixels() { return pixels(x_.root()); }

Image XClient::rootPixels(const Geometry& part) { return pixels(x_.root(), part); }

}  // namespace framesink::test
