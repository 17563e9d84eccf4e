// The nine sample types of input planes and the one walk over them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>

namespace framesink {

enum DataTypeId : std::uint32_t {
  kDouble,
  kSingle,
  kInt8,
  kUint8,
  kInt16,
  kUint16,
  kInt32,
  kUint32,
  kBoolean  // one byte
};

inline constexpr std::uint32_t kDataTypeCount = 9;

// The C++ type of one sample.
template <std::uint32_t Id>
using SampleOf =
    std::tuple_element_t<Id, std::tuple<double, float, std::int8_t, std::uint8_t, std::int16_t,
                                        std::uint16_t, std::int32_t, std::uint32_t, std::uint8_t>>;

// The table of make.operator()<Id>() for the nine types in order. With it, whatever exists once per
// type is written once and looked up by the type's number.
template <class Make>
constexpr auto tableOfSampleTypes(Make make) {
  return [&]<std::uint32_t... Id>(std::integer_sequence<std::uint32_t, Id...>) {
    return std::array{make.template operator()<Id>()...};
  }
  (std::make_integer_sequence<std::uint32_t, kDataTypeCount>{});
}

// Bytes of one sample; 0 for a number that is no DataTypeId.
constexpr std::size_t sampleBytes(std::uint32_t dataType) {
  constexpr auto kBytes =
      tableOfSampleTypes([]<std::uint32_t Id>() { return sizeof(SampleOf<Id>); });
  return dataType < kDataTypeCount ? kBytes[dataType] : 0;
}

}  // namespace framesink
