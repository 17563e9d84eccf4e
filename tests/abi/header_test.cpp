// The public header's types, as a host compiles them.
#include "framesink/framesink.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>
#include <vector>

#include "description_layout.h"

namespace framesink::test {
namespace {

using std::int32_t;
using std::uint32_t;
using std::uint64_t;
using std::uint8_t;

static_assert(std::is_same_v<decltype(libCreate),
                             void*(char*, uint64_t, const char*, const char*, uint8_t,
                                   const InputDescription*, uint8_t, uint32_t, uint32_t, uint8_t,
                                   uint32_t, uint32_t, uint32_t, uint8_t, uint8_t)>);
static_assert(std::is_same_v<decltype(libStart), void(void*, char*)>);
static_assert(std::is_same_v<decltype(libUpdate), void(void*, char*, const void*, const void*,
                                                       const void*, uint32_t, uint32_t)>);
static_assert(std::is_same_v<decltype(libOutputs), void(void*)>);
static_assert(std::is_same_v<decltype(libTerminate), void(void*)>);
static_assert(std::is_same_v<decltype(libDestroy), void(void*)>);
static_assert(
    std::is_same_v<decltype(createVideoWindow),
                   void(const char*, uint8_t, const uint32_t*, const uint32_t*, uint8_t)>);
static_assert(std::is_same_v<decltype(destroyVideoWindow), void(const char*)>);
static_assert(std::is_same_v<decltype(getWindowPosSize), void(const char*, int32_t*, int32_t*)>);
static_assert(std::is_same_v<decltype(isPlayerOpen), uint8_t(const char*)>);
static_assert(
    std::is_same_v<decltype(renameVideoWindow), void(const char*, const char*, const char*)>);
static_assert(std::is_same_v<decltype(framesink_version), const char* const>);
static_assert(std::is_same_v<decltype(framesink_build_date), const char* const>);
static_assert(std::is_same_v<decltype(framesink_relative_path), const char* const>);

const std::vector<std::size_t> kLayout{0, 1, 24, 28, 32, 36, 44, 48, 56, 60, 64, 68, 80, 88};

TEST(Header, DescriptionIsLaidOutAsTheHostsRecord) {
  const std::size_t inCpp[] = DESCRIPTION_LAYOUT;
  EXPECT_EQ(std::vector<std::size_t>(std::begin(inCpp), std::end(inCpp)), kLayout);
}

TEST(Header, DescriptionIsTheSameInC) {
  EXPECT_EQ(std::vector<std::size_t>(descriptionLayoutInC,
                                     descriptionLayoutInC + DESCRIPTION_LAYOUT_ITEMS),
            kLayout);
}

TEST(Header, FieldsHaveTheWidthsOfTheHostsRecord) {
  static_assert(std::is_same_v<decltype(InputDescription::valid), uint8_t>);
  static_assert(std::is_same_v<decltype(InputDescription::fourcc), char[4]>);
  static_assert(std::is_same_v<decltype(InputDescription::inputCount), uint32_t>);
  static_assert(std::is_same_v<decltype(InputDescription::componentCount), uint32_t>);
  static_assert(std::is_same_v<decltype(InputDescription::widths), uint32_t[3]>);
  static_assert(std::is_same_v<decltype(InputDescription::heights), uint32_t[3]>);
  static_assert(std::is_same_v<decltype(InputDescription::dataType), uint32_t>);
  static_assert(std::is_same_v<decltype(InputDescription::layout), int32_t>);
  static_assert(std::is_trivial_v<InputDescription>);
}

TEST(Header, NamesTheValuesOfTheInterface) {
  EXPECT_EQ(FRAMESINK_ERROR_BYTES, 1024);
  EXPECT_EQ(FRAMESINK_CONFIGURED_SIZE, 4294967295U);
  EXPECT_EQ(FRAMESINK_POSITION_UNDEFINED, 0x1FFF0000U);
  EXPECT_EQ(FRAMESINK_DOUBLE, 0);
  EXPECT_EQ(FRAMESINK_SINGLE, 1);
  EXPECT_EQ(FRAMESINK_INT8, 2);
  EXPECT_EQ(FRAMESINK_UINT8, 3);
  EXPECT_EQ(FRAMESINK_INT16, 4);
  EXPECT_EQ(FRAMESINK_UINT16, 5);
  EXPECT_EQ(FRAMESINK_INT32, 6);
  EXPECT_EQ(FRAMESINK_UINT32, 7);
  EXPECT_EQ(FRAMESINK_BOOLEAN, 8);
}

}  // namespace
}  // namespace framesink::test
