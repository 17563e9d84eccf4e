#include "convert/colour_rows.hpp"

#include "convert/colour_constants.hpp"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/colour_rows.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.
#include "convert/byte_rows-inl.hpp"

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

using namespace hwy::HWY_NAMESPACE;

// ---- YCbCr to RGB -------------------------------------------------------------------------------

// The 2.14 fixed point of the colour matrix in single precision: its products and sums are whole
// numbers below 2^24, which single precision holds exactly.
class YcbcrToRgb {
 public:
  using Lanes = Rebind<std::uint8_t, ScalableTag<float>>;
  static constexpr std::array<std::size_t, 3> kInputBytes{1, 1, 1};
  static constexpr std::size_t kOutputBytes = 1;

  static std::size_t lanes() { return hwy::HWY_NAMESPACE::Lanes(Lanes()); }

  void operator()(const Sources<3>& ycbcr, const Targets<3>& rgb) const {
    const auto cb = load(ycbcr[1]);
    const auto cr = load(ycbcr[2]);
    const auto base = times(k_.luma, load(ycbcr[0]));
    store(Add(base, times(k_.redFromCr, cr)), 0, k_.redFromCr, rgb[0]);
    store(Add(base, Add(times(k_.greenFromCb, cb), times(k_.greenFromCr, cr))), k_.greenFromCb,
          k_.greenFromCr, rgb[1]);
    store(Add(base, times(k_.blueFromCb, cb)), k_.blueFromCb, 0, rgb[2]);
  }

 private:
  using Singles = ScalableTag<float>;
  using Ints = RebindToSigned<Singles>;

  static Vec<Singles> load(const std::uint8_t* bytes) {
    return ConvertTo(Singles(), PromoteTo(Ints(), LoadU(Lanes(), bytes)));
  }

  static Vec<Singles> times(std::int32_t factor, Vec<Singles> values) {
    return Mul(Set(Singles(), static_cast<float>(factor)), values);
  }

  // Takes off what the offsets have brought in, adds one half and shifts. Below 0 becomes 0, so
  // truncation is rounding toward minus infinity.
  void store(Vec<Singles> sum, std::int32_t fromCb, std::int32_t fromCr, std::uint8_t* out) const {
    const Singles d;
    const std::int32_t offset =
        8192 - k_.luma * k_.lumaOffset - fromCb * k_.cbOffset - fromCr * k_.crOffset;
    const auto shifted = Mul(Add(sum, Set(d, static_cast<float>(offset))), Set(d, 1.0F / 16384));
    const auto clamped = Min(Max(shifted, Zero(d)), Set(d, 255.0F));
    StoreU(DemoteTo(Lanes(), ConvertTo(Ints(), clamped)), Lanes(), out);
  }

  const YcbcrToRgbConstants& k_ = ycbcrToRgbConstants;
};

// ---- RGB to YCbCr -------------------------------------------------------------------------------

// All sums, offsets included, lie between 0 and 65535: 16 bits that wrap on the way suffice, and
// the result of the shift is the byte.
struct WordArithmetic {
  using Words = ScalableTag<std::uint16_t>;
  using Lanes = Rebind<std::uint8_t, Words>;

  static std::size_t lanes() { return hwy::HWY_NAMESPACE::Lanes(Lanes()); }

  static Vec<Words> load(const std::uint8_t* bytes) {
    return PromoteTo(Words(), LoadU(Lanes(), bytes));
  }
  static Vec<Words> times(std::int32_t factor, Vec<Words> values) {
    return Mul(Set(Words(), static_cast<std::uint16_t>(factor)), values);
  }
  // (sum + 128 >> 8) + offset
  static void store(Vec<Words> sum, std::int32_t offset, std::uint8_t* out) {
    const auto moved = Add(sum, Set(Words(), static_cast<std::uint16_t>(128 + 256 * offset)));
    const ScalableTag<std::int16_t> narrow;
    StoreU(DemoteTo(Lanes(), BitCast(narrow, ShiftRight<8>(moved))), Lanes(), out);
  }
};

struct RgbToYcbcr : WordArithmetic {
  static constexpr std::array<std::size_t, 3> kInputBytes{1, 1, 1};
  static constexpr std::size_t kOutputBytes = 1;

  void operator()(const Sources<3>& rgb, const Targets<3>& ycbcr) const {
    const RgbToYcbcrConstants& k = rgbToYcbcrConstants;
    const auto red = load(rgb[0]);
    const auto green = load(rgb[1]);
    const auto blue = load(rgb[2]);
    const auto sum = [&](std::int32_t fromRed, std::int32_t fromGreen,
                         std::int32_t fromBlue) HWY_ATTR {
      return Add(times(fromRed, red), Add(times(fromGreen, green), times(fromBlue, blue)));
    };
    store(sum(k.lumaFromRed, k.lumaFromGreen, k.lumaFromBlue), k.lumaOffset, ycbcr[0]);
    store(sum(k.cbFromRed, k.cbFromGreen, k.cbFromBlue), k.cbOffset, ycbcr[1]);
    store(sum(k.crFromRed, k.crFromGreen, k.crFromBlue), k.crOffset, ycbcr[2]);
  }
};

struct IntensityToLuma : WordArithmetic {
  static constexpr std::array<std::size_t, 1> kInputBytes{1};
  static constexpr std::size_t kOutputBytes = 1;

  void operator()(const Sources<1>& intensity, const Targets<1>& luma) const {
    const RgbToYcbcrConstants& k = rgbToYcbcrConstants;
    const std::int32_t gain = k.lumaFromRed + k.lumaFromGreen + k.lumaFromBlue;
    store(times(gain, load(intensity[0])), k.lumaOffset, luma[0]);
  }
};

}  // namespace

void ycbcrRowToRgbOfTarget(const ByteSources& ycbcr, const ByteTargets& rgb, std::size_t count) {
  convertRow(YcbcrToRgb(), ycbcr, rgb, count);
}

void rgbRowToYcbcrOfTarget(const ByteSources& rgb, const ByteTargets& ycbcr, std::size_t count) {
  convertRow(RgbToYcbcr(), rgb, ycbcr, count);
}

void intensityRowToLumaOfTarget(const std::uint8_t* intensity, std::uint8_t* luma,
                                std::size_t count) {
  convertRow(IntensityToLuma(), Sources<1>{intensity}, Targets<1>{luma}, count);
}

}  // namespace HWY_NAMESPACE
}  // namespace framesink
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framesink {

HWY_EXPORT(ycbcrRowToRgbOfTarget);
HWY_EXPORT(rgbRowToYcbcrOfTarget);
HWY_EXPORT(intensityRowToLumaOfTarget);

void ycbcrRowToRgb(const ByteSources& ycbcr, const ByteTargets& rgb, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(ycbcrRowToRgbOfTarget)(ycbcr, rgb, count);
}

void rgbRowToYcbcr(const ByteSources& rgb, const ByteTargets& ycbcr, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(rgbRowToYcbcrOfTarget)(rgb, ycbcr, count);
}

void intensityRowToLuma(const std::uint8_t* intensity, std::uint8_t* luma, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(intensityRowToLumaOfTarget)(intensity, luma, count);
}

}  // namespace framesink
#endif
