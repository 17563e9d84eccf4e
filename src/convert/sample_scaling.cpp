#include "convert/sample_scaling.hpp"

namespace framesink {

template <std::uint32_t Id>
std::uint32_t scaleTo8Bit(SampleOf<Id> sample) {
  return SampleScale<Id>{}(sample);
}

template std::uint32_t scaleTo8Bit<kDouble>(double);
template std::uint32_t scaleTo8Bit<kSingle>(float);
template std::uint32_t scaleTo8Bit<kInt8>(std::int8_t);
template std::uint32_t scaleTo8Bit<kUint8>(std::uint8_t);
template std::uint32_t scaleTo8Bit<kInt16>(std::int16_t);
template std::uint32_t scaleTo8Bit<kUint16>(std::uint16_t);
template std::uint32_t scaleTo8Bit<kInt32>(std::int32_t);
template std::uint32_t scaleTo8Bit<kUint32>(std::uint32_t);
template std::uint32_t scaleTo8Bit<kBoolean>(std::uint8_t);

}  // namespace framesink
