#include "kernel_cases.hpp"

namespace framesink {

const std::vector<InstructionSet>& instructionSets() {
  static const std::vector<InstructionSet> sets{{"Plain", [] {}}};
  return sets;
}

ConversionKernel KernelCase::kernel() const {
  instructionSet->use();
  return selectConversionKernel(family->inputKind, family->outputFormat, dataType);
}

std::vector<KernelCase> kernelCases(std::size_t smallest, std::size_t largest) {
  std::vector<KernelCase> cases;
  for (const InstructionSet& set : instructionSets()) {
    for (const oracle::Family& family : oracle::kFamilies) {
      for (std::uint32_t dataType = 0; dataType < oracle::kTypeCount; ++dataType) {
        const std::size_t bytes = oracle::sampleBytes(dataType);
        if (bytes >= smallest && bytes <= largest) cases.push_back({&family, dataType, &set});
      }
    }
  }
  return cases;
}

std::string nameOf(const KernelCase& test) {
  return std::string(test.family->name) + oracle::typeName(test.dataType) +
         test.instructionSet->name;
}

std::ostream& operator<<(std::ostream& stream, const KernelCase& test) {
  return stream << nameOf(test);
}

}  // namespace framesink
