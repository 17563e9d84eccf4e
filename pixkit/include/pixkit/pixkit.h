// pixkit: what framesink needs from the host's media library. The stand-in beside this header
// declares each type's natural range. A host's own libpixkit.so with the same symbols takes its
// place at load, without a rebuild, and may declare other ranges.
//
// All data is constant and every function is re-entrant. Nothing allocates or throws.
#ifndef PIXKIT_PIXKIT_H
#define PIXKIT_PIXKIT_H

#include <array>
#include <cstddef>
#include <cstdint>

#if defined(__GNUC__) && !defined(_WIN32)
#define PIXKIT_API __attribute__((visibility("default")))
#elif defined(_WIN32) && defined(PIXKIT_BUILDING)
#define PIXKIT_API __declspec(dllexport)
#elif defined(_WIN32)
#define PIXKIT_API __declspec(dllimport)
#else
#define PIXKIT_API
#endif

// The nominal range of sample type N. EightBitLUT[v] is the sample that stands for the 8-bit value
// v (0..255): min + v / 255 x (max - min), rounded to nearest for integers.
//
// N: 0 double, 1 single, 2 int8, 3 uint8, 4 int16, 5 uint16, 6 int32, 7 uint32, 8 boolean (a byte).
template <int N>
struct videoTraits;

// Int8 ranges are declared as plain char, which is unsigned on some machines. Read their bytes as
// signed.
#define PIXKIT_VIDEO_TRAITS(N, Sample)                \
  template <>                                         \
  struct PIXKIT_API videoTraits<N> {                  \
    static const Sample min;                          \
    static const Sample max;                          \
    static const std::array<Sample, 256> EightBitLUT; \
  }
PIXKIT_VIDEO_TRAITS(0, double);
PIXKIT_VIDEO_TRAITS(1, float);
PIXKIT_VIDEO_TRAITS(2, char);
PIXKIT_VIDEO_TRAITS(3, std::uint8_t);
PIXKIT_VIDEO_TRAITS(4, std::int16_t);
PIXKIT_VIDEO_TRAITS(5, std::uint16_t);
PIXKIT_VIDEO_TRAITS(6, std::int32_t);
PIXKIT_VIDEO_TRAITS(7, std::uint32_t);
PIXKIT_VIDEO_TRAITS(8, unsigned char);
#undef PIXKIT_VIDEO_TRAITS

extern "C" {

// Selects the conversion that PK_GetDoubleToFixFcn returns. Each one maps the nominal doubles 0..1
// onto the whole range of its type: round(min + x (max - min)), halves to even, saturating outside
// 0..1. NaN becomes the type's minimum.
enum ScaledDoubleFunctionIndex : std::uint32_t {
  PK_NO_CONVERSION = 0,
  PK_DOUBLE_TO_INT8 = 1,
  PK_DOUBLE_TO_UINT8 = 2,
  PK_DOUBLE_TO_INT16 = 3,
  PK_DOUBLE_TO_UINT16 = 4,
  PK_DOUBLE_TO_INT32 = 5,
  PK_DOUBLE_TO_UINT32 = 6
};

// Converts `count` doubles at `source` into `count` samples at `destination`. The two may be the
// same address; otherwise they must not overlap.
typedef void (*PK_DoubleToFixFcn)(const double* source, void* destination, std::size_t count);

// Returns the routine for an index; null for PK_NO_CONVERSION and for any index not listed.
PIXKIT_API PK_DoubleToFixFcn PK_GetDoubleToFixFcn(ScaledDoubleFunctionIndex index);
}

#endif
