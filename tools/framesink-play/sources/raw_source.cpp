#include "sources/raw_source.hpp"

#include <cstdint>
#include <cstring>
#include <vector>

#include "frames/frame_planes.hpp"
#include "sources/binary_input.hpp"
#include "sources/input_file.hpp"

namespace framesink::play {
namespace {

class RawSource final : public Source {
 public:
  RawSource(const std::string& path, const RawForm& form, double interval, std::uint64_t skipped)
      : path_(path),
        form_(form),
        interval_(interval),
        skipped_(skipped),
        frame_(form.frameBytes()),
        input_(path) {
    refuseFolder(path_);
    if (!input_.isOpen()) failFor(path_, std::strerror(input_.error()));
  }

  bool advance() override {
    while (read()) {
      if (read_++ >= skipped_) return true;
    }
    if (read_ <= skipped_ && trouble_.empty()) {
      trouble_ = read_ == 0 ? "is empty" : "ends before the place that --seek asks for";
    }
    return false;
  }

  int width() const override { return form_.width; }
  int height() const override { return form_.height; }
  double time() const override { return static_cast<double>(read_ - skipped_ - 1) * interval_; }
  double interval() const override { return interval_; }

  void fill(FramePlanes& planes) override {
    for (int i = 0; i < infoOf(form_.kind).planeCount; ++i) {
      planes.copy(i, planeOf(form_, frame_.data(), i));
    }
  }

  std::string trouble() const override {
    return trouble_.empty() ? "" : nameOf(path_) + ": " + trouble_;
  }

 private:
  // Reads one frame. Returns false at the end; an end within a frame is damage.
  bool read() {
    const std::size_t got = input_.read(frame_.data(), frame_.size());
    if (got == frame_.size()) return true;
    if (input_.error() != 0) {
      trouble_ = std::strerror(input_.error());
    } else if (got > 0) {
      trouble_ = "its last frame is cut short, " + std::to_string(got) + " of " +
                 std::to_string(frame_.size()) + " bytes";
    }
    return false;
  }

  std::string path_;
  RawForm form_;
  double interval_;
  std::uint64_t skipped_;
  std::uint64_t read_ = 0;  // frames, including the skipped ones
  std::vector<std::byte> frame_;
  BinaryInput input_;
  std::string trouble_;
};

}  // namespace

std::unique_ptr<Source> makeRawSource(const std::string& path, const RawForm& form, double interval,
                                      std::uint64_t skipped) {
  return std::make_unique<RawSource>(path, form, interval, skipped);
}

}  // namespace framesink::play
