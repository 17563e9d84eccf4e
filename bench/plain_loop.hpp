// The simplest loop from column-major RGB bytes to YUY2. It has its own file because the build
// compiles it with -O2.
#pragma once

#include <cstdint>

namespace framesink::bench {

// `width` is even; `out` has 2 * width * height bytes.
void rgbToYuy2PlainLoop(const std::uint8_t* red, const std::uint8_t* green,
                        const std::uint8_t* blue, std::uint8_t* out, int width, int height);

}  // namespace framesink::bench
