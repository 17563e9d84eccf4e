// The table behind every check and every timing of a kernel: each family with each sample type, on
// each instruction set of this machine.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "convert/kernel_selection.hpp"
#include "oracle.hpp"

namespace framesink {

// An instruction set that the kernels can run on.
struct InstructionSet {
  std::string name;
  std::int64_t target;  // Highway's number for it

  void use() const;  // From now on, all kernels of this process run on it.
};

// The best one, which the library chooses by itself, comes first.
const std::vector<InstructionSet>& instructionSets();

struct KernelCase {
  const oracle::Family* family;
  std::uint32_t dataType;

  ConversionKernel kernel() const;
};

// In the order of the families. Only types whose samples have `smallest` to `largest` bytes.
std::vector<KernelCase> kernelCases(std::size_t smallest = 1, std::size_t largest = 8);

// For example "RgbToYuy2Uint16".
std::string nameOf(const KernelCase& test);
std::ostream& operator<<(std::ostream& stream, const KernelCase& test);

}  // namespace framesink
