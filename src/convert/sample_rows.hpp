// Runs of samples to 8 bits, as fast as the machine's vectors go: what kernels scale with wherever
// they read samples in the order in which these lie.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "convert/sample_types.hpp"

namespace framesink {

// Writes the 8-bit values of `count` samples to `out`; the same bytes as SampleScale gives one by
// one. Planes need the alignment of their sample type only. Reads and writes nothing beyond.
using RowScaler = void (*)(const void* samples, std::uint8_t* out, std::size_t count);

// The row scaler of each sample type for the vectors of this machine. Chosen anew at each call, in
// a few nanoseconds.
const std::array<RowScaler, kDataTypeCount>& rowScalers();

// Room for a run of up to kMost samples as bytes.
template <std::uint32_t Id, std::size_t kMost>
class ByteRun {
 public:
  // The 8-bit values of the samples, until the next call: their own bytes when they are uint8.
  const std::uint8_t* scaled(const SampleOf<Id>* samples, std::size_t count) {
    if constexpr (Id == kUint8) {
      return samples;
    } else {
      rowScalers()[Id](samples, bytes_.data(), count);
      return bytes_.data();
    }
  }

 private:
  std::array<std::uint8_t, Id == kUint8 ? 0 : kMost> bytes_;
};

}  // namespace framesink
