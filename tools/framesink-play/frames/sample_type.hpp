// The nine sample types of a host's planes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string_view>

#include "frames/picture.hpp"

namespace framesink::play {

// How the samples of a plane follow one another.
enum class Layout { kRow, kColumn };

// One plane of samples of some type, in any order.
struct SampleGrid {
  const std::byte* first;
  std::ptrdiff_t rowStep;     // samples from one row to the next
  std::ptrdiff_t columnStep;  // samples from one column to the next
  int width;
  int height;
};

struct SampleType {
  const char* name;
  std::uint32_t id;   // a FramesinkDataType
  std::size_t bytes;  // of one sample
  // Writes a component as a plane of width x height samples of the type: 0 becomes the minimum of
  // its range, `one` the maximum; integers are rounded to nearest, boolean is true from half on.
  void (*store)(const Component& component, Layout layout, void* plane);
  // Writes samples of the type as a plane, bit for bit.
  void (*copy)(const SampleGrid& samples, Layout layout, void* plane);
  // Writes one sample as a number.
  void (*print)(std::ostream& out, const void* sample);
};

std::span<const SampleType> sampleTypes();

// The type of that name; null when there is none.
const SampleType* findSampleType(std::string_view name);

}  // namespace framesink::play
