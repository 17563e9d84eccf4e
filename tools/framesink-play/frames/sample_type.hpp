// The nine sample types of a host's planes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string_view>

#include "frames/picture.hpp"

namespace framesink::play {

// The order of the samples in a plane: row by row or column by column.
enum class Layout { kRow, kColumn };

// One plane of samples in memory, of any type and order.
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
  // Writes a component as a plane of this type. Code 0 becomes the minimum of the type's range,
  // `one` its maximum. Integers are rounded to nearest; a boolean is true from 0.5.
  void (*store)(const Component& component, Layout layout, void* plane);
  // Copies samples of this type into a plane, bit for bit.
  void (*copy)(const SampleGrid& samples, Layout layout, void* plane);
  // Prints one sample as a number.
  void (*print)(std::ostream& out, const void* sample);
};

std::span<const SampleType> sampleTypes();

// Returns the type called `name`, or null.
const SampleType* findSampleType(std::string_view name);

}  // namespace framesink::play
