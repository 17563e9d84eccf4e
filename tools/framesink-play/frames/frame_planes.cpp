#include "frames/frame_planes.hpp"

#include <cstring>

namespace framesink::play {

FramePlanes::FramePlanes(Kind kind, const SampleType& type, Layout layout, int width, int height)
    : kind_(kind), type_(type), layout_(layout), width_(width), height_(height) {
  for (int i = 0; i < infoOf(kind).planeCount; ++i) {
    const auto samples = static_cast<std::size_t>(planeWidth(kind, i, width)) * height;
    planes_.emplace_back(samples * type.bytes);
  }
}

InputDescription FramePlanes::description() const {
  const KindInfo& info = infoOf(kind_);
  InputDescription description{};
  description.valid = 1;
  std::memcpy(description.fourcc, info.fourcc, sizeof description.fourcc);
  description.inputCount = info.planeCount;
  description.componentCount = info.planeCount;
  for (int i = 0; i < info.planeCount; ++i) {
    description.widths[i] = planeWidth(kind_, i, width_);
    description.heights[i] = height_;
  }
  description.dataType = type_.id;
  description.layout = layout_ == Layout::kColumn ? 1 : 0;
  return description;
}

void FramePlanes::fill(const Picture& picture) {
  for (std::size_t i = 0; i < planes_.size(); ++i) {
    type_.store(picture.at(i), layout_, planes_[i].data());
  }
}

void FramePlanes::copy(std::size_t index, const SampleGrid& samples) {
  type_.copy(samples, layout_, planes_[index].data());
}

const void* FramePlanes::plane(std::size_t index) const {
  return index < planes_.size() ? planes_[index].data() : nullptr;
}

void FramePlanes::dump(std::ostream& out) const {
  for (const auto& plane : planes_) {
    out.write(reinterpret_cast<const char*>(plane.data()),
              static_cast<std::streamsize>(plane.size()));
  }
}

}  // namespace framesink::play
