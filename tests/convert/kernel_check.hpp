// Compares one kernel, on every instruction set, with the oracle byte for byte.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kernel_cases.hpp"
#include "simd/guarded_memory.hpp"

namespace framesink {

// Where planes and output lie. The planes hold exactly the samples that the kernel may read, the
// output exactly the bytes that the caller must provide. An access beyond either ends the process
// or changes the guard bytes; a write to the planes ends the process.
struct Placement {
  // Whether to place them at the end or at the beginning of the guarded memory.
  enum Side { kAtEnd, kAtBegin } side = kAtEnd;
  std::size_t planeOffset = 0;   // distance from the guard page, in samples
  std::size_t outputOffset = 0;  // distance from the guard page, in bytes
};

// Checks one kernel. The memory is allocated once, for all frames.
class KernelCheck {
 public:
  // No frame may need more than `largestPlane` samples or `largestOutput` bytes, offsets included.
  KernelCheck(const KernelCase& test, std::size_t largestPlane, std::size_t largestOutput);

  const KernelCase& test() const { return test_; }

  // Where to write the samples of plane 0, 1 or 2 for the next check.
  std::uint8_t* plane(std::size_t number, const oracle::Frame& frame, Placement placement);

  // What the output holds before the kernel runs. Bytes that the oracle leaves alone must keep it.
  std::vector<std::uint8_t>& background() { return background_; }

  // Runs the oracle, and the kernel on each instruction set. Returns a description of the first
  // difference, or an empty string.
  std::string difference(const oracle::Frame& frame, Placement placement);

 private:
  std::array<const void*, 3> planes(const oracle::Frame& frame, Placement placement);
  std::uint8_t* output(const oracle::Frame& frame, Placement placement) const;
  std::string compare(const InstructionSet& set, const oracle::Frame& frame,
                      Placement placement) const;

  const KernelCase test_;
  const ConversionKernel kernel_;
  const std::size_t sampleBytes_;
  std::array<GuardedMemory, 3> planes_;
  GuardedMemory output_;
  std::vector<std::uint8_t> background_;
  std::vector<std::uint8_t> expected_;
};

}  // namespace framesink
