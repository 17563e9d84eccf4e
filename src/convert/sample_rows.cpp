#include "convert/sample_rows.hpp"

#include <cstring>
#include <limits>
#include <type_traits>

#include "convert/sample_scaling.hpp"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/sample_rows.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

using namespace hwy::HWY_NAMESPACE;

// Samples are scaled in single precision, one vector at a time. Only the natural ranges of the
// 8-bit and 16-bit types are scaled in integers.
using Singles = ScalableTag<float>;

template <class D>
using BytesOf = Rebind<std::uint8_t, D>;

// ---- samples to single precision, one vector ----------------------------------------------------

template <class D>
Vec<D> loadSingles(D singles, const float* samples) {
  return LoadU(singles, samples);
}

// Loads two vectors of doubles; `narrowed` turns each into half a vector of singles.
template <class D, class Narrowed>
Vec<D> fromDoubles(D singles, const double* samples, const Narrowed& narrowed) {
  if constexpr (MaxLanes(singles) == 1) {
    return narrowed(singles, LoadU(ScalableTag<double>(), samples));
  } else {
    const Half<D> half;
    const Rebind<double, decltype(half)> d;
    return Combine(singles, narrowed(half, LoadU(d, samples + Lanes(d))),
                   narrowed(half, LoadU(d, samples)));
  }
}

// Doubles beyond single precision become infinite, or on some machines the largest single.
template <class D>
Vec<D> loadSingles(D singles, const double* samples) {
  return fromDoubles(singles, samples,
                     [](auto d, auto doubles) HWY_ATTR { return DemoteTo(d, doubles); });
}

template <class D>
Vec<D> loadSingles(D singles, const std::int32_t* samples) {
  return ConvertTo(singles, LoadU(RebindToSigned<D>(), samples));
}

template <class D>
Vec<D> loadSingles(D singles, const std::uint32_t* samples) {
  return ConvertTo(singles, LoadU(RebindToUnsigned<D>(), samples));
}

// Samples of 8 and 16 bits.
template <class D, class Sample>
Vec<D> loadSingles(D singles, const Sample* samples) {
  return ConvertTo(singles, PromoteTo(RebindToSigned<D>(), LoadU(Rebind<Sample, D>(), samples)));
}

// loadSingles with the same result on every machine: doubles beyond single precision become NaN,
// which scales to the same byte as infinity.
template <class D, class Sample>
Vec<D> loadSinglesOrNan(D singles, const Sample* samples) {
  return loadSingles(singles, samples);
}
template <class D>
Vec<D> loadSinglesOrNan(D singles, const double* samples) {
  return fromDoubles(singles, samples, [](auto half, auto doubles) HWY_ATTR {
    const DFromV<decltype(doubles)> d;
    const auto isFinite = Lt(Abs(doubles), Set(d, 0x1.ffffffp127));
    return DemoteTo(half, IfThenElse(isFinite, doubles, NaN(d)));
  });
}

// ---- single precision to 8 bits, one vector -----------------------------------------------------

// Rounds t, which is 255 times the position in the range and lies in 0..255, to a byte. The rule
// adds 0.5 in double precision and truncates. In single precision, adding the largest single below
// 0.5 and rounding down gives the same. Adding 2^23 then moves the integer into the lowest bits.
template <class D>
Vec<BytesOf<D>> rounded(D d, Vec<D> t) {
  const auto whole = Floor(Add(t, Set(d, 0.49999997F)));
  const auto bits = BitCast(RebindToUnsigned<D>(), Add(whole, Set(d, 8388608.0F)));
  return TruncateTo(BytesOf<D>(), bits);
}

// Rounds any t, clamped to 0..255. A t that is not below 2^31, NaN included, gives 0.
template <class D>
Vec<BytesOf<D>> clampedAndRounded(D d, Vec<D> t) {
  const auto known = IfThenElseZero(Lt(t, Set(d, 2147483648.0F)), t);
  return rounded(d, Min(Max(known, Zero(d)), Set(d, 255.0F)));
}

// Scales samples of any range.
class Divided {
 public:
  Divided(float min, float span) : min_(min), span_(span) {}

  template <class Sample>
  Vec<BytesOf<Singles>> operator()(const Sample* samples) const {
    const Singles d;
    const auto position = Div(Sub(loadSinglesOrNan(d, samples), Set(d, min_)), Set(d, span_));
    return clampedAndRounded(d, Mul(position, Set(d, 255.0F)));
  }

 private:
  float min_;
  float span_;
};

