// The argument of --raw: "640x480:double:rgb".
#pragma once

#include <optional>
#include <string>

#include "frames/raw_form.hpp"

namespace framesink::play {

// Reads WIDTHxHEIGHT:TYPE:KIND with an optional ":packed". Returns nothing for any other text, for
// frames of more than kMostFramePixels, and for YCbCr 4:2:2 of odd width.
std::optional<RawForm> parseRawForm(const std::string& text);

}  // namespace framesink::play
