// Column-major RGB bytes to YUY2 as one writes it down first; optimised as the compiler does at
// -O2, in a file of its own.
#pragma once

#include <cstdint>

namespace framesink::bench {

// Even width; 2 * width * height bytes.
void rgbToYuy2PlainLoop(const std::uint8_t* red, const std::uint8_t* green,
                        const std::uint8_t* blue, std::uint8_t* out, int width, int height);

}  // namespace framesink::bench