// Scales 8-bit samples of any range through a table of all 256 results. Worth it for long rows.
class LookedUp {
 public:
  template <class Sample>
  LookedUp(const Divided& scale, const Sample*) {
    constexpr std::size_t kLanes = MaxLanes(BytesOf<Singles>());
    for (std::size_t first = 0; first < 256; first += Lanes(Singles())) {
      HWY_ALIGN Sample samples[kLanes];
      for (std::size_t i = 0; i < kLanes; ++i) samples[i] = static_cast<Sample>(first + i);
      StoreU(scale(samples), BytesOf<Singles>(), results_ + first);
    }
  }

  template <class Sample>
  Vec<ScalableTag<std::uint8_t>> operator()(const Sample* samples) const {
    const ScalableTag<std::uint8_t> d;
    const auto bytes = LoadU(d, reinterpret_cast<const std::uint8_t*>(samples));
    if constexpr (MaxLanes(d) < 16) {
      return Set(d, results_[GetLane(bytes)]);
    } else {
      return lookUp<128>(bytes, And(bytes, Set(d, 15)), results_);
    }
  }

 private:
  // Halves the table by one bit of the sample at a time, down to the 16 results of one vector
  // look-up.
  template <int kBit, class V>
  static V lookUp(V bytes, V lowBits, const std::uint8_t* results) {
    const DFromV<V> d;
    if constexpr (kBit < 16) {
      return TableLookupBytes(LoadDup128(d, results), lowBits);
    } else {
      const auto isUpper = TestBit(bytes, Set(d, kBit));
      return IfThenElse(isUpper, lookUp<kBit / 2>(bytes, lowBits, results + kBit),
                        lookUp<kBit / 2>(bytes, lowBits, results));
    }
  }

  HWY_ALIGN std::uint8_t results_[256 + MaxLanes(ScalableTag<float>())];
};

// ---- natural ranges: the same bytes with less work ----------------------------------------------

// Floating point in 0..1 needs no subtraction and no division.
template <class Sample>
struct ZeroToOne {
  static constexpr Sample kMin = 0;
  static constexpr Sample kMax = 1;

  Vec<BytesOf<Singles>> operator()(const Sample* samples) const {
    const Singles d;
    return clampedAndRounded(d, Mul(loadSingles(d, samples), Set(d, 255.0F)));
  }
};

// The whole range of a 32-bit type. In single precision its span is 2^32, so multiplying by
// 255 / 2^32 gives the same as dividing by the span and multiplying by 255. No result leaves
// 0..255.
template <class Sample>
struct WholeType32 {
  static constexpr Sample kMin = std::numeric_limits<Sample>::lowest();
  static constexpr Sample kMax = std::numeric_limits<Sample>::max();

  Vec<BytesOf<Singles>> operator()(const Sample* samples) const {
    const Singles d;
    const auto moved = Sub(loadSingles(d, samples), Set(d, static_cast<float>(kMin)));
    return rounded(d, Mul(moved, Set(d, 255.0F / 4294967296.0F)));
  }
};

// The whole range of a 16-bit type: divides by 257 and rounds to nearest. Signed samples are first
// shifted to start at 0.
template <class Sample>
class WholeWords {
 public:
  static constexpr Sample kMin = std::numeric_limits<Sample>::lowest();
  static constexpr Sample kMax = std::numeric_limits<Sample>::max();

  Vec<Rebind<std::uint8_t, ScalableTag<std::uint16_t>>> operator()(const Sample* samples) const {
    const ScalableTag<std::uint16_t> words;
    const auto sample = BitCast(words, LoadU(ScalableTag<Sample>(), samples));
    const auto value = Xor(sample, Set(words, static_cast<std::uint16_t>(kMin)));
    const auto moved = SaturatedAdd(value, Set(words, 128));
    const auto byte = ShiftRight<8>(Sub(moved, ShiftRight<8>(moved)));
    return DemoteTo(Rebind<std::uint8_t, ScalableTag<std::uint16_t>>(),
                    BitCast(ScalableTag<std::int16_t>(), byte));
  }
};

// The whole range of int8, shifted to start at 0.
struct WholeInt8 {
  static constexpr std::int8_t kMin = -128;
  static constexpr std::int8_t kMax = 127;

  Vec<ScalableTag<std::uint8_t>> operator()(const std::int8_t* samples) const {
    const ScalableTag<std::uint8_t> bytes;
    return Xor(LoadU(bytes, reinterpret_cast<const std::uint8_t*>(samples)), Set(bytes, 0x80));
  }
};

// Booleans in 0..1: 0 is black and every other byte is white.
struct ZeroOrWhite {
  static constexpr std::uint8_t kMin = 0;
  static constexpr std::uint8_t kMax = 1;

