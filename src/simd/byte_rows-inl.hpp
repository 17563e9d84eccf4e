// The loop over rows of bytes that all byte kernels share. Re-included for each instruction set.
#if defined(FRAMESINK_BYTE_ROWS_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef FRAMESINK_BYTE_ROWS_INL
#undef FRAMESINK_BYTE_ROWS_INL
#else
#define FRAMESINK_BYTE_ROWS_INL
#endif

#include <hwy/highway.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace framesink {
namespace HWY_NAMESPACE {
namespace {

using namespace hwy::HWY_NAMESPACE;

template <std::size_t Count>
using Sources = std::array<const std::uint8_t*, Count>;
template <std::size_t Count>
using Targets = std::array<std::uint8_t*, Count>;

template <std::size_t Count>
void moveOn(Sources<Count>& in, const std::array<std::size_t, Count>& bytes, std::ptrdiff_t steps) {
  for (std::size_t i = 0; i < Count; ++i) in[i] += steps * static_cast<std::ptrdiff_t>(bytes[i]);
}

template <std::size_t Count>
void moveOn(Targets<Count>& out, std::size_t bytes, std::ptrdiff_t steps) {
  for (std::uint8_t*& target : out) target += steps * static_cast<std::ptrdiff_t>(bytes);
}

// Converts a row shorter than a vector, through padded copies.
template <class Convert, std::size_t Inputs, std::size_t Outputs>
void convertShortRow(const Convert& convert, const Sources<Inputs>& in, const Targets<Outputs>& out,
                     std::size_t count) {
  constexpr std::size_t kMost = Convert::kMostLanes;
  HWY_ALIGN std::uint8_t paddedIn[Inputs][2 * kMost] = {};
  HWY_ALIGN std::uint8_t paddedOut[Outputs][kMost * Convert::kOutputBytes];
  Sources<Inputs> from;
  Targets<Outputs> to;
  for (std::size_t i = 0; i < Inputs; ++i) {
    std::memcpy(paddedIn[i], in[i], count * Convert::kInputBytes[i]);
    from[i] = paddedIn[i];
  }
  for (std::size_t i = 0; i < Outputs; ++i) to[i] = paddedOut[i];
  convert(from, to);
  for (std::size_t i = 0; i < Outputs; ++i) {
    std::memcpy(out[i], paddedOut[i], count * Convert::kOutputBytes);
  }
}

// Runs `convert` over `count` elements, each a pixel or a pair of pixels. One convert(in, out)
// converts convert.lanes() elements, at most kMostLanes. For each element it reads kInputBytes[i]
// bytes of in[i] and writes kOutputBytes bytes of every out[i]. The last vector overlaps the one
// before it, so nothing beyond the rows is read or written. Outputs must not overlap inputs.
template <class Convert, std::size_t Inputs, std::size_t Outputs>
void convertRow(const Convert& convert, Sources<Inputs> in, Targets<Outputs> out,
                std::size_t count) {
  const std::size_t lanes = convert.lanes();
  if (count < lanes) {
    if (count != 0) convertShortRow(convert, in, out, count);
    return;
  }
  const auto step = static_cast<std::ptrdiff_t>(lanes);
  for (; count >= lanes; count -= lanes) {
    convert(in, out);
    moveOn(in, Convert::kInputBytes, step);
    moveOn(out, Convert::kOutputBytes, step);
  }
  if (count == 0) return;
  const std::ptrdiff_t back = static_cast<std::ptrdiff_t>(count) - step;
  moveOn(in, Convert::kInputBytes, back);
  moveOn(out, Convert::kOutputBytes, back);
  convert(in, out);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace framesink
HWY_AFTER_NAMESPACE();

#endif
