// The colour matrices as integers, computed from one table of doubles before any kernel can run.
#pragma once

#include <cstdint>

namespace framesink {

// YCbCr to RGB, BT.601 studio range: offsets as they are, factors in 2.14 fixed point. `luma` is
// the factor in all three rows of the matrix; factors without a field are zero.
struct YcbcrToRgbConstants {
  std::int32_t lumaOffset;
  std::int32_t cbOffset;
  std::int32_t crOffset;
  std::int32_t luma;
  std::int32_t redFromCr;
  std::int32_t greenFromCb;
  std::int32_t greenFromCr;
  std::int32_t blueFromCb;
};

extern const YcbcrToRgbConstants ycbcrToRgbConstants;

// 8-bit RGB to YCbCr, BT.601 studio range: offsets as they are, factors in 1/256.
struct RgbToYcbcrConstants {
  std::int32_t lumaOffset;
  std::int32_t cbOffset;
  std::int32_t crOffset;
  std::int32_t lumaFromRed;
  std::int32_t lumaFromGreen;
  std::int32_t lumaFromBlue;
  std::int32_t cbFromRed;
  std::int32_t cbFromGreen;
  std::int32_t cbFromBlue;
  std::int32_t crFromRed;
  std::int32_t crFromGreen;
  std::int32_t crFromBlue;
};

extern const RgbToYcbcrConstants rgbToYcbcrConstants;

}  // namespace framesink