  Vec<ScalableTag<std::uint8_t>> operator()(const std::uint8_t* samples) const {
    const ScalableTag<std::uint8_t> bytes;
    return VecFromMask(bytes, Ne(LoadU(bytes, samples), Zero(bytes)));
  }
};

// ---- rows ---------------------------------------------------------------------------------------

// How far ahead samples are prefetched. Measured: 256 bytes save a thirtieth of the time if samples
// are large; longer distances cost time, above all those around a kilobyte.
constexpr std::size_t kBytesAhead = 256;

// Scales a row shorter than a vector, through padded copies.
template <class Scale, class Sample>
void scaleShortRow(const Scale& scale, const Sample* samples, std::uint8_t* out,
                   std::size_t count) {
  if (count == 0) return;
  const DFromV<decltype(scale(samples))> values;
  HWY_ALIGN Sample padded[MaxLanes(values)] = {};
  HWY_ALIGN std::uint8_t bytes[MaxLanes(values)];
  std::memcpy(padded, samples, count * sizeof(Sample));
  Store(scale(padded), values, bytes);
  std::memcpy(out, bytes, count);
}

// Only this function and scaleShortRow store results and know where a row ends. After the first
// vector, reading continues at an aligned address. The last vector overlaps the one before it.
template <class Scale, class Sample>
void scaleRow(const Scale& scale, const Sample* samples, std::uint8_t* out, std::size_t count) {
  const DFromV<decltype(scale(samples))> values;
  const std::size_t lanes = Lanes(values);
  if (count < lanes) return scaleShortRow(scale, samples, out, count);
  StoreU(scale(samples), values, out);
  std::size_t i = lanes - reinterpret_cast<std::uintptr_t>(samples) / sizeof(Sample) % lanes;
  for (; i + lanes <= count; i += lanes) {
    hwy::Prefetch(reinterpret_cast<const std::uint8_t*>(samples + i) + kBytesAhead);
    StoreU(scale(samples + i), values, out + i);
  }
  StoreU(scale(samples + count - lanes), values, out + count - lanes);
}

// The number of samples from which making a table costs less than it saves.
constexpr std::size_t kWorthLookingUp = 1024;

// True if the range that pixkit declares is the one that Scale expects.
template <std::uint32_t Id, class Scale>
bool isRangeOf(const Scale&) {
  using Sample = SampleOf<Id>;
  return static_cast<Sample>(videoTraits<Id>::min) == Scale::kMin &&
         static_cast<Sample>(videoTraits<Id>::max) == Scale::kMax;
}

// The scale for samples whose range is the natural one of their type.
template <std::uint32_t Id>
auto naturalScale() {
  using Sample = SampleOf<Id>;
  if constexpr (std::is_floating_point_v<Sample>) {
    return ZeroToOne<Sample>();
  } else if constexpr (Id == kInt8) {
    return WholeInt8();
  } else if constexpr (Id == kBoolean) {
    return ZeroOrWhite();
  } else if constexpr (sizeof(Sample) == 2) {
    return WholeWords<Sample>();
  } else {
    return WholeType32<Sample>();
  }
}

// Scales samples whose range is not the natural one of their type.
template <std::uint32_t Id>
void scaleOtherRange(const SampleOf<Id>* samples, std::uint8_t* out, std::size_t count) {
  const SampleRange<Id> range;
  const Divided divided(range.min(), range.span());
  if constexpr (sizeof *samples == 1) {
    if (count >= kWorthLookingUp) return scaleRow(LookedUp(divided, samples), samples, out, count);
  }
  scaleRow(divided, samples, out, count);
}

template <std::uint32_t Id>
void scaleSamples(const void* row, std::uint8_t* out, std::size_t count) {
  const auto* samples = static_cast<const SampleOf<Id>*>(row);
  if constexpr (Id == kUint8) {
    if (count != 0) std::memcpy(out, samples, count);
  } else {
    const auto natural = naturalScale<Id>();
    if (isRangeOf<Id>(natural)) {
      scaleRow(natural, samples, out, count);
    } else {
      scaleOtherRange<Id>(samples, out, count);
    }
  }
}

constexpr auto kRowScalers =
    tableOfSampleTypes([]<std::uint32_t Id>() -> RowScaler { return scaleSamples<Id>; });

}  // namespace

const std::array<RowScaler, kDataTypeCount>* rowScalersOfTarget() { return &kRowScalers; }

}  // namespace HWY_NAMESPACE
}  // namespace framesink
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace framesink {

HWY_EXPORT(rowScalersOfTarget);

const std::array<RowScaler, kDataTypeCount>& rowScalers() {
  return *HWY_DYNAMIC_DISPATCH(rowScalersOfTarget)();
}

}  // namespace framesink
#endif
