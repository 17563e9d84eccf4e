// The table that drives every check and every timing of the kernels: each family in each sample
// type, on each instruction set that this machine has.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "convert/kernel_selection.hpp"
#include "oracle.hpp"

namespace framesink {

// Vectors that the kernels can run on.
struct InstructionSet {
  std::string name;
  std::int64_t target;  // Highway's number of it

  void use() const;  // the kernels of this process run on it from now on
};

// The best one first: what the library chooses by itself.
const std::vector<InstructionSet>& instructionSets();

struct KernelCase {
  const oracle::Family* family;
  std::uint32_t dataType;

  ConversionKernel kernel() const;
};

// In the order of the families; the types whose samples have at least `smallest` and at most
// `largest` bytes.
std::vector<KernelCase> kernelCases(std::size_t smallest = 1, std::size_t largest = 8);

// For example "RgbToYuy2Uint16".
std::string nameOf(const KernelCase& test);
std::ostream& operator<<(std::ostream& stream, const KernelCase& test);

}  // namespace framesink
