#include "kernel_cases.hpp"

#include <hwy/highway.h>

namespace framesink {

void InstructionSet::use() const { hwy::SetSupportedTargetsForTest(target); }

const std::vector<InstructionSet>& instructionSets() {
  static const std::vector<InstructionSet> sets = [] {
    std::vector<InstructionSet> all;
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
      all.push_back({hwy::TargetName(target), target});
    }
    return all;
  }();
  return sets;
}

ConversionKernel KernelCase::kernel() const {
  return selectConversionKernel(family->inputKind, family->outputFormat, dataType);
}

std::vector<KernelCase> kernelCases(std::size_t smallest, std::size_t largest) {
  std::vector<KernelCase> cases;
  for (const oracle::Family& family : oracle::kFamilies) {
    for (std::uint32_t dataType = 0; dataType < oracle::kTypeCount; ++dataType) {
      const std::size_t bytes = oracle::sampleBytes(dataType);
      if (bytes >= smallest && bytes <= largest) cases.push_back({&family, dataType});
    }
  }
  return cases;
}

std::string nameOf(const KernelCase& test) {
  return std::string(test.family->name) + oracle::typeName(test.dataType);
}

std::ostream& operator<<(std::ostream& stream, const KernelCase& test) {
  return stream << nameOf(test);
}

}  // namespace framesink
