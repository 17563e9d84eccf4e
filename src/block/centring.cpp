#include "block/centring.hpp"

#include <algorithm>
#include <cstddef>

#include "convert/sample_types.hpp"
#include "pixkit/pixkit.h"

namespace framesink {
namespace {

// Index in the frame of the source's first sample; halves truncate toward zero.
std::int64_t firstSample(PlaneSize source, PlaneSize frame) {
  const std::int64_t left = (std::int64_t{frame.width} - source.width) / 2;
  const std::int64_t top = (std::int64_t{frame.height} - source.height) / 2;
  return left * frame.height + top;
}

template <std::uint32_t Id>
void centre(const void* source, PlaneSize sourceSize, void* destination, PlaneSize frame) {
  using Sample = SampleOf<Id>;
  const auto* from = static_cast<const Sample*>(source);
  auto* to = static_cast<Sample*>(destination);
  const std::int64_t frameSamples = std::int64_t{frame.width} * frame.height;
  std::fill_n(to, frameSamples, static_cast<Sample>(videoTraits<Id>::min));
  if (sourceSize.width < 1 || sourceSize.height < 1) return;
  to += firstSample(sourceSize, frame);
  for (std::int32_t column = 0; column < sourceSize.width; ++column) {
    std::copy_n(from, sourceSize.height, to);
    from += sourceSize.height;
    to += frame.height;
  }
}

using Centre = void (*)(const void*, PlaneSize, void*, PlaneSize);

constexpr auto kCentre =
    tableOfSampleTypes([]<std::uint32_t Id>() -> Centre { return centre<Id>; });

}  // namespace

bool fitsWhenCentred(PlaneSize source, PlaneSize frame) {
  if (source.width < 1 || source.height < 1) return source.width < 1 || source.height == 0;
  if (frame.width < 1 || frame.height < 1) return false;
  const std::int64_t first = firstSample(source, frame);
  const std::int64_t last =
      first + std::int64_t{source.width - 1} * frame.height + source.height - 1;
  return first >= 0 && last < std::int64_t{frame.width} * frame.height;
}

void centreIntoFrame(std::uint32_t dataType, const void* source, PlaneSize sourceSize,
                     void* destination, PlaneSize frame) {
  if (dataType < kDataTypeCount) kCentre[dataType](source, sourceSize, destination, frame);
}

}  // namespace framesink
