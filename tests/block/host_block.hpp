// A block as a host uses it: created, updated and destroyed through the exports.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

#include "framesink/framesink.h"
#include "test_frame.hpp"

namespace framesink::test {

// The arguments of libCreate besides the description. Names default to the running test's, so that
// tests may share a process.
struct BlockRequest {
  std::string name = testName();
  std::string title = testName();
  std::uint64_t hostContext = 0x0123456789ABCDEF;
  std::uint8_t fullscreen = 0;
  std::uint8_t openAtStart = 0;
  std::uint32_t windowX = 60;
  std::uint32_t windowY = 80;
  std::uint8_t useWindowSize = 0;
  std::uint32_t windowWidth = 0;
  std::uint32_t windowHeight = 0;
  std::uint32_t inputConversion = 0;
  std::uint8_t allocatePlaneBuffers = 0;
  std::uint8_t synchronous = 0;

  static std::string testName() {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    return std::string(test->test_suite_name()) + "." + test->name();
  }
};

// The host's error buffer. It has exactly the required size, so that the address sanitizer finds
// writes beyond it, and is filled with kUntouched at first.
struct ErrorBuffer {
  static constexpr char kUntouched = '#';
  std::vector<char> bytes = std::vector<char>(FRAMESINK_ERROR_BYTES, kUntouched);

  char* data() { return bytes.data(); }
  bool isUntouched() const { return bytes == ErrorBuffer{}.bytes; }
};

inline void* createBlock(char* errorMessage, const BlockRequest& request,
                         const InputDescription* description) {
  return libCreate(errorMessage, request.hostContext, request.name.c_str(), request.title.c_str(),
                   request.fullscreen, description, request.openAtStart, request.windowX,
                   request.windowY, request.useWindowSize, request.windowWidth,
                   request.windowHeight, request.inputConversion, request.allocatePlaneBuffers,
                   request.synchronous);
}

// Fails the test if the library reports an error.
class HostBlock {
 public:
  explicit HostBlock(const InputDescription& description, const BlockRequest& request = {})
      : handle_(createBlock(error_.data(), request, &description)) {
    EXPECT_NE(handle_, nullptr);
    libStart(handle_, error_.data());
  }
  ~HostBlock() {
    libDestroy(handle_);
    EXPECT_TRUE(error_.isUntouched()) << error_.data();
  }
  HostBlock(const HostBlock&) = delete;
  HostBlock& operator=(const HostBlock&) = delete;

  void* handle() const { return handle_; }

  void update(const void* plane1, const void* plane2, const void* plane3,
              Size size = {FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE}) {
    libUpdate(handle_, error_.data(), plane1, plane2, plane3, size.width, size.height);
  }

  void update(const HostPlanes& planes,
              Size size = {FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE}) {
    update(planes[0], planes[1], planes[2], size);
  }

 private:
  ErrorBuffer error_;
  void* handle_;
};

}  // namespace framesink::test
