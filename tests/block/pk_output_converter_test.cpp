#include "block/pk_output_converter.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string_view>

#include "support/allocations.hpp"
#include "test_frame.hpp"

namespace framesink::test {
namespace {

constexpr std::uint32_t kUnknownRoutine = 999;

// Gives the tests access to the scratch planes.
class Converter : public PKOutputConverter {
 public:
  Converter(const InputDescription* input, bool allocatePlanes, std::uint32_t inputConversion = 0)
      : PKOutputConverter(0, false, nullptr, inputConversion, allocatePlanes, input) {}
  explicit Converter(const OutputDescription* output, bool allocatePacked = false,
                     std::uint32_t outputConversion = 0)
      : PKOutputConverter(outputConversion, allocatePacked, output, 0, false, nullptr) {}

  using PKOutputConverter::inputConversion;
  using PKOutputConverter::planeBuffer;

  int planeBuffers() const {
    return (planeBuffer(0) != nullptr) + (planeBuffer(1) != nullptr) + (planeBuffer(2) != nullptr);
  }
  // Writes `bytes` bytes; the address sanitizer reports a shorter plane.
  void touch(std::size_t plane, std::size_t bytes) { std::memset(planeBuffer(plane), 1, bytes); }
};

InputDescription withFourcc(std::string_view fourcc) {
  InputDescription input = describe(kRgb, FRAMESINK_UINT8, {2, 2});
  std::memcpy(input.fourcc, fourcc.data(), 4);
  return input;
}

OutputDescription outputOf(std::uint32_t first, std::uint32_t second, std::uint32_t bits) {
  OutputDescription output;
  output.valid = 1;
  output.firstDimension = first;
  output.secondDimension = second;
  output.bitsPerPixel = bits;
  return output;
}

std::size_t allocationsOf(const OutputDescription& output, bool allocatePacked,
                          std::uint32_t outputConversion) {
  const std::size_t before = allocationCount();
  const Converter converter(&output, allocatePacked, outputConversion);
  return allocationCount() - before;
}

TEST(PKOutputConverter, TellsWhetherTheInputIsValid) {
  InputDescription input = describe(kRgb, FRAMESINK_UINT8, {2, 2});
  EXPECT_TRUE(Converter(&input, false).isInputValid());
  input.valid = 0x80;
  EXPECT_TRUE(Converter(&input, false).isInputValid());
  input.valid = 0;
  EXPECT_FALSE(Converter(&input, false).isInputValid());
}

TEST(PKOutputConverter, NullDescriptionsCountAsNotValid) {
  const PKOutputConverter converter(0, true, nullptr, 0, true, nullptr);
  EXPECT_FALSE(converter.isInputValid());
  EXPECT_EQ(converter.packedBytes(), 0);
}

TEST(PKOutputConverter, ComparesTheFourCharacterCodeOnExactlyFourBytes) {
  for (const char* other : {"YUY1", "yuy2", "YUY\0", "XUY2", "UYVY", "    "}) {
    const InputDescription input = withFourcc({other, 4});
    EXPECT_FALSE(Converter(&input, false).isInputYuy2()) << other;
  }
  InputDescription input = withFourcc("YUY2");
  input.inputCount = 0x32595559;  // bytes behind the code do not count
  EXPECT_TRUE(Converter(&input, false).isInputYuy2());
}

TEST(PKOutputConverter, CopiesTheDescription) {
  InputDescription input = withFourcc("YUY2");
  const Converter converter(&input, false);
  std::memset(&input, 0, sizeof input);
  EXPECT_TRUE(converter.isInputValid());
  EXPECT_TRUE(converter.isInputYuy2());
  EXPECT_EQ(converter.planeBytes(0), 4U);
}

TEST(PKOutputConverter, PlaneBytesAreSampleSizeTimesWidthTimesHeight) {
  InputDescription input = describe(kYcbcr, 0, {10, 7});
  input.heights[2] = 3;
  for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
    input.dataType = type;
    const Converter converter(&input, false);
    EXPECT_EQ(converter.planeBytes(0), 70 * oracle::sampleBytes(type)) << oracle::typeName(type);
    EXPECT_EQ(converter.planeBytes(1), 35 * oracle::sampleBytes(type)) << oracle::typeName(type);
    EXPECT_EQ(converter.planeBytes(2), 15 * oracle::sampleBytes(type)) << oracle::typeName(type);
  }
}

TEST(PKOutputConverter, PlaneBytesOfUnsupportedTypesAreZero) {
  const InputDescription input = describe(kRgb, 9, {10, 7});
  EXPECT_EQ(Converter(&input, false).planeBytes(0), 0U);
}

TEST(PKOutputConverter, PackedBytesAreBitsPerPixelTimesBothDimensionsOverEight) {
  const OutputDescription output = outputOf(10, 7, 16);
  EXPECT_EQ(Converter(&output).packedBytes(), 140);
  const OutputDescription odd = outputOf(3, 3, 1);
  EXPECT_EQ(Converter(&odd).packedBytes(), 1);
}

TEST(PKOutputConverter, PackedBytesWrapAsSigned32BitNumbers) {
  const OutputDescription negative = outputOf(0x8000, 0x10000, 1);  // 2^31 bits.
  EXPECT_EQ(Converter(&negative).packedBytes(), std::numeric_limits<std::int32_t>::min() / 8);
  const OutputDescription wrapped = outputOf(0x10001, 0x10000, 8);  // 2^35 + 2^19 bits.
  EXPECT_EQ(Converter(&wrapped).packedBytes(), 0x10000);
}

TEST(PKOutputConverter, AllocatesThePackedBufferForTheFlagOrAnOutputConversion) {
  const OutputDescription output = outputOf(10, 7, 16);
  EXPECT_EQ(allocationsOf(output, false, 0), 0U);
  EXPECT_EQ(allocationsOf(output, true, 0), 1U);
  EXPECT_EQ(allocationsOf(output, false, kUnknownRoutine), 1U);
  EXPECT_EQ(allocationsOf(output, true, kUnknownRoutine), 1U);
}

TEST(PKOutputConverter, AllocatesThePackedBufferOnce) {
  const OutputDescription output = outputOf(10, 7, 16);
  Converter converter(&output);
  const std::size_t before = allocationCount();
  converter.allocatePackedBuffer();
  EXPECT_EQ(allocationCount() - before, 1U);
  converter.allocatePackedBuffer();
  EXPECT_EQ(allocationCount() - before, 1U);
}

TEST(PKOutputConverter, NegativePackedSizeIsNotAllocated) {
  const OutputDescription negative = outputOf(0x8000, 0x10000, 1);
  Converter(&negative, true).allocatePackedBuffer();
}

TEST(PKOutputConverter, AllocatesPlaneBuffersForTheFlagOrAnInputConversion) {
  const InputDescription input = describe(kRgb, FRAMESINK_UINT8, {4, 3});
  EXPECT_EQ(Converter(&input, false).planeBuffers(), 0);
  EXPECT_EQ(Converter(&input, true).planeBuffers(), 3);
  EXPECT_EQ(Converter(&input, false, PK_DOUBLE_TO_UINT8).planeBuffers(), 3);
  // The request alone counts: no such routine exists.
  const Converter unknown(&input, false, kUnknownRoutine);
  EXPECT_EQ(unknown.inputConversion(), nullptr);
  EXPECT_EQ(unknown.planeBuffers(), 3);
}

TEST(PKOutputConverter, OneComponentHasOnePlaneBuffer) {
  InputDescription input = describe(kRgb, FRAMESINK_UINT8, {4, 3});
  input.componentCount = 1;
  EXPECT_EQ(Converter(&input, true).planeBuffers(), 1);
  input.componentCount = 2;
  EXPECT_EQ(Converter(&input, true).planeBuffers(), 3);
}

TEST(PKOutputConverter, PlaneBuffersHoldAWholeFrameEach) {
  const InputDescription input = describe(kYcbcr, FRAMESINK_INT32, {10, 7});
  Converter converter(&input, true);
  for (std::size_t plane = 0; plane < 3; ++plane) converter.touch(plane, 4 * 70);
}

TEST(PKOutputConverter, PlaneBuffersHoldLargerChromaPlanes) {
  InputDescription input = describe(kRgb, FRAMESINK_INT16, {4, 4});
  input.widths[1] = 9;
  input.heights[2] = 11;
  Converter converter(&input, true);
  converter.touch(1, 2 * 9 * 4);
  converter.touch(2, 2 * 4 * 11);
}

TEST(PKOutputConverter, PlaneBuffersHoldDoublesWhenThereIsAnInputConversion) {
  const InputDescription input = describe(kYcbcr, FRAMESINK_UINT8, {10, 7});
  Converter converter(&input, false, PK_DOUBLE_TO_UINT8);
  ASSERT_NE(converter.inputConversion(), nullptr);
  for (std::size_t plane = 0; plane < 3; ++plane) converter.touch(plane, 8 * 70);
}

TEST(PKOutputConverter, UnsupportedTypesHaveNoPlaneBuffers) {
  for (const std::uint32_t type : {9U, 0xFFFFFFFFU}) {
    const InputDescription input = describe(kRgb, type, {4, 3});
    EXPECT_EQ(Converter(&input, true, PK_DOUBLE_TO_UINT8).planeBuffers(), 0) << type;
  }
}

TEST(PKOutputConverter, PlanesBeyondMemoryThrowBadAlloc) {
  for (std::uint32_t type = 0; type < oracle::kTypeCount; ++type) {
    const InputDescription input = describe(kRgb, type, {0xFFFFFFFF, 0xFFFFFFFF});
    EXPECT_THROW(Converter(&input, true), std::bad_alloc) << oracle::typeName(type);
  }
}

TEST(PKOutputConverter, ItsOwnOutputDoesNothing) {
  PKOutputConverter converter(0, false, nullptr, 0, false, nullptr);
  converter.outputFrame(nullptr, nullptr, nullptr);
  converter.finishOutput();
}

}  // namespace
}  // namespace framesink::test
