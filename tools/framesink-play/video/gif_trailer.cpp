#include "video/gif_trailer.hpp"

namespace framesink::play {
namespace {

constexpr int kEnd = -1;

// The bytes that introduce a block.
constexpr int kHeader = 'G';
constexpr int kExtension = '!';
constexpr int kImage = ',';
constexpr int kTrailer = ';';

using Next = std::function<int()>;

void skip(const Next& next, int count) {
  while (count-- > 0 && next() != kEnd) continue;
}

void skipSubBlocks(const Next& next) {
  for (int size = next(); size > 0; size = next()) skip(next, size);
}

// `flags` tell whether there is a palette, and how many colours it has.
void skipPalette(const Next& next, int flags) {
  if (flags != kEnd && (flags & 0x80) != 0) skip(next, 3 * (2 << (flags & 7)));
}

void skipHeader(const Next& next) {
  skip(next, 9);  // the rest of the signature, width, height
  const int flags = next();
  skip(next, 2);
  skipPalette(next, flags);
}

void skipImage(const Next& next) {
  skip(next, 8);  // place and size
  skipPalette(next, next());
  skip(next, 1);  // the width of a code
  skipSubBlocks(next);
}

bool isTheLastATrailer(const Next& next) {
  int last = kEnd;
  for (int byte = next(); byte != kEnd; byte = next()) last = byte;
  return last == kTrailer;
}

}  // namespace

bool endsWithGifTrailer(const Next& next) {
  while (true) {
    switch (next()) {
      case kHeader:
        skipHeader(next);
        break;
      case kExtension:
        skip(next, 1);  // its kind
        skipSubBlocks(next);
        break;
      case kImage:
        skipImage(next);
        break;
      case kTrailer:
        return true;
      case kEnd:
        return false;
      default:
        return isTheLastATrailer(next);
    }
  }
}

}  // namespace framesink::play
