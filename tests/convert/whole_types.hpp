// Samples in numbered order, so that a test can walk a whole type.
#pragma once

#include <cstddef>
#include <cstdint>

namespace framesink {

// How many there are: every bit pattern of a type of up to four bytes. Of doubles, which are
// narrowed to single precision first: every single, and around the tie between every two
// neighbouring singles of magnitude 2^-12 to 2^25 the tie and the doubles next to it; of the other
// magnitudes every 4099th tie.
std::uint64_t wholeTypeSize(std::uint32_t dataType);

// Writes `count` samples from number `first` on; numbers wrap at wholeTypeSize.
void fillFromWholeType(std::uint32_t dataType, std::uint64_t first, std::size_t count,
                       std::uint8_t* plane);

}  // namespace framesink
