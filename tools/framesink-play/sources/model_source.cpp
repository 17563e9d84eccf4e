#include "sources/model_source.hpp"

#include <algorithm>
#include <array>

#include "sources/spiral_field.hpp"

namespace framesink::play {
namespace {

struct Colour {
  double red, green, blue;
};

// Night blue to pale gold in even steps of brightness.
constexpr std::array<Colour, 8> kGlow{{{.02, .03, .10},
                                       {.13, .07, .34},
                                       {.36, .08, .47},
                                       {.62, .14, .43},
                                       {.84, .26, .30},
                                       {.96, .47, .19},
                                       {.99, .72, .28},
                                       {.99, .95, .72}}};

double blend(double from, double to, double part) { return from + part * (to - from); }

Colour glow(double x) {
  const double place = std::clamp(x, 0.0, 1.0) * (kGlow.size() - 1);
  const std::size_t below = std::min(static_cast<std::size_t>(place), kGlow.size() - 2);
  const double part = place - static_cast<double>(below);
  const Colour& low = kGlow[below];
  const Colour& high = kGlow[below + 1];
  return {blend(low.red, high.red, part), blend(low.green, high.green, part),
          blend(low.blue, high.blue, part)};
}

// BT.601 studio range, as fractions of the 8-bit range.
constexpr double kCode = 1.0 / 255;
double luma(double brightness) { return (16 + 219 * brightness) * kCode; }
double chroma(double colour) { return (128 + 112 * colour) * kCode; }

class ModelSource final : public PictureSource {
 public:
  ModelSource(int width, int height) : width_(width), height_(height), field_(width, height) {}

  bool advance() override {
    field_.advance();
    ++frames_;
    return true;
  }
  int width() const override { return width_; }
  int height() const override { return height_; }
  double time() const override {
    return static_cast<double>(frames_ - 1) * SpiralField::kFrameSeconds;
  }
  double interval() const override { return SpiralField::kFrameSeconds; }

  Picture picture(Kind kind, bool) override {
    const int width = sentWidth(kind, width_);
    for (int i = 0; i < infoOf(kind).planeCount; ++i) {
      planes_[i].resize(static_cast<std::size_t>(planeWidth(kind, i, width)) * height_);
    }
    paint(kind, width);
    Picture picture;
    for (int i = 0; i < infoOf(kind).planeCount; ++i) {
      const int columns = planeWidth(kind, i, width);
      picture.push_back(Grid<double>{planes_[i].data(), columns, 1, columns, height_, 1.0});
    }
    return picture;
  }

 private:
  void paint(Kind kind, int width) {
    for (int row = 0; row < height_; ++row) {
      const std::size_t first = static_cast<std::size_t>(row) * width;
      switch (kind) {
        case Kind::kRgb:
          for (int column = 0; column < width; ++column) paintRgb(row, column, first + column);
          break;
        case Kind::kIntensity:
          for (int column = 0; column < width; ++column) {
            planes_[0][first + column] = std::min(square(row, column), 1.0);
          }
          break;
        case Kind::kYcbcr422:
          for (int column = 0; column < width; column += 2) paintPair(row, column, first + column);
          break;
      }
    }
  }

  double square(int row, int column) const {
    const double u = field_.u(row, column);
    const double v = field_.v(row, column);
    return u * u + v * v;
  }

  void paintRgb(int row, int column, std::size_t at) {
    const Colour colour = glow(0.5 + 0.5 * field_.u(row, column));
    planes_[0][at] = colour.red;
    planes_[1][at] = colour.green;
    planes_[2][at] = colour.blue;
  }

  // A pair of pixels has the colour of its left one.
  void paintPair(int row, int column, std::size_t at) {
    constexpr double kSaturation = 0.75;
    for (int i = 0; i < 2; ++i) {
      planes_[0][at + i] = luma(std::min(0.1 + 0.5 * square(row, column + i), 1.0));
    }
    planes_[1][at / 2] = chroma(std::clamp(kSaturation * field_.u(row, column), -1.0, 1.0));
    planes_[2][at / 2] = chroma(std::clamp(kSaturation * field_.v(row, column), -1.0, 1.0));
  }

  int width_;
  int height_;
  SpiralField field_;
  std::int64_t frames_ = 0;
  std::array<std::vector<double>, 3> planes_;
};

}  // namespace

std::unique_ptr<Source> makeModelSource(int width, int height) {
  return std::make_unique<ModelSource>(width, height);
}

}  // namespace framesink::play
