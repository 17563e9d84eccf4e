#include "block/pending_error.hpp"

#include <cstdint>
#include <utility>

namespace framesink {
namespace {

constinit std::int32_t flag = 0;
constinit const char* text = nullptr;

}  // namespace

bool isErrorPending() { return flag != 0; }

const char* takePendingError() {
  flag = 0;
  return std::exchange(text, nullptr);
}

}  // namespace framesink
