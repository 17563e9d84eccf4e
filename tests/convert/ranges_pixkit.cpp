// A pixkit that declares the set RANGE_SET. Tests load it in place of the stand-in.
#include "pixkit/pixkit.h"
#include "range_sets.hpp"

namespace {
constexpr framesink::RangeSet kSet = framesink::RANGE_SET;
}

#define DEFINE_TRAITS(N, Sample, range)                                        \
  constinit const Sample videoTraits<N>::min = static_cast<Sample>(range.min); \
  constinit const Sample videoTraits<N>::max = static_cast<Sample>(range.max); \
  constinit const std::array<Sample, 256> videoTraits<N>::EightBitLUT {}

DEFINE_TRAITS(0, double, kSet.doubles);
DEFINE_TRAITS(1, float, kSet.singles);
DEFINE_TRAITS(2, char, kSet.int8s);
DEFINE_TRAITS(3, std::uint8_t, kSet.uint8s);
DEFINE_TRAITS(4, std::int16_t, kSet.int16s);
DEFINE_TRAITS(5, std::uint16_t, kSet.uint16s);
DEFINE_TRAITS(6, std::int32_t, kSet.int32s);
DEFINE_TRAITS(7, std::uint32_t, kSet.uint32s);
DEFINE_TRAITS(8, unsigned char, kSet.booleans);
#undef DEFINE_TRAITS

extern "C" PK_DoubleToFixFcn PK_GetDoubleToFixFcn(ScaledDoubleFunctionIndex) { return nullptr; }
