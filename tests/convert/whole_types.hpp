// Numbers the samples of a type, so that a test can walk all of them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace framesink {

// The number of samples in the walk. For types of up to four bytes it takes every bit pattern.
// Doubles are narrowed to single precision first, so their walk takes every single, ties between
// neighbouring singles, and the two doubles next to each of these ties. It takes every tie of
// magnitude 2^-12 to 2^25, and every 4099th of all others.
std::uint64_t wholeTypeSize(std::uint32_t dataType);

// Writes `count` samples, starting with number `first`; numbers wrap at wholeTypeSize.
void fillFromWholeType(std::uint32_t dataType, std::uint64_t first, std::size_t count,
                       std::uint8_t* plane);

}  // namespace framesink
