#include "convert/ycbcr_to_yuy2.hpp"

#include <algorithm>
#include <array>

#include "convert/sample_rows.hpp"
#include "convert/yuy2_columns.hpp"
#include "simd/yuy2_rows.hpp"

namespace framesink {
namespace {

// Groups that are packed at a time. Their bytes fit into the first-level cache.
constexpr std::size_t kBlockGroups = 4096;

template <std::uint32_t Id>
using Planes = std::array<const SampleOf<Id>*, 3>;

// The runs of pairs of columns. For an odd width, the second column of the last pair is
// deliberately the one after the last; see ycbcrToYuy2Kernels.
template <std::uint32_t Id>
class YcbcrPairRuns {
 public:
  YcbcrPairRuns(const Planes<Id>& planes, std::ptrdiff_t height)
      : planes_(planes), height_(height) {}

  Yuy2Runs operator()(std::ptrdiff_t pair, std::ptrdiff_t row, std::size_t count) {
    const std::ptrdiff_t luma = row + 2 * pair * height_;
    const std::ptrdiff_t chroma = row + pair * height_;
    return {y0_.scaled(planes_[0] + luma, count), cb_.scaled(planes_[1] + chroma, count),
            y1_.scaled(planes_[0] + luma + height_, count), cr_.scaled(planes_[2] + chroma, count)};
  }

 private:
  Planes<Id> planes_;
  std::ptrdiff_t height_;
  ByteRun<Id, kYuy2BlockRows> y0_, cb_, y1_, cr_;
};

// Packs one run of n samples, regardless of lines. An odd n reads one sample past the run.
template <std::uint32_t Id>
void runToGroups(const Planes<Id>& planes, std::uint8_t* out, std::ptrdiff_t n) {
  ByteRun<Id, 2 * kBlockGroups> y;
  ByteRun<Id, kBlockGroups> cb, cr;
  const std::ptrdiff_t groups = n > 0 ? n / 2 + n % 2 : 0;
  for (std::ptrdiff_t first = 0; first < groups; first += kBlockGroups) {
    const auto count = std::min<std::size_t>(kBlockGroups, groups - first);
    packPairs(y.scaled(planes[0] + 2 * first, 2 * count), cb.scaled(planes[1] + first, count),
              cr.scaled(planes[2] + first, count), out + 4 * first, count);
  }
}

template <std::uint32_t Id>
void ycbcrToYuy2(const void* plane0, const void* plane1, const void* plane2, std::uint8_t* out,
                 std::int32_t width, std::int32_t height, std::int32_t layout) {
  using Sample = SampleOf<Id>;
  const Planes<Id> planes{static_cast<const Sample*>(plane0), static_cast<const Sample*>(plane1),
                          static_cast<const Sample*>(plane2)};
  if (layout != 0) {
    columnsToYuy2(YcbcrPairRuns<Id>(planes, height), out, (std::ptrdiff_t{width} + 1) / 2, height);
  } else {
    runToGroups<Id>(planes, out, planeSamples(width, height));
  }
}

}  // namespace

constinit const KernelTable ycbcrToYuy2Kernels =
    kernelTable([]<std::uint32_t Id>() -> ConversionKernel { return ycbcrToYuy2<Id>; });

}  // namespace framesink
