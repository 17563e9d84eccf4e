#include "simd/texture_packing.hpp"

#include <algorithm>
#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/texture_packing.cpp"
#include <hwy/foreach_target.h>
// Must follow foreach_target.h.
#include <hwy/cache_control.h>

#include "simd/group_columns-inl.hpp"

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

// Columns of a block: their pixels of one row fill a cache line.
constexpr std::size_t kBlockColumns = 16;

// Rows of a block: few enough for the cache lines of this block and of the next columns to stay in
// a second-level cache.
constexpr std::size_t kBlockRows = 256;

// How many columns ahead bytes and pixels are prefetched. They are too far apart in memory for a
// processor to prefetch them by itself; measured, this halves the time of packing.
constexpr std::size_t kColumnsAhead = 2 * kBlockColumns;

class Packer {
 public:
  Packer(const std::uint8_t* frame, std::uint8_t* pixels, std::size_t width, std::size_t height)
      : width_(width),
        height_(height),
        red_(frame),
        green_(red_ + width_ * height_),
        blue_(green_ + width_ * height_),
        pixels_(pixels) {}

  template <class D>
  void pack(D bytes) const {
    if constexpr (kHasTiles) {
      if (width_ >= kTileColumns && height_ >= kTileRows) return packBlocks(bytes);
    }
    packOneByOne();
  }

 private:
  template <class D>
  void packBlocks(D bytes) const {
    for (std::size_t row = 0; row < height_; row += kBlockRows) {
      for (std::size_t column = 0; column < width_; column += kBlockColumns) {
        packTiles(bytes, column, row);
      }
    }
  }

  // Packs the tiles of one block. At the frame's edges, the last tiles overlap the ones before
  // them.
  template <class D>
  void packTiles(D bytes, std::size_t firstColumn, std::size_t firstRow) const {
    const std::size_t columnEnd = std::min(firstColumn + kBlockColumns, width_);
    const std::size_t rowEnd = std::min(firstRow + kBlockRows, height_);
    for (std::size_t row = firstRow; row < rowEnd; row += kTileRows) {
      for (std::size_t column = firstColumn; column < columnEnd; column += kTileColumns) {
        packTile(bytes, std::min(column, width_ - kTileColumns),
                 std::min(row, height_ - kTileRows));
      }
    }
  }

  template <class D>
  void packTile(D bytes, std::size_t column, std::size_t row) const {
    askAhead(column, row);
    GroupColumn<D> columns[kTileColumns];
    for (std::size_t i = 0; i < kTileColumns; ++i) {
      const std::size_t e = (column + i) * height_ + row;
      columns[i][0] = LoadU(bytes, blue_ + e);
      columns[i][1] = LoadU(bytes, green_ + e);
      columns[i][2] = LoadU(bytes, red_ + e);
      columns[i][3] = Set(bytes, 0xFF);
    }
    storeTile(bytes, columns, pixels_ + 4 * (row * width_ + column),
              static_cast<std::ptrdiff_t>(4 * width_));
  }

  // Prefetches for the tile kColumnsAhead columns later: its bytes, and the pixels of a quarter of
  // its rows. The other three tiles of the block in these rows prefetch the other quarters. Inline,
  // because GCC drops calls that seem to have no effect.
  HWY_INLINE void askAhead(std::size_t column, std::size_t row) const {
    for (std::size_t i = 0; i < kTileColumns; ++i) {
      const std::size_t e = (column + kColumnsAhead + i) * height_ + row;
      hwy::Prefetch(red_ + e);
      hwy::Prefetch(green_ + e);
      hwy::Prefetch(blue_ + e);
    }
    constexpr std::size_t kQuarter = kTileRows / 4;
    const std::size_t first = row + column % kBlockColumns / kTileColumns * kQuarter;
    const std::size_t block = column / kBlockColumns * kBlockColumns + kColumnsAhead;
    for (std::size_t i = 0; i < kQuarter; ++i) {
      hwy::Prefetch(pixels_ + 4 * ((first + i) * width_ + block + kBlockColumns / 2));
    }
  }

  void packOneByOne() const {
    for (std::size_t column = 0; column < width_; ++column) {
      std::size_t e = column * height_;
      std::uint8_t* pixel = pixels_ + 4 * column;
      for (std::size_t row = 0; row < height_; ++row, ++e, pixel += 4 * width_) {
        pixel[0] = blue_[e];
        pixel[1] = green_[e];
        pixel[2] = red_[e];
        pixel[3] = 0xFF;
      }
    }
  }

  const std::size_t width_;
  const std::size_t height_;
  const std::uint8_t* const red_;
  const std::uint8_t* const green_;
  const std::uint8_t* const blue_;
  std::uint8_t* const pixels_;
};

}  // namespace

void copyPlanesOfTarget(const std::uint8_t* frame, std::uint8_t* pixels, std::size_t width,
                        std::size_t height) {
  Packer(frame, pixels, width, height).pack(TileRows());
}

}  // namespace HWY_NAMESPACE
}  // namespace framesink
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framesink {

HWY_EXPORT(copyPlanesOfTarget);

void copyPlanesToTexture(const std::uint8_t* frame, void* pixels, std::size_t width,
                         std::size_t height) {
  HWY_DYNAMIC_DISPATCH(copyPlanesOfTarget)
  (frame, static_cast<std::uint8_t*>(pixels), width, height);
}

}  // namespace framesink
#endif
