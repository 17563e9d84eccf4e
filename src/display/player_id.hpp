// How the players of a server are addressed.
#pragma once

#include <cstdint>

namespace framesink {

// Each server numbers its players 0, 1, 2, ... and never reuses a number.
using PlayerId = std::uint32_t;

// -1 as a signed number.
inline constexpr PlayerId kNoPlayer = 0xFFFFFFFF;

}  // namespace framesink
