#include "column_major_frame.hpp"

#include <cstring>

namespace framesink::bench {
namespace {

// An integer hash with good avalanche.
std::uint32_t mixed(std::uint32_t value) {
  value = (value ^ value >> 16) * 0x7FEB352DU;
  value = (value ^ value >> 15) * 0x846CA68BU;
  return value ^ value >> 16;
}

// A double in the middle of the interval that truncating and rounding viewers both convert to this
// byte. Bytes 0 and 255 are exactly 0 and 1.
double doubleOf(std::uint8_t byte) {
  return byte == 0 ? 0.0 : byte == 255 ? 1.0 : (byte + 0.25) / 255;
}

}  // namespace

ColumnMajorFrame::ColumnMajorFrame(FrameSize size, FramesinkDataType dataType, std::uint32_t number)
    : size_(size), dataType_(dataType), number_(number) {
  if (dataType == FRAMESINK_DOUBLE) {
    fill<double>(doubleOf);
  } else {
    fill<std::uint8_t>([](std::uint8_t byte) { return byte; });
  }
}

template <class Sample, class Convert>
void ColumnMajorFrame::fill(const Convert& sampleOf) {
  samples_.resize(3 * size_.pixels() * sizeof(Sample));
  std::byte* out = samples_.data();
  for (int shift = 16; shift >= 0; shift -= 8) {
    for (int x = 0; x < size_.width; ++x) {
      for (int y = 0; y < size_.height; ++y, out += sizeof(Sample)) {
        const Sample sample = sampleOf(static_cast<std::uint8_t>(colourAt(x, y) >> shift));
        std::memcpy(out, &sample, sizeof sample);
      }
    }
  }
}

const void* ColumnMajorFrame::plane(std::size_t index) const {
  return samples_.data() + samples_.size() / 3 * index;
}

std::uint32_t ColumnMajorFrame::colourAt(int x, int y) const {
  const auto column = static_cast<std::uint32_t>(x / kBlock);
  const auto row = static_cast<std::uint32_t>(y / kBlock);
  if (row == 0 && column < 2) return column == 0 ? 0 : 0x00FFFFFF;
  return mixed(number_ << 20 | row << 10 | column) & 0x00FFFFFF;
}

}  // namespace framesink::bench
