#pragma once

#include <cstddef>
#include <cstdint>

// Runs the kernel and the oracle on the frame that the bytes describe; prints a message and ends
// the process if they differ. The first eight bytes choose the kernel, width, height, layout and
// places; the rest are samples, repeated as often as needed. Any bytes are a valid input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
