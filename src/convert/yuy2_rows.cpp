#include "convert/yuy2_rows.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/yuy2_rows.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.
#include "convert/byte_rows-inl.hpp"

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

using namespace hwy::HWY_NAMESPACE;

struct GroupPacking {
  using Lanes = ScalableTag<std::uint8_t>;
  static constexpr std::size_t kOutputBytes = 4;

  static std::size_t lanes() { return hwy::HWY_NAMESPACE::Lanes(Lanes()); }
};

struct PackGroups : GroupPacking {
  static constexpr std::array<std::size_t, 4> kInputBytes{1, 1, 1, 1};

  void operator()(const Sources<4>& in, const Targets<1>& out) const {
    const Lanes d;
    StoreInterleaved4(LoadU(d, in[0]), LoadU(d, in[1]), LoadU(d, in[2]), LoadU(d, in[3]), d,
                      out[0]);
  }
};

struct PackPairs : GroupPacking {
  static constexpr std::array<std::size_t, 3> kInputBytes{2, 1, 1};

  void operator()(const Sources<3>& in, const Targets<1>& out) const {
    const Lanes d;
    Vec<Lanes> y0, y1;
    LoadInterleaved2(d, in[0], y0, y1);
    StoreInterleaved4(y0, LoadU(d, in[1]), y1, LoadU(d, in[2]), d, out[0]);
  }
};

}  // namespace

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

HWY_EXPORT(packGroupsOfTarget);
HWY_EXPORT(packPairsOfTarget);

void packGroups(const Yuy2Runs& runs, std::uint8_t* out, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(packGroupsOfTarget)(runs, out, count);
}

void packGroupsDown(const Yuy2Runs& runs, std::uint8_t* out, std::ptrdiff_t lineBytes,
                    std::size_t count) {
  constexpr std::size_t kAtOnce = 64;
  std::array<std::uint8_t, 4 * kAtOnce> groups;
  for (std::size_t first = 0; first < count; first += kAtOnce) {
    const std::size_t some = std::min(kAtOnce, count - first);
    packGroups({runs.y0 + first, runs.cb + first, runs.y1 + first, runs.cr + first}, groups.data(),
               some);
    for (std::size_t i = 0; i < some; ++i) {
      std::memcpy(out + static_cast<std::ptrdiff_t>(first + i) * lineBytes, &groups[4 * i], 4);
    }
  }
}

void packPairs(const std::uint8_t* luma, const std::uint8_t* cb, const std::uint8_t* cr,
               std::uint8_t* out, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(packPairsOfTarget)(luma, cb, cr, out, count);
}

}  // namespace framesink
#endif
