#include "block/error_text.hpp"

#include <algorithm>
#include <cstring>

#include "framesink/framesink.h"

namespace framesink {

void reportError(char* errorMessage, const char* text) {
  if (errorMessage == nullptr) return;
  if (text == nullptr) text = "";
  const std::size_t count = std::min<std::size_t>(std::strlen(text) + 1, FRAMESINK_ERROR_BYTES);
  std::strncpy(errorMessage, text, count);
}

}  // namespace framesink
