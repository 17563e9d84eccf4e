#include "simd/yuy2_rows.hpp"

#include <array>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/yuy2_rows.cpp"
#include <hwy/foreach_target.h>
// Must follow foreach_target.h.
#include "simd/byte_rows-inl.hpp"
#include "simd/group_columns-inl.hpp"

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

using namespace hwy::HWY_NAMESPACE;

struct PackGroups {
  using Bytes = ScalableTag<std::uint8_t>;
  static constexpr std::array<std::size_t, 4> kInputBytes{1, 1, 1, 1};
  static constexpr std::size_t kOutputBytes = 4;
  static constexpr std::size_t kMostLanes = MaxLanes(Bytes());

  static std::size_t lanes() { return Lanes(Bytes()); }

  void operator()(const Sources<4>& in, const Targets<1>& out) const {
    const Bytes d;
    StoreInterleaved4(LoadU(d, in[0]), LoadU(d, in[1]), LoadU(d, in[2]), LoadU(d, in[3]), d,
                      out[0]);
  }
};

// Reads each pair of luma as one 16-bit word, with Y0 in the low byte.
struct PackPairs {
  using Words = ScalableTag<std::uint16_t>;
  static constexpr std::array<std::size_t, 3> kInputBytes{2, 1, 1};
  static constexpr std::size_t kOutputBytes = 4;
  static constexpr std::size_t kMostLanes = MaxLanes(Words());

  static std::size_t lanes() { return Lanes(Words()); }

  void operator()(const Sources<3>& in, const Targets<1>& out) const {
    const Words d;
    const Rebind<std::uint8_t, Words> bytes;
    const auto luma = LoadU(d, reinterpret_cast<const std::uint16_t*>(in[0]));
    const auto cb = PromoteTo(d, LoadU(bytes, in[1]));
    const auto cr = PromoteTo(d, LoadU(bytes, in[2]));
    StoreInterleaved2(Or(And(luma, Set(d, 0xff)), ShiftLeft<8>(cb)),
                      Or(ShiftRight<8>(luma), ShiftLeft<8>(cr)), d,
                      reinterpret_cast<std::uint16_t*>(out[0]));
  }
};

// Packs one row after another, without vectors.
void packFewColumns(std::span<const Yuy2Runs> columns, std::uint8_t* out, std::ptrdiff_t lineBytes,
                    std::size_t first, std::size_t end) {
  for (std::size_t row = first; row < end; ++row) {
    std::uint8_t* to = out + static_cast<std::ptrdiff_t>(row) * lineBytes;
    for (const Yuy2Runs& runs : columns) {
      *to++ = runs.y0[row];
      *to++ = runs.cb[row];
      *to++ = runs.y1[row];
      *to++ = runs.cr[row];
    }
  }
}

// Packs tiles of four columns. Returns the number of rows packed.
template <class D>
std::size_t packTiles(D bytes, std::span<const Yuy2Runs> columns, std::uint8_t* out,
                      std::ptrdiff_t lineBytes, std::size_t count) {
  std::size_t row = 0;
  if constexpr (kHasTiles) {
    for (; row + kTileRows <= count; row += kTileRows) {
      GroupColumn<D> tile[kTileColumns];
      for (std::size_t i = 0; i < kTileColumns; ++i) {
        tile[i][0] = LoadU(bytes, columns[i].y0 + row);
        tile[i][1] = LoadU(bytes, columns[i].cb + row);
        tile[i][2] = LoadU(bytes, columns[i].y1 + row);
        tile[i][3] = LoadU(bytes, columns[i].cr + row);
      }
      storeTile(bytes, tile, out + static_cast<std::ptrdiff_t>(row) * lineBytes, lineBytes);
    }
  }
  return row;
}

}  // namespace

void packColumnsOfTarget(std::span<const Yuy2Runs> columns, std::uint8_t* out,
                         std::ptrdiff_t lineBytes, std::size_t count) {
  const std::size_t rows =
      columns.size() == kTileColumns ? packTiles(TileRows(), columns, out, lineBytes, count) : 0;
  packFewColumns(columns, out, lineBytes, rows, count);
}

void packGroupsOfTarget(const Yuy2Runs& runs, std::uint8_t* out, std::size_t count) {
  convertRow(PackGroups(), Sources<4>{runs.y0, runs.cb, runs.y1, runs.cr}, Targets<1>{out}, count);
}

void packPairsOfTarget(const std::uint8_t* luma, const std::uint8_t* cb, const std::uint8_t* cr,
                       std::uint8_t* out, std::size_t count) {
  convertRow(PackPairs(), Sources<3>{luma, cb, cr}, Targets<1>{out}, count);
}

}  // namespace HWY_NAMESPACE
}  // namespace framesink
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framesink {

HWY_EXPORT(packColumnsOfTarget);
HWY_EXPORT(packGroupsOfTarget);
HWY_EXPORT(packPairsOfTarget);

void packGroups(const Yuy2Runs& runs, std::uint8_t* out, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(packGroupsOfTarget)(runs, out, count);
}

void packColumns(std::span<const Yuy2Runs> columns, std::uint8_t* out, std::ptrdiff_t lineBytes,
                 std::size_t count) {
  HWY_DYNAMIC_DISPATCH(packColumnsOfTarget)(columns, out, lineBytes, count);
}

void packPairs(const std::uint8_t* luma, const std::uint8_t* cb, const std::uint8_t* cr,
               std::uint8_t* out, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(packPairsOfTarget)(luma, cb, cr, out, count);
}

}  // namespace framesink
#endif
