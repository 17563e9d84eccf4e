#include "conversion.hpp"

#include <algorithm>
#include <cstring>
#include <random>
#include <string_view>

#include "convert/sample_types.hpp"
#include "sample_pool.hpp"

namespace framesink {
namespace {

KernelCase caseOf(std::string_view family, std::uint32_t dataType) {
  const auto* found =
      std::find_if(oracle::kFamilies.begin(), oracle::kFamilies.end(),
                   [&](const oracle::Family& candidate) { return candidate.name == family; });
  return {found, dataType};
}

template <class Sample, class Draw>
void fill(std::vector<std::uint8_t>& plane, const Draw& draw) {
  for (std::size_t i = 0; i < plane.size(); i += sizeof(Sample)) {
    const auto sample = static_cast<Sample>(draw());
    std::memcpy(&plane[i], &sample, sizeof sample);
  }
}

}  // namespace

Conversion::Conversion(const KernelCase& test, const oracle::Frame& frame)
    : test_(test),
      frame_(frame),
      kernel_(test.kernel()),
      out_(test.family->extents(frame).outputBytes) {
  const oracle::Extents extents = test.family->extents(frame);
  const oracle::SamplePool pool(test.dataType);
  std::mt19937 random(1);
  for (std::size_t i = 0; i < planes_.size(); ++i) {
    planes_[i].resize(extents.planeSamples[i] * oracle::sampleBytes(test.dataType));
    pool.fill(planes_[i].data(), extents.planeSamples[i], random);
  }
}

Conversion::Conversion(const char* family, std::uint32_t dataType, const oracle::Frame& frame)
    : Conversion(caseOf(family, dataType), frame) {}

void Conversion::drawWithinRange() {
  std::mt19937 random(1);
  std::uniform_real_distribution<> zeroToOne;
  for (std::vector<std::uint8_t>& plane : planes_) {
    if (test_.dataType == kDouble) {
      fill<double>(plane, [&] { return zeroToOne(random); });
    } else if (test_.dataType == kSingle) {
      fill<float>(plane, [&] { return zeroToOne(random); });
    } else {
      fill<std::uint8_t>(plane, [&] { return random(); });
    }
  }
}

void Conversion::run() {
  kernel_(planes_[0].data(), planes_[1].data(), planes_[2].data(), out_.data(), frame_.width,
          frame_.height, frame_.layout);
}

bool Conversion::isRight() {
  std::vector<std::uint8_t> expected(out_.size());
  oracle::convert(*test_.family, test_.dataType,
                  {planes_[0].data(), planes_[1].data(), planes_[2].data()}, expected.data(),
                  frame_);
  run();
  return out_ == expected;
}

std::size_t Conversion::bytesReadAndWritten() const {
  return planes_[0].size() + planes_[1].size() + planes_[2].size() + out_.size();
}

}  // namespace framesink
