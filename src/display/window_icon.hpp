// The icon of the library's windows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace framesink {

inline constexpr int kIconSize = 16;  // pixels in each direction

// Row by row, 4 bits a channel: red 0xF000, green 0x0F00, blue 0x00F0, alpha 0x000F.
using IconPixels = std::array<std::uint16_t, std::size_t{kIconSize} * kIconSize>;

// A dark screen in a light frame, with a wave running across it.
constexpr IconPixels windowIcon() {
  constexpr std::uint16_t kFrame = 0xCCDF;
  constexpr std::uint16_t kScreen = 0x124F;
  constexpr std::uint16_t kWave = 0xFA3F;
  constexpr std::array<int, kIconSize> kWaveRow = {0, 0,  7,  5,  4,  4, 5, 7,
                                                   8, 10, 11, 11, 10, 8, 0, 0};
  IconPixels pixels{};
  for (int row = 0; row < kIconSize; ++row) {
    for (int column = 0; column < kIconSize; ++column) {
      const bool outside = row < 2 || row > 13;
      const bool edge = row == 2 || row == 13 || column == 0 || column == kIconSize - 1;
      const bool wave =
          kWaveRow[column] != 0 && (row == kWaveRow[column] || row == kWaveRow[column] + 1);
      pixels[row * kIconSize + column] = outside ? 0 : edge ? kFrame : wave ? kWave : kScreen;
    }
  }
  return pixels;
}

}  // namespace framesink
