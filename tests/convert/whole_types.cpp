#include "whole_types.hpp"

#include <bit>
#include <cmath>
#include <cstring>

#include "oracle.hpp"

namespace framesink {
namespace {

constexpr std::uint32_t kDoubles = 0;
constexpr std::uint64_t kSingles = std::uint64_t{1} << 32;

// Magnitudes, as bit patterns of singles without sign, above which every tie is taken.
constexpr std::uint32_t kFirstDense = (127U - 12) << 23;       // 2^-12
constexpr std::uint32_t kDenseCount = (25U + 12) << 23;        // up to 2^25
constexpr std::uint32_t kStride = 4099;                        // a prime
constexpr std::uint32_t kSparseCount = 0x7F800000U / kStride;  // below infinity

// For each tie: the double below, the tie and the double above, each with either sign.
constexpr std::uint64_t kPerTie = 6;

double tieAbove(std::uint32_t magnitude, std::uint64_t kind) {
  const double here = std::bit_cast<float>(magnitude);
  // Above the largest single is infinity; the tie is with 2^128.
  const double next = magnitude == 0x7F7FFFFFU ? 0x1p128 : std::bit_cast<float>(magnitude + 1);
  const double tie = (here + next) / 2;
  const double sample = kind % 3 == 0   ? std::nextafter(tie, 0.0)
                        : kind % 3 == 1 ? tie
                                        : std::nextafter(tie, HUGE_VAL);
  return kind < 3 ? sample : -sample;
}

double doubleNumber(std::uint64_t number) {
  if (number < kSingles) return std::bit_cast<float>(static_cast<std::uint32_t>(number));
  number -= kSingles;
  const std::uint64_t tie = number / kPerTie;
  const auto magnitude = static_cast<std::uint32_t>(
      tie < kDenseCount ? kFirstDense + tie : (tie - kDenseCount) * kStride);
  return tieAbove(magnitude, number % kPerTie);
}

}  // namespace

std::uint64_t wholeTypeSize(std::uint32_t dataType) {
  if (dataType == kDoubles) return kSingles + kPerTie * (kDenseCount + kSparseCount);
  return std::uint64_t{1} << 8 * oracle::sampleBytes(dataType);
}

void fillFromWholeType(std::uint32_t dataType, std::uint64_t first, std::size_t count,
                       std::uint8_t* plane) {
  const std::size_t bytes = oracle::sampleBytes(dataType);
  const std::uint64_t size = wholeTypeSize(dataType);
  std::uint64_t number = first % size;
  for (std::size_t i = 0; i < count; ++i) {
    if (dataType == kDoubles) {
      const double sample = doubleNumber(number);
      std::memcpy(plane + i * bytes, &sample, bytes);
    } else {
      std::memcpy(plane + i * bytes, &number, bytes);  // the low bytes, on x86 and ARM
    }
    if (++number == size) number = 0;
  }
}

}  // namespace framesink
