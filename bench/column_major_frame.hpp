// A picture that can be recognised on a screen, in the planes that hosts pass.
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

// Blocks of kBlock x kBlock pixels in colours that differ from block to block and from one `number`
// to the next. The first block is black and the second white, so that a viewer which stretches a
// picture's range to 0..255 leaves this one as it is.
class ColumnMajorFrame {
 public:
  static constexpr int kBlock = 40;

  // `dataType` is FRAMESINK_UINT8 or FRAMESINK_DOUBLE.
  ColumnMajorFrame(FrameSize size, FramesinkDataType dataType, std::uint32_t number);

  FrameSize size() const { return size_; }
  FramesinkDataType dataType() const { return dataType_; }
  // Red, green and blue lie one after another.
  const void* plane(std::size_t index) const;
  // 0x00RRGGBB, what a screen shows of the pixel.
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
