// A picture in a host's column-major planes that the benchmarks can recognise on the screen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "framesink/framesink.h"

namespace framesink::bench {

struct FrameSize {
  int width = 0;
  int height = 0;

  std::size_t pixels() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  }
};

// Blocks of kBlock x kBlock pixels. The colours differ between blocks and between frames of different
// `number`. The first block is black and the second white, so that a viewer which stretches a
// picture's range to 0..255 leaves this picture unchanged.
class ColumnMajorFrame {
 public:
  static constexpr int kBlock = 40;

  // `dataType` is FRAMESINK_UINT8 or FRAMESINK_DOUBLE.
  ColumnMajorFrame(FrameSize size, FramesinkDataType dataType, std::uint32_t number);

  FrameSize size() const { return size_; }
  FramesinkDataType dataType() const { return dataType_; }
  // Planes 0, 1 and 2 are red, green and blue. They are adjacent in memory.
  const void* plane(std::size_t index) const;
  // The pixel's colour on the screen, as 0x00RRGGBB.
  std::uint32_t colourAt(int x, int y) const;

 private:
  template <class Sample, class Convert>
  void fill(const Convert& sampleOf);

  FrameSize size_;
  FramesinkDataType dataType_;
  std::uint32_t number_;
  std::vector<std::byte> samples_;
};

}  // namespace framesink::bench
