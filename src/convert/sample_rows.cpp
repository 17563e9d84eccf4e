#include "convert/sample_rows.hpp"

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "convert/sample_scaling.hpp"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "convert/sample_rows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

using namespace hwy::HWY_NAMESPACE;

// A vector of single precision, as many as fit; as many doubles as fit become half a vector.
template <class Sample>
struct SinglesOf {
  using Type = ScalableTag<float>;
};
template <>
struct SinglesOf<double> {
  using Type = Rebind<float, ScalableTag<double>>;
};
template <class Sample>
using Singles = typename SinglesOf<Sample>::Type;

template <class D>
using BytesOf = Rebind<std::uint8_t, D>;

// ---- samples to single precision, one vector ----------------------------------------------------

template <class D>
Vec<D> loadSingles(D singles, const float* samples) {
  return LoadU(singles, samples);
}

// Narrowed before anything else. What would become infinite becomes NaN: both end as 0, while some
// instruction sets narrow it to the largest single.
template <class D>
Vec<D> loadSingles(D singles, const double* samples) {
  constexpr double kFirstInfinite = 0x1.ffffffp127;
  const ScalableTag<double> d;
  const auto wide = LoadU(d, samples);
  return DemoteTo(singles, IfThenElse(Lt(Abs(wide), Set(d, kFirstInfinite)), wide, NaN(d)));
}

template <class D>
Vec<D> loadSingles(D singles, const std::int32_t* samples) {
  return ConvertTo(singles, LoadU(RebindToSigned<D>(), samples));
}

template <class D>
Vec<D> loadSingles(D singles, const std::uint32_t* samples) {
  return ConvertTo(singles, LoadU(RebindToUnsigned<D>(), samples));
}

// 8 and 16 bits.
template <class D, class Sample>
Vec<D> loadSingles(D singles, const Sample* samples) {
  return ConvertTo(singles, PromoteTo(RebindToSigned<D>(), LoadU(Rebind<Sample, D>(), samples)));
}

// ---- single precision to 8 bits, one vector -----------------------------------------------------

// 255 times the position in the range to a byte. What is not below 2^31, NaN included, gives 0.
// Between 0 and 255, truncation after adding 0.5 in double precision is truncation after adding the
// largest single below 0.5 in single precision.
template <class D>
Vec<BytesOf<D>> rounded(D d, Vec<D> t) {
  const auto known = IfThenElseZero(Lt(t, Set(d, 2147483648.0F)), t);
  const auto clamped = Min(Max(known, Zero(d)), Set(d, 255.0F));
  return DemoteTo(BytesOf<D>(), ConvertTo(RebindToSigned<D>(), Add(clamped, Set(d, 0.49999997F))));
}

// Any range.
class Divided {
 public:
  Divided(float min, float span) : min_(min), span_(span) {}

  template <class Sample>
  Vec<BytesOf<Singles<Sample>>> operator()(const Sample* samples) const {
    const Singles<Sample> d;
    const auto position = Div(Sub(loadSingles(d, samples), Set(d, min_)), Set(d, span_));
    return rounded(d, Mul(position, Set(d, 255.0F)));
  }

 private:
  float min_;
  float span_;
};

// A span that is a power of two: multiplying by its reciprocal gives the same, and faster.
class Multiplied {
 public:
  Multiplied(float min, float span) : min_(min), reciprocal_(1.0F / span) {}

  template <class Sample>
  Vec<BytesOf<Singles<Sample>>> operator()(const Sample* samples) const {
    const Singles<Sample> d;
    const auto position = Mul(Sub(loadSingles(d, samples), Set(d, min_)), Set(d, reciprocal_));
    return rounded(d, Mul(position, Set(d, 255.0F)));
  }

  static bool isExact(float span) {
    int exponent = 0;
    return std::frexp(span, &exponent) == 0.5F && std::abs(exponent) < 100;
  }

 private:
  float min_;
  float reciprocal_;
};

// ---- natural ranges of the small types ----------------------------------------------------------

// The whole of a 16-bit type: divided by 257, rounded to nearest. A signed one is moved up first.
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

// The whole of int8, moved up.
struct WholeInt8 {
  static constexpr std::int8_t kMin = -128;
  static constexpr std::int8_t kMax = 127;

  Vec<ScalableTag<std::uint8_t>> operator()(const std::int8_t* samples) const {
    const ScalableTag<std::uint8_t> bytes;
    return Xor(LoadU(bytes, reinterpret_cast<const std::uint8_t*>(samples)), Set(bytes, 0x80));
  }
};

// Booleans from 0 to 1: every other byte is white, too.
struct ZeroOrWhite {
  static constexpr std::uint8_t kMin = 0;
  static constexpr std::uint8_t kMax = 1;

  Vec<ScalableTag<std::uint8_t>> operator()(const std::uint8_t* samples) const {
    const ScalableTag<std::uint8_t> bytes;
    return VecFromMask(bytes, Ne(LoadU(bytes, samples), Zero(bytes)));
  }
};

// ---- rows ---------------------------------------------------------------------------------------

// The only place that stores and knows of ends: the last samples go through the same vector,
// padded.
template <class Scale, class Sample>
void scaleRow(const Scale& scale, const Sample* samples, std::uint8_t* out, std::size_t count) {
  using Values = decltype(scale(samples));
  const DFromV<Values> values;
  const std::size_t lanes = Lanes(values);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) StoreU(scale(samples + i), values, out + i);
  if (i == count) return;
  HWY_ALIGN Sample padded[MaxLanes(values)] = {};
  HWY_ALIGN std::uint8_t last[MaxLanes(values)];
  std::memcpy(padded, samples + i, (count - i) * sizeof(Sample));
  Store(scale(padded), values, last);
  std::memcpy(out + i, last, count - i);
}

// Ranges are pixkit's, whole types its usual ones.
template <std::uint32_t Id, class Whole>
bool isRangeOf() {
  using Sample = SampleOf<Id>;
  return static_cast<Sample>(videoTraits<Id>::min) == Whole::kMin &&
         static_cast<Sample>(videoTraits<Id>::max) == Whole::kMax;
}

template <std::uint32_t Id>
void scaleAnyRange(const SampleOf<Id>* samples, std::uint8_t* out, std::size_t count) {
  const SampleRange<Id> range;
  if (Multiplied::isExact(range.span())) {
    scaleRow(Multiplied(range.min(), range.span()), samples, out, count);
  } else {
    scaleRow(Divided(range.min(), range.span()), samples, out, count);
  }
}

template <std::uint32_t Id, class Whole>
void scaleWholeOrAnyRange(const SampleOf<Id>* samples, std::uint8_t* out, std::size_t count) {
  if (isRangeOf<Id, Whole>()) {
    scaleRow(Whole(), samples, out, count);
  } else {
    scaleAnyRange<Id>(samples, out, count);
  }
}

template <std::uint32_t Id>
void scaleSamples(const void* row, std::uint8_t* out, std::size_t count) {
  const auto* samples = static_cast<const SampleOf<Id>*>(row);
  if constexpr (Id == kUint8) {
    if (count != 0) std::memcpy(out, samples, count);
  } else if constexpr (Id == kInt8) {
    scaleWholeOrAnyRange<Id, WholeInt8>(samples, out, count);
  } else if constexpr (Id == kBoolean) {
    scaleWholeOrAnyRange<Id, ZeroOrWhite>(samples, out, count);
  } else if constexpr (sizeof(SampleOf<Id>) == 2) {
    scaleWholeOrAnyRange<Id, WholeWords<SampleOf<Id>>>(samples, out, count);
  } else {
    scaleAnyRange<Id>(samples, out, count);
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
