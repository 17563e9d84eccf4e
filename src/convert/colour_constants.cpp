#include "convert/colour_constants.hpp"

namespace framesink {
namespace {

constexpr std::int32_t truncated(double value) { return static_cast<std::int32_t>(value); }

// Rounds half away from zero.
constexpr std::int32_t rounded(double value) {
  return value < 0 ? -truncated(-value + 0.5) : truncated(value + 0.5);
}

constexpr std::int32_t toFixed214(double value) { return rounded(value * 16384.0); }

// BT.601 in studio range: luma is 219 steps from 16, chroma 224 steps around 128.
constexpr double kLumaOffset = 16.0;
constexpr double kChromaOffset = 128.0;
constexpr double kLuma = 1.16438356164384;          // 255 / 219
constexpr double kRedFromCr = 1.59602678571429;     // 255 / 224 x 2 (1 - 0.299)
constexpr double kGreenFromCb = -0.39176229009491;  // -255 / 224 x 2 (1 - 0.114) 0.114 / 0.587
constexpr double kGreenFromCr = -0.81296764723777;  // -255 / 224 x 2 (1 - 0.299) 0.299 / 0.587
constexpr double kBlueFromCb = 2.01723214285714;    // 255 / 224 x 2 (1 - 0.114)

}  // namespace

constinit const YcbcrToRgbConstants ycbcrToRgbConstants{
    .lumaOffset = truncated(kLumaOffset),
    .cbOffset = truncated(kChromaOffset),
    .crOffset = truncated(kChromaOffset),
    .luma = toFixed214(kLuma),
    .redFromCr = toFixed214(kRedFromCr),
    .greenFromCb = toFixed214(kGreenFromCb),
    .greenFromCr = toFixed214(kGreenFromCr),
    .blueFromCb = toFixed214(kBlueFromCb),
};

}  // namespace framesink
