#include "simd/colour_rows.hpp"

#include "simd/colour_constants.hpp"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/colour_rows.cpp"
#include <hwy/foreach_target.h>
// Must follow foreach_target.h.
#include "simd/byte_rows-inl.hpp"

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

using namespace hwy::HWY_NAMESPACE;

// ---- YCbCr to RGB -------------------------------------------------------------------------------

using Words = ScalableTag<std::int16_t>;

// An integer as 256 * high + low, for example a factor in 2.14 fixed point.
struct Digits {
  Digits(std::int32_t number)
      : high(static_cast<std::int16_t>((number + 128) >> 8)),
        low(static_cast<std::int16_t>(number - 256 * high)) {}

  std::int16_t high;
  std::int16_t low;
};

// The colour matrix in 16 bits, for two columns of pixels that share their chroma:
//   (256 * high + low) >> 14  =  (high + (low >> 8)) >> 6
// Each vector of bytes is split into its even and its odd bytes. Subtracting 128 from luma, and the
// offset from chroma, keeps the low sums within 16 bits. The high sums are kBlack + 64 times the
// colour, so that they saturate at white.
class YcbcrPairToRgb {
 public:
  static constexpr std::array<std::size_t, 4> kInputBytes{1, 1, 1, 1};
  static constexpr std::size_t kOutputBytes = 1;
  static constexpr std::size_t kMostLanes = 2 * MaxLanes(Words());

  static std::size_t lanes() { return 2 * Lanes(Words()); }

  void operator()(const Sources<4>& in, const Targets<6>& out) const {
    const Halves cb = load(in[2], cbOffset_);
    const Halves cr = load(in[3], crOffset_);
    const Chroma even = chroma(cb.even, cr.even);
    const Chroma odd = chroma(cb.odd, cr.odd);
    for (const std::size_t column : {0, 1}) {
      const Halves y = load(in[column], 128);
      const Sum evenGrey = plus(times(luma_, y.even), grey_);
      const Sum oddGrey = plus(times(luma_, y.odd), grey_);
      store(colour(evenGrey, even.red), colour(oddGrey, odd.red), out[3 * column]);
      store(colour(evenGrey, even.green), colour(oddGrey, odd.green), out[3 * column + 1]);
      store(colour(evenGrey, even.blue), colour(oddGrey, odd.blue), out[3 * column + 2]);
    }
  }

 private:
  using V = Vec<Words>;
  struct Halves {
    V even;
    V odd;
  };
  struct Sum {
    V high;
    V low;
  };
  struct Chroma {
    Sum red;
    Sum green;
    Sum blue;
  };

  static constexpr std::int16_t kBlack = 16384;

  static V set(std::int16_t value) { return Set(Words(), value); }

  static Halves load(const std::uint8_t* bytes, std::int16_t centre) {
    const V both = LoadU(Words(), reinterpret_cast<const std::int16_t*>(bytes));
    const auto odd = ShiftRight<8>(BitCast(RebindToUnsigned<Words>(), both));
    return {Sub(And(both, set(0xFF)), set(centre)), Sub(BitCast(Words(), odd), set(centre))};
  }
  static Sum times(const Digits& factor, V values) {
    return {Mul(set(factor.high), values), Mul(set(factor.low), values)};
  }
  static Sum plus(const Sum& a, const Digits& b) {
    return {Add(a.high, set(b.high)), Add(a.low, set(b.low))};
  }
  Chroma chroma(V cb, V cr) const {
    const V black = set(kBlack / 2);
    const Sum red = times(redFromCr_, cr);
    const Sum green = times(greenFromCb_, cb);
    const Sum fromCr = times(greenFromCr_, cr);
    const Sum blue = times(blueFromCb_, cb);
    return {{Add(red.high, black), red.low},
            {Add(green.high, Add(fromCr.high, black)), Add(green.low, fromCr.low)},
            {Add(blue.high, black), blue.low}};
  }
  // Returns kBlack to kBlack + 64 * 256 - 1.
  static V colour(const Sum& grey, const Sum& chroma) {
    const V carry = ShiftRight<8>(Add(grey.low, chroma.low));
    return Max(SaturatedAdd(grey.high, Add(chroma.high, carry)), set(kBlack));
  }
  static void store(V even, V odd, std::uint8_t* out) {
    const V evenBytes = And(ShiftRight<6>(even), set(0xFF));
    const V bytes = OrAnd(evenBytes, ShiftLeft<2>(odd), set(static_cast<std::int16_t>(0xFF00)));
    StoreU(bytes, Words(), reinterpret_cast<std::int16_t*>(out));
  }

