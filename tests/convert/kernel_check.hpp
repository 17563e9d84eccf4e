// One kernel, on every instruction set, against the oracle on one frame, byte for byte.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kernel_cases.hpp"
#include "simd/guarded_memory.hpp"

namespace framesink {

// Where planes and output lie. The planes hold exactly the samples that may be read and the output
// exactly the bytes that the caller must provide, so a touch beyond ends the process or shows in
// the guard bytes. Writing to the planes ends the process, too.
struct Placement {
  enum Side { kAtEnd, kAtBegin } side = kAtEnd;  // of memory that ends, or begins, at a guard page
  std::size_t planeOffset = 0;                   // samples away from that page
  std::size_t outputOffset = 0;                  // bytes away from it
};

// Checks one kernel. Memory is kept from frame to frame.
class KernelCheck {
 public:
  // No frame may need more than `largestPlane` samples or `largestOutput` bytes, offsets included.
  KernelCheck(const KernelCase& test, std::size_t largestPlane, std::size_t largestOutput);

  const KernelCase& test() const { return test_; }

  // Where to write the samples of plane 0, 1 or 2 for the next check.
  std::uint8_t* plane(std::size_t number, const oracle::Frame& frame, Placement placement);

  // What the output holds before, byte by byte; a kernel leaves alone what the oracle leaves alone.
  std::vector<std::uint8_t>& background() { return background_; }

  // Runs the oracle, and the kernel on each instruction set. Empty when all agree, else the first
  // difference.
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
