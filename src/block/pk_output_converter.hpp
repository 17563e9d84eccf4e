// The base of output blocks: descriptions of input and output, the media library's conversion
// routines, and the scratch buffers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "framesink/framesink.h"
#include "pixkit/pixkit.h"

namespace framesink {

// 40 bytes; the reserved ones are not read.
struct OutputDescription {
  std::uint8_t valid = 0;
  std::uint8_t reserved1[15] = {};
  std::uint32_t firstDimension = 0;
  std::uint32_t secondDimension = 0;
  std::uint8_t reserved2[4] = {};
  std::uint32_t bitsPerPixel = 0;
  double reserved3 = 0;
};
static_assert(offsetof(OutputDescription, firstDimension) == 16);
static_assert(offsetof(OutputDescription, secondDimension) == 20);
static_assert(offsetof(OutputDescription, bitsPerPixel) == 28);
static_assert(offsetof(OutputDescription, reserved3) == 32);
static_assert(sizeof(OutputDescription) == 40);

class PKOutputConverter {
 public:
  // Null descriptions count as not valid. Allocates the packed buffer if allocatePacked or
  // outputConversion is set, and the plane buffers if allocatePlanes or inputConversion is set.
  // Throws std::bad_alloc.
  PKOutputConverter(std::uint32_t outputConversion, bool allocatePacked,
                    const OutputDescription* output, std::uint32_t inputConversion,
                    bool allocatePlanes, const InputDescription* input);
  virtual ~PKOutputConverter();
  PKOutputConverter(const PKOutputConverter&) = delete;
  PKOutputConverter& operator=(const PKOutputConverter&) = delete;

  // Takes one frame of the configured size. Does nothing here.
  virtual void outputFrame(const void* plane1, const void* plane2, const void* plane3);

  // Dormant: part of the interface of output blocks. Does nothing and is never called.
  virtual void finishOutput();

  bool isInputValid() const { return input_.valid != 0; }
  bool isInputYuy2() const;

  // Bytes of `plane` (0..2): sample size x width x height.
  std::size_t planeBytes(std::size_t plane) const;

  // Bytes of the packed output: bits per pixel x both dimensions / 8, deliberately in signed 32-bit
  // arithmetic that wraps.
  std::int32_t packedBytes() const;

  // Does nothing if the packed buffer exists. Throws std::bad_alloc.
  void allocatePackedBuffer();

 protected:
  using Buffer = std::unique_ptr<std::byte[]>;

  const InputDescription& input() const { return input_; }
  PK_DoubleToFixFcn inputConversion() const { return inputConversion_; }

  // Null when the block has no scratch plane of that number (0..2).
  std::byte* planeBuffer(std::size_t plane) const { return planeBuffers_[plane].get(); }

 private:
  void allocatePlaneBuffers();

  const OutputDescription output_;
  const InputDescription input_;
  const PK_DoubleToFixFcn inputConversion_;   // null: samples are not converted
  const PK_DoubleToFixFcn outputConversion_;  // null: samples are not converted
  Buffer packedBuffer_;
  std::array<Buffer, 3> planeBuffers_;  // scratch for centring and input conversion
};

}  // namespace framesink
