#include "raw_form.hpp"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "numbers.hpp"

namespace framesink::play {
namespace {

constexpr std::int64_t kMostPixels = 1 << 27;  // of one frame

std::vector<std::string> partsOf(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t end; (end = text.find(separator, begin)) != std::string::npos; begin = end + 1) {
    parts.push_back(text.substr(begin, end - begin));
  }
  parts.push_back(text.substr(begin));
  return parts;
}

std::size_t samplesOf(const RawForm& form, int plane) {
  return static_cast<std::size_t>(planeWidth(form.kind, plane, form.width)) * form.height;
}

SampleGrid packedPlane(const RawForm& form, const std::byte* frame, int plane) {
  const int columns = planeWidth(form.kind, plane, form.width);
  const int perRow = form.width * (form.kind == Kind::kRgb        ? 3
                                   : form.kind == Kind::kYcbcr422 ? 2
                                                                  : 1);
  const int offset = form.kind == Kind::kYcbcr422 && plane == 2 ? 3 : plane;
  return {frame + offset * form.type->bytes, perRow, perRow / columns, columns, form.height};
}

}  // namespace

std::size_t RawForm::frameBytes() const {
  std::size_t samples = 0;
  for (int i = 0; i < infoOf(kind).planeCount; ++i) samples += samplesOf(*this, i);
  return samples * type->bytes;
}

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
  if (width < 1 || height < 1 || std::int64_t{width} * height > kMostPixels) return std::nullopt;
  if (sentWidth(kind->kind, width) != width) return std::nullopt;
  return RawForm{width, height, type, kind->kind, packed};
}

SampleGrid planeOf(const RawForm& form, const std::byte* frame, int plane) {
  if (form.packed) return packedPlane(form, frame, plane);
  for (int i = 0; i < plane; ++i) frame += samplesOf(form, i) * form.type->bytes;
  return {frame, 1, form.height, planeWidth(form.kind, plane, form.width), form.height};
}

}  // namespace framesink::play
