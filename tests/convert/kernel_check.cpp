#include "kernel_check.hpp"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace framesink {
namespace {

// Bytes around the output that the kernel must not change, where a guard page leaves room for them.
constexpr std::size_t kGuardBytes = 64;

std::string described(const oracle::Frame& frame, Placement placement) {
  return " (width " + std::to_string(frame.width) + ", height " + std::to_string(frame.height) +
         ", layout " + std::to_string(frame.layout) + ", planes " +
         std::to_string(placement.planeOffset) + " samples and output " +
         std::to_string(placement.outputOffset) + " bytes from the " +
         (placement.side == Placement::kAtEnd ? "end" : "begin") + " of their memory)";
}

}  // namespace

KernelCheck::KernelCheck(const KernelCase& test, std::size_t largestPlane,
                         std::size_t largestOutput)
    : test_(test),
      kernel_(test.kernel()),
      sampleBytes_(oracle::sampleBytes(test.dataType)),
      planes_{GuardedMemory(largestPlane * sampleBytes_),
              GuardedMemory(largestPlane * sampleBytes_),
              GuardedMemory(largestPlane * sampleBytes_)},
      output_(largestOutput + 2 * kGuardBytes),
      background_(static_cast<std::size_t>(output_.end() - output_.begin())) {
  if (kernel_ == nullptr) throw std::runtime_error("no kernel for " + nameOf(test));
}

std::uint8_t* KernelCheck::plane(std::size_t number, const oracle::Frame& frame,
                                 Placement placement) {
  const GuardedMemory& memory = planes_[number];
  const std::size_t offset = placement.planeOffset * sampleBytes_;
  if (placement.side == Placement::kAtBegin) return memory.begin() + offset;
  return memory.end() - offset - test_.family->extents(frame).planeSamples[number] * sampleBytes_;
}

std::uint8_t* KernelCheck::output(const oracle::Frame& frame, Placement placement) const {
  if (placement.side == Placement::kAtBegin) return output_.begin() + placement.outputOffset;
  return output_.end() - placement.outputOffset - test_.family->extents(frame).outputBytes;
}

// Planes that the input kind does not have are null.
std::array<const void*, 3> KernelCheck::planes(const oracle::Frame& frame, Placement placement) {
  std::array<const void*, 3> planes{};
  const std::size_t count = test_.family->inputKind == kInputIntensity ? 1 : planes.size();
  for (std::size_t i = 0; i < count; ++i) planes[i] = plane(i, frame, placement);
  return planes;
}

std::string KernelCheck::difference(const oracle::Frame& frame, Placement placement) {
  const std::array<const void*, 3> planes = this->planes(frame, placement);
  std::uint8_t* const out = output(frame, placement);
  expected_ = background_;
  oracle::convert(*test_.family, test_.dataType, planes, expected_.data() + (out - output_.begin()),
                  frame);
  for (GuardedMemory& memory : planes_) memory.allowWriting(false);
  std::string found;
  for (const InstructionSet& set : instructionSets()) {
    set.use();
    std::memcpy(output_.begin(), background_.data(), background_.size());
    kernel_(planes[0], planes[1], planes[2], out, frame.width, frame.height, frame.layout);
    found = compare(set, frame, placement);
    if (!found.empty()) break;
  }
  instructionSets().front().use();
  for (GuardedMemory& memory : planes_) memory.allowWriting(true);
  return found;
}

std::string KernelCheck::compare(const InstructionSet& set, const oracle::Frame& frame,
                                 Placement placement) const {
  if (std::memcmp(expected_.data(), output_.begin(), expected_.size()) == 0) return {};
  const auto [want, got] =
      std::mismatch(expected_.begin(), expected_.end(), output_.begin(), output_.end());
  return nameOf(test_) + " on " + set.name + ": byte " +
         std::to_string(got - output(frame, placement)) + " of the output is " +
         std::to_string(*got) + ", not " + std::to_string(*want) + described(frame, placement);
}

}  // namespace framesink
