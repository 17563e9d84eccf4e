#include "display/texture_packing.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/texture_packing.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

using namespace hwy::HWY_NAMESPACE;

using Pixels = ScalableTag<std::uint32_t>;
using Bytes = Rebind<std::uint8_t, Pixels>;

constexpr std::size_t kTileColumns = 4;

// Rows that all columns are packed for before the next ones: what a line of the cache holds of a
// column.
constexpr std::size_t kBlockRows = 64;

class Packer {
 public:
  Packer(const std::uint8_t* frame, std::uint32_t* pixels, Size size)
      : width_(size.width),
        height_(size.height),
        red_(frame),
        green_(red_ + width_ * height_),
        blue_(green_ + width_ * height_),
        pixels_(pixels) {}

  // Frames with room for a tile. The last tiles of rows and columns overlap those before.
  void packTiles() const {
    const std::size_t tileRows = Lanes(Pixels());
    for (std::size_t block = 0; block < height_; block += kBlockRows) {
      const std::size_t end = std::min(block + kBlockRows, height_);
      for (std::size_t column = 0; column < width_; column += kTileColumns) {
        const std::size_t left = std::min(column, width_ - kTileColumns);
        for (std::size_t row = block; row < end; row += tileRows) {
          packTile(left, std::min(row, height_ - tileRows));
        }
      }
    }
  }

  void packOneByOne() const {
    for (std::size_t row = 0; row < height_; ++row) {
      for (std::size_t column = 0; column < width_; ++column) {
        const std::size_t e = column * height_ + row;
        pixels_[row * width_ + column] =
            0xFF000000U | std::uint32_t{red_[e]} << 16 | std::uint32_t{green_[e]} << 8 | blue_[e];
      }
    }
  }

 private:
  // As many pixels of one column as a vector holds.
  Vec<Pixels> columnPixels(std::size_t column, std::size_t row) const {
    const Pixels d;
    const std::size_t e = column * height_ + row;
    const auto red = ShiftLeft<16>(PromoteTo(d, LoadU(Bytes(), red_ + e)));
    const auto green = ShiftLeft<8>(PromoteTo(d, LoadU(Bytes(), green_ + e)));
    const auto blue = PromoteTo(d, LoadU(Bytes(), blue_ + e));
    return Or(Or(Set(d, 0xFF000000U), red), Or(green, blue));
  }

  // Four columns of that many rows, turned into rows of four.
  void packTile(std::size_t column, std::size_t row) const {
    const Pixels d;
    HWY_ALIGN std::uint32_t tile[kTileColumns * MaxLanes(d)];
    StoreInterleaved4(columnPixels(column, row), columnPixels(column + 1, row),
                      columnPixels(column + 2, row), columnPixels(column + 3, row), d, tile);
    std::uint32_t* const out = pixels_ + row * width_ + column;
    for (std::size_t i = 0; i < Lanes(d); ++i) {
      std::memcpy(out + i * width_, tile + i * kTileColumns, kTileColumns * sizeof *out);
    }
  }

  const std::size_t width_;
  const std::size_t height_;
  const std::uint8_t* const red_;
  const std::uint8_t* const green_;
  const std::uint8_t* const blue_;
  std::uint32_t* const pixels_;
};

}  // namespace

void copyPlanesOfTarget(const std::uint8_t* frame, std::uint32_t* pixels, Size size) {
  const Packer packer(frame, pixels, size);
  if (size.width >= kTileColumns && size.height >= Lanes(Pixels())) {
    packer.packTiles();
  } else {
    packer.packOneByOne();
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace framesink
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framesink {

HWY_EXPORT(copyPlanesOfTarget);

void copyPlanesToTexture(const std::uint8_t* frame, void* pixels, Size size) {
  HWY_DYNAMIC_DISPATCH(copyPlanesOfTarget)(frame, static_cast<std::uint32_t*>(pixels), size);
}

}  // namespace framesink
#endif
