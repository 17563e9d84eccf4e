// Stores columns of 4-byte groups as rows; each byte of a group comes from a separate run. Serves
// texture pixels and YUY2 alike. Re-included for each instruction set.
#if defined(FRAMESINK_GROUP_COLUMNS_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef FRAMESINK_GROUP_COLUMNS_INL
#undef FRAMESINK_GROUP_COLUMNS_INL
#else
#define FRAMESINK_GROUP_COLUMNS_INL
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

using namespace hwy::HWY_NAMESPACE;

// Columns of a tile, which are stored side by side.
constexpr std::size_t kTileColumns = 4;

// Rows of a tile: as many bytes of a column as a 16-byte vector holds. Wider vectors were tried and
// gain nothing, because a tile costs its cache lines, not its operations.
using TileRows = CappedTag<std::uint8_t, 16>;
constexpr std::size_t kTileRows = 16;

// True if this instruction set has the vectors that tiles need.
constexpr bool kHasTiles = MaxLanes(TileRows()) == kTileRows;

// The bytes of one column's groups, in the order in which they are stored. An array, not a struct
// that holds one, because GCC compiles such a struct's default constructor for the wrong
// instruction set on ARM.
template <class D>
using GroupColumn = Vec<D>[4];

// Stores four groups of each of four columns as four rows.
template <class D>
void storeFourRows(D quads, const Vec<D> (&columns)[kTileColumns], std::uint8_t* out,
                   std::ptrdiff_t rowBytes) {
  const Repartition<std::uint8_t, D> bytes;
  const Repartition<std::uint64_t, D> pairs;
  const auto storeTwo = [&](Vec<D> left, Vec<D> right, std::uint8_t* to) HWY_ATTR {
    const auto a = BitCast(pairs, left);
    const auto b = BitCast(pairs, right);
    StoreU(BitCast(bytes, InterleaveLower(pairs, a, b)), bytes, to);
    StoreU(BitCast(bytes, InterleaveUpper(pairs, a, b)), bytes, to + rowBytes);
  };
  storeTwo(InterleaveLower(quads, columns[0], columns[1]),
           InterleaveLower(quads, columns[2], columns[3]), out);
  storeTwo(InterleaveUpper(quads, columns[0], columns[1]),
           InterleaveUpper(quads, columns[2], columns[3]), out + 2 * rowBytes);
}

// Stores the first eight rows of a tile, or the last eight if kUpper is set.
template <bool kUpper, class D>
void storeEightRows(D bytes, const GroupColumn<D> (&columns)[kTileColumns], std::uint8_t* out,
                    std::ptrdiff_t rowBytes) {
  const Repartition<std::uint16_t, D> words;
  const Repartition<std::uint32_t, D> quads;
  const auto both = [&](Vec<D> a, Vec<D> b) HWY_ATTR {
    return BitCast(words, kUpper ? InterleaveUpper(bytes, a, b) : InterleaveLower(bytes, a, b));
  };
  Vec<decltype(quads)> first[kTileColumns];
  Vec<decltype(quads)> last[kTileColumns];
  for (std::size_t i = 0; i < kTileColumns; ++i) {
    const auto front = both(columns[i][0], columns[i][1]);
    const auto back = both(columns[i][2], columns[i][3]);
    first[i] = BitCast(quads, InterleaveLower(words, front, back));
    last[i] = BitCast(quads, InterleaveUpper(words, front, back));
  }
  storeFourRows(quads, first, out, rowBytes);
  storeFourRows(quads, last, out + 4 * rowBytes, rowBytes);
}

// Stores four columns of groups as kTileRows rows of 16 bytes that are rowBytes apart.
template <class D>
void storeTile(D bytes, const GroupColumn<D> (&columns)[kTileColumns], std::uint8_t* out,
               std::ptrdiff_t rowBytes) {
  storeEightRows<false>(bytes, columns, out, rowBytes);
  storeEightRows<true>(bytes, columns, out + 8 * rowBytes, rowBytes);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace framesink
HWY_AFTER_NAMESPACE();

#endif
