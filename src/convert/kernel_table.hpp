// What the kernel families share: the form of a kernel and of their tables, and the size of a plane.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "convert/sample_types.hpp"

namespace framesink {

// One conversion of a whole frame. `width` is columns, `height` rows, in pixels. Non-zero `layout`
// means column-major planes (row r, column c is sample r + c * height); zero selects the family's
// second path. Each family's header states what is read and written.
//
// Re-entrant. Keeps no state, allocates nothing, checks nothing: the caller is responsible for
// pointers, sizes and the room at `out`. Planes need the alignment of their sample type only.
using ConversionKernel = void (*)(const void* plane0, const void* plane1, const void* plane2,
                                  std::uint8_t* out, std::int32_t width, std::int32_t height,
                                  std::int32_t layout);

// One kernel per DataTypeId, then a null entry that closes the table and is never read.
using KernelTable = std::array<ConversionKernel, kDataTypeCount + 1>;

// Makes a table from make.operator()<Id>(), which gives one kernel per sample type.
template <class Make>
constexpr KernelTable kernelTable(Make make) {
  KernelTable table{};
  const auto kernels = tableOfSampleTypes(make);
  for (std::size_t id = 0; id < kernels.size(); ++id) table[id] = kernels[id];
  return table;
}

// Samples of a plane. Deliberately the wrapping 32-bit product that hardware computes, so two
// negative sizes count as a positive number of samples.
inline std::ptrdiff_t planeSamples(std::int32_t width, std::int32_t height) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(width) *
                                   static_cast<std::uint32_t>(height));
}

}  // namespace framesink
