// The loop over rows of bytes that the colour conversions of one instruction set share.
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

template <std::size_t Count>
using Sources = std::array<const std::uint8_t*, Count>;
template <std::size_t Count>
using Targets = std::array<std::uint8_t*, Count>;

// Runs `convert` over `count` pixels, or pairs of pixels: convert(in, out) does as many as
// convert.lanes(), reading kInputBytes[i] bytes of in[i] for each and writing kOutputBytes of every
// out[i]. The last ones go through the same vectors, padded: nothing beyond is read or written.
template <class Convert, std::size_t Inputs, std::size_t Outputs>
void convertRow(const Convert& convert, Sources<Inputs> in, Targets<Outputs> out,
                std::size_t count) {
  const std::size_t lanes = convert.lanes();
  for (; count >= lanes; count -= lanes) {
    convert(in, out);
    for (std::size_t i = 0; i < Inputs; ++i) in[i] += lanes * Convert::kInputBytes[i];
    for (std::uint8_t*& target : out) target += lanes * Convert::kOutputBytes;
  }
  if (count == 0) return;
  constexpr std::size_t kMost = hwy::HWY_NAMESPACE::MaxLanes(typename Convert::Lanes());
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

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace framesink
HWY_AFTER_NAMESPACE();

#endif
