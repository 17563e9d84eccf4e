#include "simd/colour_constants.hpp"

namespace framesink {
namespace {

constexpr std::int32_t truncated(double value) { return static_cast<std::int32_t>(value); }

// Rounds half away from zero.
constexpr std::int32_t rounded(double value) {
  return value < 0 ? -truncated(-value + 0.5) : truncated(value + 0.5);
}

constexpr std::int32_t toFixed214(double value) { return rounded(value * 16384.0); }

// ITU-R BT.601 in studio range: luma is 0.299 R + 0.587 G + 0.114 B in 219 steps from 16, the
// colour differences B - luma and R - luma are 224 steps around 128.
constexpr double kLumaOffset = 16.0;
constexpr double kChromaOffset = 128.0;

// YCbCr to RGB, both in 8-bit steps.
constexpr double kLuma = 1.16438356164384;          // 255 / 219
constexpr double kRedFromCr = 1.59602678571429;     // 255 / 224 x 2 (1 - 0.299)
constexpr double kGreenFromCb = -0.39176229009491;  // -255 / 224 x 2 (1 - 0.114) 0.114 / 0.587
constexpr double kGreenFromCr = -0.81296764723777;  // -255 / 224 x 2 (1 - 0.299) 0.299 / 0.587
constexpr double kBlueFromCb = 2.01723214285714;    // 255 / 224 x 2 (1 - 0.114)

// RGB in 0..1 to YCbCr in 8-bit steps. The kernels deliberately feed 8-bit samples and divide by
// 256, not 255, so white has luma 234.
constexpr double kLumaFromRed = 65.481;              // 219 x 0.299
constexpr double kLumaFromGreen = 128.553;           // 219 x 0.587
constexpr double kLumaFromBlue = 24.966;             // 219 x 0.114
constexpr double kCbFromRed = -37.79683972911964;    // -112 x 0.299 / (1 - 0.114)
constexpr double kCbFromGreen = -74.20316027088036;  // -112 x 0.587 / (1 - 0.114)
constexpr double kCbFromBlue = 112.0;                // 224 / 2
constexpr double kCrFromRed = 112.0;                 // 224 / 2
constexpr double kCrFromGreen = -93.78601997146933;  // -112 x 0.587 / (1 - 0.299)
constexpr double kCrFromBlue = -18.213980028530674;  // -112 x 0.114 / (1 - 0.299)

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

constinit const RgbToYcbcrConstants rgbToYcbcrConstants{
    .lumaOffset = truncated(kLumaOffset),
    .cbOffset = truncated(kChromaOffset),
    .crOffset = truncated(kChromaOffset),
    .lumaFromRed = rounded(kLumaFromRed),
    .lumaFromGreen = rounded(kLumaFromGreen),
    .lumaFromBlue = rounded(kLumaFromBlue),
    .cbFromRed = rounded(kCbFromRed),
    .cbFromGreen = rounded(kCbFromGreen),
    .cbFromBlue = rounded(kCbFromBlue),
    .crFromRed = rounded(kCrFromRed),
    .crFromGreen = rounded(kCrFromGreen),
    .crFromBlue = rounded(kCrFromBlue),
};

}  // namespace framesink
