#include "convert/kernel_selection.hpp"

#include "convert/kernel_table.hpp"
#include "convert/planes_to_rgb.hpp"
#include "convert/planes_to_yuy2.hpp"
#include "convert/ycbcr_to_rgb.hpp"
#include "convert/ycbcr_to_yuy2.hpp"

namespace framesink {
namespace {

// One function per output format: the table of an input kind, or null for an unknown kind.
const KernelTable* rgbPlanesTable(std::int32_t inputKind) {
  switch (inputKind) {
    case kInputIntensity:
      return &intensityToRgbKernels;
    case kInputYcbcr422:
      return &ycbcrToRgbKernels;
    case kInputRgb:
      return &rgbToRgbKernels;
    default:
      return nullptr;
  }
}

const KernelTable* yuy2Table(std::int32_t inputKind) {
  switch (inputKind) {
    case kInputIntensity:
      return &intensityToYuy2Kernels;
    case kInputYcbcr422:
      return &ycbcrToYuy2Kernels;
    case kInputRgb:
      return &rgbToYuy2Kernels;
    default:
      return nullptr;
  }
}

const KernelTable* kernelsFor(std::int32_t inputKind, std::int32_t outputFormat) {
  switch (outputFormat) {
    case kOutputRgbPlanes:
      return rgbPlanesTable(inputKind);
    case kOutputYuy2:
      return yuy2Table(inputKind);
    default:
      return nullptr;
  }
}

}  // namespace

ConversionKernel selectConversionKernel(std::int32_t inputKind, std::int32_t outputFormat,
                                        std::uint32_t dataType) {
  const KernelTable* kernels = kernelsFor(inputKind, outputFormat);
  return kernels != nullptr && dataType < kDataTypeCount ? (*kernels)[dataType] : nullptr;
}

}  // namespace framesink
