// Whether a GIF is whole: its blocks end with a trailer, which FFmpeg does not require.
#pragma once

#include <functional>

namespace framesink::play {

// Returns true if the bytes that `next` returns one by one are whole blocks of a GIF up to its trailer.
// Where they are not blocks, the very last byte must be the trailer. `next` returns -1 at the end.
bool endsWithGifTrailer(const std::function<int()>& next);

}  // namespace framesink::play
