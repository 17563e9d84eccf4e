// Centres a smaller frame in a larger one.
#pragma once

#include <cstdint>

namespace framesink {

// Sizes in samples: columns and rows of a column-major plane.
struct PlaneSize {
  std::int32_t width;
  std::int32_t height;
};

// True if centreIntoFrame would write only inside the destination's frame.width * frame.height
// samples.
bool fitsWhenCentred(PlaneSize source, PlaneSize frame);

// Fills `destination` (frame.width * frame.height samples of `dataType`) with the minimum of the
// type's range, then copies the source's columns (source.width of source.height samples each, one
// after another) into its middle. Deliberately does not clip: the caller makes sure that the source
// fits. Does nothing for a data type above 8.
void centreIntoFrame(std::uint32_t dataType, const void* source, PlaneSize sourceSize,
                     void* destination, PlaneSize frame);

}  // namespace framesink
