// Frames of random samples as a host delivers them, and what windows must show for them.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "display/geometry.hpp"
#include "framesink/framesink.h"
#include "oracle.hpp"
#include "support/x_image.hpp"

namespace framesink::test {

using Bytes = std::vector<std::uint8_t>;
using Kind = oracle::Family;

// What the planes of a frame hold.
inline constexpr const Kind& kRgb = oracle::kFamilies[0];
inline constexpr const Kind& kIntensity = oracle::kFamilies[1];
inline constexpr const Kind& kYcbcr = oracle::kFamilies[2];
inline constexpr std::array kKinds{&kRgb, &kIntensity, &kYcbcr};

// Column-major planes of that kind: RGB and YCbCr in three buffers, intensity in one.
InputDescription describe(const Kind& kind, std::uint32_t dataType, Size size);

// The planes of one frame. They have exactly the required size, so that the address sanitizer finds
// reads beyond them.
struct HostPlanes {
  std::array<Bytes, 3> bytes;

  // Null for a plane without samples.
  const void* operator[](std::size_t plane) const {
    return bytes.at(plane).empty() ? nullptr : bytes.at(plane).data();
  }
};

// Random planes of a frame of the configured size.
HostPlanes randomPlanes(const Kind& kind, std::uint32_t dataType, Size size);

// Three random planes of width x height samples each, as a frame of another size requires.
HostPlanes randomWholePlanes(std::uint32_t dataType, Size size);

// Three planes of width x height random doubles; among them are 0, 1 and values beyond.
HostPlanes randomDoubles(Size size);

// The planes in one buffer, one after another.
Bytes joined(const HostPlanes& planes);

// The minimum of the type's range, as the bytes of one sample.
Bytes minimumOf(std::uint32_t dataType);

// The plane in the middle of a larger one that is otherwise filled with the type's minimum.
Bytes centred(const Bytes& plane, std::uint32_t dataType, Size source, Size frame);
HostPlanes centred(const HostPlanes& planes, std::uint32_t dataType, Size source, Size frame);

// The red, green and blue planes that the conversion rules give for planes of the frame's size.
Bytes converted(const Kind& kind, std::uint32_t dataType, const HostPlanes& planes, Size frame);

// What a window of the frame's size shows for red, green and blue planes.
Image picture(const Bytes& rgbPlanes, Size frame);

// A frame of one colour, 0x00RRGGBB, as uint8 planes.
HostPlanes plainPlanes(std::uint32_t colour, Size size);
Image plainPicture(std::uint32_t colour, Size size);

}  // namespace framesink::test
