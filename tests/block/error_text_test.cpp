#include "block/error_text.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "block/pending_error.hpp"
#include "host_block.hpp"

namespace framesink {
namespace {

using test::ErrorBuffer;

TEST(ErrorText, IsCopiedWithItsTerminator) {
  ErrorBuffer buffer;
  reportError(buffer.data(), "no memory");
  EXPECT_STREQ(buffer.data(), "no memory");
}

TEST(ErrorText, WritesNothingBehindTheTerminator) {
  ErrorBuffer buffer;
  reportError(buffer.data(), "ab");
  for (std::size_t i = 3; i < buffer.bytes.size(); ++i) {
    ASSERT_EQ(buffer.bytes[i], ErrorBuffer::kUntouched) << i;
  }
}

TEST(ErrorText, Of1023CharactersIsCopiedWithItsTerminator) {
  const std::string text(1023, 'x');
  ErrorBuffer buffer;
  reportError(buffer.data(), text.c_str());
  EXPECT_EQ(std::memcmp(buffer.data(), text.c_str(), 1024), 0);
}

TEST(ErrorText, Of1024CharactersIsCopiedWithoutATerminator) {
  const std::string text(1024, 'x');
  ErrorBuffer buffer;
  reportError(buffer.data(), text.c_str());
  EXPECT_EQ(std::string(buffer.data(), 1024), text);
}

TEST(ErrorText, BeyondTheBufferIsCutTo1024Bytes) {
  const std::string text = std::string(1024, 'x') + std::string(1000, 'y');
  ErrorBuffer buffer;
  reportError(buffer.data(), text.c_str());
  EXPECT_EQ(std::string(buffer.data(), 1024), text.substr(0, 1024));
}

TEST(ErrorText, NullTextCountsAsEmpty) {
  ErrorBuffer buffer;
  reportError(buffer.data(), nullptr);
  EXPECT_STREQ(buffer.data(), "");
  EXPECT_EQ(buffer.bytes[1], ErrorBuffer::kUntouched);
}

TEST(ErrorText, NullBufferTakesNothing) {
  reportError(nullptr, "text");
  reportError(nullptr, nullptr);
}

TEST(PendingError, NeverFires) {
  EXPECT_FALSE(isErrorPending());
  EXPECT_EQ(takePendingError(), nullptr);
  EXPECT_FALSE(isErrorPending());
}

}  // namespace
}  // namespace framesink
