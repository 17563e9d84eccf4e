// Restates the conversion rules as plainly as possible: one sample, one pixel, one byte at a time.
// Tests compare kernels with it byte for byte, so it shares no code with them. It reads the ranges
// of the sample types from pixkit at each call, so it works with any pixkit.
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

// What converting one frame may touch: the samples read from each plane, and the output bytes that
// the caller must provide. Not all of those are written.
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

// All families: first those that write RGB planes, then those that write packed YUY2.
extern const std::array<Family, 6> kFamilies;

inline constexpr std::uint32_t kTypeCount = 9;

std::size_t sampleBytes(std::uint32_t dataType);
const char* typeName(std::uint32_t dataType);

// The 8-bit value of the sample of type `dataType` at `sample`.
std::uint32_t scaleTo8Bit(std::uint32_t dataType, const void* sample);

// Converts one triple in place, without clamping.
void ycbcrToRgb(std::int32_t& y, std::int32_t& cb, std::int32_t& cr);

// Does what the kernel of (family, dataType) must do.
void convert(const Family& family, std::uint32_t dataType, const std::array<const void*, 3>& planes,
             std::uint8_t* out, const Frame& frame);

}  // namespace framesink::oracle
