#include "command_line/parse_raw_form.hpp"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "command_line/numbers.hpp"

namespace framesink::play {
namespace {

std::vector<std::string> partsOf(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t end; (end = text.find(separator, begin)) != std::string::npos; begin = end + 1) {
    parts.push_back(text.substr(begin, end - begin));
  }
  parts.push_back(text.substr(begin));
  return parts;
}

}  // namespace

std::optional<RawForm> parseRawForm(const std::string& text) {
  const auto parts = partsOf(text, ':');
  if (parts.size() < 3 || parts.size() > 4) return std::nullopt;
  const auto size = pairOf(parts[0], 'x');
  const SampleType* type = findSampleType(parts[1]);
  const auto kind = std::ranges::find(kKinds, parts[2], &KindInfo::name);
  const bool packed = parts.size() == 4;
  if (!size || type == nullptr || kind == kKinds.end() || (packed && parts[3] != "packed")) {
    return std::nullopt;
  }
  const auto [width, height] = *size;
  if (width < 1 || height < 1 || std::int64_t{width} * height > kMostFramePixels) {
    return std::nullopt;
  }
  if (sentWidth(kind->kind, width) != width) return std::nullopt;
  return RawForm{width, height, type, kind->kind, packed};
}

}  // namespace framesink::play