  const Digits luma_ = ycbcrToRgbConstants.luma;
  const Digits redFromCr_ = ycbcrToRgbConstants.redFromCr;
  const Digits greenFromCb_ = ycbcrToRgbConstants.greenFromCb;
  const Digits greenFromCr_ = ycbcrToRgbConstants.greenFromCr;
  const Digits blueFromCb_ = ycbcrToRgbConstants.blueFromCb;
  // One half for rounding, the rest of the luma offset because load() subtracts 128, and half of
  // kBlack because chroma() adds the other half.
  const Digits grey_ =
      8192 + ycbcrToRgbConstants.luma * (128 - ycbcrToRgbConstants.lumaOffset) + kBlack / 2 * 256;
  const std::int16_t cbOffset_ = static_cast<std::int16_t>(ycbcrToRgbConstants.cbOffset);
  const std::int16_t crOffset_ = static_cast<std::int16_t>(ycbcrToRgbConstants.crOffset);
};

// ---- RGB to YCbCr -------------------------------------------------------------------------------

// All sums, offsets included, end between 0 and 65535. So 16 bits suffice although they wrap on the
// way, and the shift leaves exactly the byte.
class RgbToYcbcr {
 public:
  using Sums = ScalableTag<std::uint16_t>;
  using Bytes = Rebind<std::uint8_t, Sums>;
  using Colour = std::array<Vec<Sums>, 3>;

  static Colour load(const std::uint8_t* red, const std::uint8_t* green, const std::uint8_t* blue) {
    return {load(red), load(green), load(blue)};
  }
  static Vec<Sums> load(const std::uint8_t* bytes) {
    return PromoteTo(Sums(), LoadU(Bytes(), bytes));
  }
  static void store(Vec<Sums> values, std::uint8_t* out) {
    StoreU(DemoteTo(Bytes(), BitCast(ScalableTag<std::int16_t>(), values)), Bytes(), out);
  }

  Vec<Sums> luma(const Colour& rgb) const { return component(rgb, lumaFactors_, k_.lumaOffset); }
  Vec<Sums> cb(const Colour& rgb) const { return component(rgb, cbFactors_, k_.cbOffset); }
  Vec<Sums> cr(const Colour& rgb) const { return component(rgb, crFactors_, k_.crOffset); }
  Vec<Sums> lumaOfGrey(Vec<Sums> intensity) const {
    const std::int32_t gain = lumaFactors_[0] + lumaFactors_[1] + lumaFactors_[2];
    return shifted(times(gain, intensity), k_.lumaOffset);
  }

 private:
  using Factors = std::array<std::int32_t, 3>;

  static Vec<Sums> times(std::int32_t factor, Vec<Sums> values) {
    return Mul(Set(Sums(), static_cast<std::uint16_t>(factor)), values);
  }
  // ((sum + 128) >> 8) + offset
  static Vec<Sums> shifted(Vec<Sums> sum, std::int32_t offset) {
    return ShiftRight<8>(Add(sum, Set(Sums(), static_cast<std::uint16_t>(128 + 256 * offset))));
  }
  static Vec<Sums> component(const Colour& rgb, const Factors& factors, std::int32_t offset) {
    return shifted(
        Add(times(factors[0], rgb[0]), Add(times(factors[1], rgb[1]), times(factors[2], rgb[2]))),
        offset);
  }

  const RgbToYcbcrConstants k_ = rgbToYcbcrConstants;
  const Factors lumaFactors_{k_.lumaFromRed, k_.lumaFromGreen, k_.lumaFromBlue};
  const Factors cbFactors_{k_.cbFromRed, k_.cbFromGreen, k_.cbFromBlue};
  const Factors crFactors_{k_.crFromRed, k_.crFromGreen, k_.crFromBlue};
};

// The shared part of the row conversions that use RgbToYcbcr.
struct RowOfYcbcr {
  static constexpr std::size_t kOutputBytes = 1;
  static constexpr std::size_t kMostLanes = MaxLanes(RgbToYcbcr::Bytes());

  static std::size_t lanes() { return Lanes(RgbToYcbcr::Bytes()); }

