// One kernel with a frame of its own to convert.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "kernel_cases.hpp"

namespace framesink {

class Conversion {
 public:
  // Fills the planes from a SamplePool: edge cases and random samples.
  Conversion(const KernelCase& test, const oracle::Frame& frame);

  // `family` is a family's name, for example "RgbToRgb".
  Conversion(const char* family, std::uint32_t dataType, const oracle::Frame& frame);

  // Replaces the samples with ones spread evenly over the natural range.
  void drawWithinRange();

  void run();

  // Converts once and compares the output with the oracle's.
  bool isRight();

  std::size_t bytesReadAndWritten() const;
  const std::vector<std::uint8_t>& plane(std::size_t i) const { return planes_[i]; }
  const std::vector<std::uint8_t>& output() const { return out_; }

 private:
  const KernelCase test_;
  const oracle::Frame frame_;
  const ConversionKernel kernel_;
  std::array<std::vector<std::uint8_t>, 3> planes_;
  std::vector<std::uint8_t> out_;
};

}  // namespace framesink
