// One kernel with a frame of its own to convert.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "kernel_cases.hpp"

namespace framesink {

class Conversion {
 public:
  // Planes of samples drawn from everything worth converting.
  Conversion(const KernelCase& test, const oracle::Frame& frame);

  // By the family's name, for example "RgbToRgb".
  Conversion(const char* family, std::uint32_t dataType, const oracle::Frame& frame);

  // Other samples, spread evenly over the natural range.
  void drawWithinRange();

  void run();

  // Converts once and compares with the oracle.
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
