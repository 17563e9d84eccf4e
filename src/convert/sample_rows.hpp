// Scales runs of samples to 8 bits, on the vectors of this machine. Kernels use it wherever they
// read samples in the order in which they lie in memory.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "convert/sample_types.hpp"

namespace framesink {

// Writes the 8-bit values of `count` samples to `out`, the same bytes that SampleScale gives one by
// one. Samples need the alignment of their type only. Reads and writes nothing beyond them.
using RowScaler = void (*)(const void* samples, std::uint8_t* out, std::size_t count);

// The row scaler of each sample type for the vectors of this machine. Every call selects anew,
// which takes a few nanoseconds.
const std::array<RowScaler, kDataTypeCount>& rowScalers();

// A buffer for a run of up to kMost samples as bytes.
template <std::uint32_t Id, std::size_t kMost>
class ByteRun {
 public:
  // Returns the 8-bit values of the samples, valid until the next call. For uint8 these are the
  // samples themselves.
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
