// Samples that find errors: the ends of the type and of its range, the neighbours of every value at
// which the 8-bit result changes, NaNs and infinities, and random ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace framesink::oracle {

class SamplePool {
 public:
  explicit SamplePool(std::uint32_t dataType);

  std::size_t size() const { return samples_.size() / sampleBytes_; }
  const void* sample(std::size_t i) const { return samples_.data() + i * sampleBytes_; }

  // Writes `count` samples drawn at random to `plane`.
  void fill(std::uint8_t* plane, std::size_t count, std::mt19937& random) const;

 private:
  std::size_t sampleBytes_;
  std::vector<std::uint8_t> samples_;
};

}  // namespace framesink::oracle