  const RgbToYcbcr ycbcr{};
};

struct RgbPairToYcbcr : RowOfYcbcr {
  static constexpr std::array<std::size_t, 6> kInputBytes{1, 1, 1, 1, 1, 1};

  void operator()(const Sources<6>& rgb, const Targets<4>& out) const {
    const auto first = RgbToYcbcr::load(rgb[0], rgb[1], rgb[2]);
    RgbToYcbcr::store(ycbcr.luma(first), out[0]);
    RgbToYcbcr::store(ycbcr.cb(first), out[1]);
    RgbToYcbcr::store(ycbcr.luma(RgbToYcbcr::load(rgb[3], rgb[4], rgb[5])), out[2]);
    RgbToYcbcr::store(ycbcr.cr(first), out[3]);
  }
};

struct IntensityToLuma : RowOfYcbcr {
  static constexpr std::array<std::size_t, 1> kInputBytes{1};

  void operator()(const Sources<1>& intensity, const Targets<1>& luma) const {
    RgbToYcbcr::store(ycbcr.lumaOfGrey(RgbToYcbcr::load(intensity[0])), luma[0]);
  }
};

// Two neighbours in one 16-bit lane. The luma of the second one is deliberately mapped twice.
struct IntensityPairToLuma {
  static constexpr std::array<std::size_t, 1> kInputBytes{2};
  static constexpr std::size_t kOutputBytes = 2;
  static constexpr std::size_t kMostLanes = MaxLanes(RgbToYcbcr::Sums());

  static std::size_t lanes() { return Lanes(RgbToYcbcr::Sums()); }

  void operator()(const Sources<1>& intensity, const Targets<1>& luma) const {
    const RgbToYcbcr::Sums d;
    const auto both = LoadU(d, reinterpret_cast<const std::uint16_t*>(intensity[0]));
    const auto first = ycbcr.lumaOfGrey(And(both, Set(d, 0xFF)));
    const auto second = ycbcr.lumaOfGrey(ycbcr.lumaOfGrey(ShiftRight<8>(both)));
    StoreU(Or(first, ShiftLeft<8>(second)), d, reinterpret_cast<std::uint16_t*>(luma[0]));
  }

  const RgbToYcbcr ycbcr{};
};

}  // namespace

void ycbcrPairToRgbOfTarget(const YcbcrPair& ycbcr, const RgbPair& rgb, std::size_t count) {
  convertRow(YcbcrPairToRgb(), ycbcr, rgb, count);
}

void rgbPairToYcbcrOfTarget(const RgbPairSources& rgb, const Yuy2Targets& out, std::size_t count) {
  convertRow(RgbPairToYcbcr(), rgb, out, count);
}

void intensityRowToLumaOfTarget(const std::uint8_t* intensity, std::uint8_t* luma,
                                std::size_t count) {
  convertRow(IntensityToLuma(), Sources<1>{intensity}, Targets<1>{luma}, count);
}

void intensityPairsToLumaOfTarget(const std::uint8_t* intensity, std::uint8_t* luma,
                                  std::size_t pairs) {
  convertRow(IntensityPairToLuma(), Sources<1>{intensity}, Targets<1>{luma}, pairs);
}

}  // namespace HWY_NAMESPACE
}  // namespace framesink
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framesink {

HWY_EXPORT(ycbcrPairToRgbOfTarget);
HWY_EXPORT(rgbPairToYcbcrOfTarget);
HWY_EXPORT(intensityRowToLumaOfTarget);
HWY_EXPORT(intensityPairsToLumaOfTarget);

void ycbcrPairToRgb(const YcbcrPair& ycbcr, const RgbPair& rgb, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(ycbcrPairToRgbOfTarget)(ycbcr, rgb, count);
}

void rgbPairToYcbcr(const RgbPairSources& rgb, const Yuy2Targets& out, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(rgbPairToYcbcrOfTarget)(rgb, out, count);
}

void intensityRowToLuma(const std::uint8_t* intensity, std::uint8_t* luma, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(intensityRowToLumaOfTarget)(intensity, luma, count);
}

void intensityPairsToLuma(const std::uint8_t* intensity, std::uint8_t* luma, std::size_t pairs) {
  HWY_DYNAMIC_DISPATCH(intensityPairsToLumaOfTarget)(intensity, luma, pairs);
}

}  // namespace framesink
#endif
