// The conversion rules once more, as plainly as they can be put: one sample, one pixel, one byte at
// a time. Kernels are held against this byte for byte; it shares no code with them. The ranges of
// the sample types are pixkit's, read at each call, so that any pixkit may stand behind it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace framesink::oracle {

struct Frame {
  std::int32_t width;   // columns
  std::int32_t height;  // rows
  std::int32_t layout;
};

// What converting one frame may touch: samples read from each plane, bytes of the output that the
// caller must provide (not all of them need be written).
struct Extents {
  std::array<std::size_t, 3> planeSamples;
  std::size_t outputBytes;
};

// One kernel family; it has a kernel for each of the nine sample types.
struct Family {
  const char* name;
  std::int32_t inputKind;
  std::int32_t outputFormat;
  Extents (*extents)(const Frame& frame);
};

// All families: those that write RGB planes first, then those that write packed YUY2.
extern const std::array<Family, 6> kFamilies;

inline constexpr std::uint32_t kTypeCount = 9;

std::size_t sampleBytes(std::uint32_t dataType);
const char* typeName(std::uint32_t dataType);

// The 8-bit value of the sample at `sample`.
std::uint32_t scaleTo8Bit(std::uint32_t dataType, const void* sample);

// One triple in place, not clamped.
void ycbcrToRgb(std::int32_t& y, std::int32_t& cb, std::int32_t& cr);

// What the kernel of (family, dataType) has to do.
void convert(const Family& family, std::uint32_t dataType, const std::array<const void*, 3>& planes,
             std::uint8_t* out, const Frame& frame);

}  // namespace framesink::oracle
