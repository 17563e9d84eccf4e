#include "frames/raw_form.hpp"

namespace framesink::play {
namespace {

std::size_t samplesOf(const RawForm& form, int plane) {
  return static_cast<std::size_t>(planeWidth(form.kind, plane, form.width)) * form.height;
}

int packedSamplesPerPixel(Kind kind) {
  switch (kind) {
    case Kind::kRgb:
      return 3;
    case Kind::kYcbcr422:
      return 2;
    case Kind::kIntensity:
      break;
  }
  return 1;
}

SampleGrid packedPlane(const RawForm& form, const std::byte* frame, int plane) {
  const int columns = planeWidth(form.kind, plane, form.width);
  const int perRow = form.width * packedSamplesPerPixel(form.kind);
  const int offset = form.kind == Kind::kYcbcr422 && plane == 2 ? 3 : plane;
  return {frame + offset * form.type->bytes, perRow, perRow / columns, columns, form.height};
}

}  // namespace

std::size_t RawForm::frameBytes() const {
  std::size_t samples = 0;
  for (int i = 0; i < infoOf(kind).planeCount; ++i) samples += samplesOf(*this, i);
  return samples * type->bytes;
}

SampleGrid planeOf(const RawForm& form, const std::byte* frame, int plane) {
  if (form.packed) return packedPlane(form, frame, plane);
  for (int i = 0; i < plane; ++i) frame += samplesOf(form, i) * form.type->bytes;
  return {frame, 1, form.height, planeWidth(form.kind, plane, form.width), form.height};
}

}  // namespace framesink::play
