// The table that drives every check and every timing of the kernels: each family in each sample
// type on each instruction set that this machine has.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "convert/kernel_selection.hpp"
#include "oracle.hpp"

namespace framesink {

// A way to run the kernels; use() chooses it for this process from then on.
struct InstructionSet {
  const char* name;
  void (*use)();
};

// At least one; the first is what the library chooses by itself.
const std::vector<InstructionSet>& instructionSets();

struct KernelCase {
  const oracle::Family* family;
  std::uint32_t dataType;
  const InstructionSet* instructionSet;

  ConversionKernel kernel() const;
};

// In the order of the families; the types whose samples have at least `smallest` and at most
// `largest` bytes.
std::vector<KernelCase> kernelCases(std::size_t smallest = 1, std::size_t largest = 8);

// For example "RgbToYuy2Uint16Plain".
std::string nameOf(const KernelCase& test);
std::ostream& operator<<(std::ostream& stream, const KernelCase& test);

}  // namespace framesink
