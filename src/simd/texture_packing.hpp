// Packs column-major planes into row-major texture pixels.
#pragma once

#include <cstddef>
#include <cstdint>

namespace framesink {

// Packs a frame (three planes of width * height bytes, red, green, blue, column-major) into
// `pixels`: width * height ARGB8888 values, rows width * 4 bytes apart, alpha 255. The rows of our
// textures are exactly that long; the pitch that SDL reports is deliberately not used.
void copyPlanesToTexture(const std::uint8_t* frame, void* pixels, std::size_t width,
                         std::size_t height);

}  // namespace framesink
