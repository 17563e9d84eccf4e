#include "convert/kernel_selection.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "convert/sample_rows.hpp"
#include "convert/sample_types.hpp"
#include "kernel_cases.hpp"
#include "oracle.hpp"
#include "sample_pool.hpp"
#include "support/allocations.hpp"

namespace framesink {
namespace {

constexpr std::uint32_t kLargestId = std::numeric_limits<std::uint32_t>::max();
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

template <class Visit>
void forEachKernel(const Visit& visit) {
  for (const std::int32_t format : {kOutputRgbPlanes, kOutputYuy2}) {
    for (const std::int32_t kind : {kInputRgb, kInputIntensity, kInputYcbcr422}) {
      for (std::uint32_t dataType = 0; dataType < kDataTypeCount; ++dataType) {
        visit(selectConversionKernel(kind, format, dataType));
      }
    }
  }
}

TEST(KernelSelection, EveryKindFormatAndTypeHasAKernelOfItsOwn) {
  std::set<ConversionKernel> kernels;
  forEachKernel([&](ConversionKernel kernel) { kernels.insert(kernel); });
  EXPECT_EQ(kernels.size(), 54U);
  EXPECT_EQ(kernels.count(nullptr), 0U);
}

TEST(KernelSelection, DataTypeAboveEightGivesNull) {
  for (const std::int32_t kind : {kInputRgb, kInputIntensity, kInputYcbcr422}) {
    for (const std::int32_t format : {kOutputRgbPlanes, kOutputYuy2}) {
      for (const std::uint32_t dataType : {9U, 10U, 255U, 256U, 2147483648U, kLargestId}) {
        EXPECT_EQ(selectConversionKernel(kind, format, dataType), nullptr)
            << kind << ", " << format << ", " << dataType;
      }
    }
  }
}

// Booleans have the sample size of uint8 but are scaled instead of copied.
TEST(KernelSelection, DataTypeEightGivesTheBooleanRgbKernel) {
  const std::uint8_t sample = 1;
  std::array<std::uint8_t, 3> out{7, 7, 7};
  selectConversionKernel(kInputRgb, kOutputRgbPlanes, 8)(&sample, &sample, &sample, out.data(), 1,
                                                         1, 1);
  const auto scaled = static_cast<std::uint8_t>(oracle::scaleTo8Bit(8, &sample));
  EXPECT_EQ(out, (std::array{scaled, scaled, scaled}));
}

TEST(NaturalKernelSelection, DataTypeEightGivesTheBooleanRgbKernel) {
  const std::uint8_t sample = 1;
  std::array<std::uint8_t, 3> out{};
  selectConversionKernel(kInputRgb, kOutputRgbPlanes, 8)(&sample, &sample, &sample, out.data(), 1,
                                                         1, 1);
  EXPECT_EQ(out, (std::array<std::uint8_t, 3>{255, 255, 255}));
}

TEST(KernelSelection, UnknownInputKindGivesNull) {
  for (const std::int32_t kind : {kLowest, -1, 0, 4, 5, kHighest}) {
    for (const std::int32_t format : {kOutputRgbPlanes, kOutputYuy2}) {
      for (std::uint32_t dataType = 0; dataType < kDataTypeCount; ++dataType) {
        EXPECT_EQ(selectConversionKernel(kind, format, dataType), nullptr) << kind;
      }
    }
  }
}

TEST(KernelSelection, UnknownOutputFormatGivesNull) {
  for (const std::int32_t format : {kLowest, -1, 0, 2, 4, kHighest}) {
    for (const std::int32_t kind : {kInputRgb, kInputIntensity, kInputYcbcr422}) {
      for (std::uint32_t dataType = 0; dataType < kDataTypeCount; ++dataType) {
        EXPECT_EQ(selectConversionKernel(kind, format, dataType), nullptr) << format;
      }
    }
  }
}

// The second and third plane are null: the intensity kernel must not read them.
TEST(KernelSelection, IntensityForwardsItsFirstPlaneThreeTimesToTheRgbKernel) {
  std::mt19937 random(2);
  for (std::uint32_t dataType = 0; dataType < kDataTypeCount; ++dataType) {
    std::vector<std::uint8_t> plane(35 * oracle::sampleBytes(dataType));
    oracle::SamplePool(dataType).fill(plane.data(), 35, random);
    for (const std::int32_t layout : {1, 0, 2}) {
      std::vector<std::uint8_t> expected(3 * 35, 99);
      std::vector<std::uint8_t> actual(expected);
      selectConversionKernel(kInputRgb, kOutputRgbPlanes, dataType)(
          plane.data(), plane.data(), plane.data(), expected.data(), 7, 5, layout);
      selectConversionKernel(kInputIntensity, kOutputRgbPlanes, dataType)(
          plane.data(), nullptr, nullptr, actual.data(), 7, 5, layout);
      EXPECT_EQ(actual, expected) << oracle::typeName(dataType) << ", layout " << layout;
    }
  }
}

TEST(KernelSelection, AllocatesNothing) {
  const std::size_t before = test::allocationCount();
  forEachKernel([](ConversionKernel) {});
  EXPECT_EQ(test::allocationCount(), before);
}

TEST(KernelSelection, KernelsAllocateNothing) {
  // Overlapping pairs read one sample past the end.
  const std::vector<double> plane(70 * 9 + 1, 0.25);
  std::vector<std::uint8_t> out(4 * plane.size());
  const std::size_t before = test::allocationCount();
  ASSERT_GT(before, 0U);  // The counter works: it has counted the two vectors above.
  forEachKernel([&](ConversionKernel kernel) {
    for (const std::int32_t layout : {1, 0}) {
      kernel(plane.data(), plane.data(), plane.data(), out.data(), 70, 9, layout);
    }
  });
  EXPECT_EQ(test::allocationCount(), before);
}

// Each thread selects and runs every kernel at the same time as the others, into its own output.
TEST(KernelSelection, SelectionAndKernelsRunInSeveralThreadsAtOnce) {
  const std::vector<double> plane(70 * 9, 0.25);
  const auto convertAll = [&plane](std::vector<std::uint8_t>& outputs) {
    forEachKernel([&](ConversionKernel kernel) {
      std::vector<std::uint8_t> out(4 * plane.size());
      kernel(plane.data(), plane.data(), plane.data(), out.data(), 70, 9, 1);
      outputs.insert(outputs.end(), out.begin(), out.end());
    });
  };
  std::vector<std::uint8_t> expected;
  convertAll(expected);
  std::array<std::vector<std::uint8_t>, 4> outputs;
  std::vector<std::thread> threads;
  for (auto& output : outputs) threads.emplace_back([&] { convertAll(output); });
  for (std::thread& thread : threads) thread.join();
  for (const auto& output : outputs) EXPECT_TRUE(output == expected);
}

// Otherwise a check "on every instruction set" would run the same code several times.
TEST(InstructionSets, EachHasRowScalersOfItsOwn) {
  std::set<const void*> scalers;
  for (const InstructionSet& set : instructionSets()) {
    set.use();
    scalers.insert(&rowScalers());
  }
  instructionSets().front().use();
  EXPECT_EQ(scalers.size(), instructionSets().size());
  EXPECT_GT(scalers.size(), 1U);
}

}  // namespace
}  // namespace framesink
