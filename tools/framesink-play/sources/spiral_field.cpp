#include "sources/spiral_field.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace framesink::play {
namespace {

constexpr int kStepsPerFrame = 5;
constexpr double kTimeStep = 0.05;
constexpr double kDiffusion = 3;  // per cell squared; sets the width of the waves
constexpr double kC = 1.15;

// A uniform field is unstable below b = -0.87, where 1 + bc < 0; spirals are somewhat earlier.
constexpr double kCalmestB = 0.05;
constexpr double kWildestB = -0.40;
constexpr double kSwingSeconds = 50;

constexpr int kSeedCells = 40;   // distance of independent values of the noise
constexpr int kFewestSeeds = 4;  // per row and per column

// Returns a value at random between -0.5 and 0.5.
double noise(unsigned& seed) {
  seed = seed * 1664525u + 1013904223u;
  return (seed >> 8) / static_cast<double>(1u << 24) - 0.5;
}

double smooth(double x) { return x * x * (3 - 2 * x); }

}  // namespace

SpiralField::SpiralField(int width, int height)
    : width_(width), height_(height), stride_(static_cast<std::size_t>(width) + 2) {
  const std::size_t cells = stride_ * (static_cast<std::size_t>(height) + 2);
  for (Field* field : {&u_, &v_, &nextU_, &nextV_}) field->assign(cells, 0.0);
  unsigned seed = 1;
  sow(u_, seed);
  sow(v_, seed);
}

// Fills `field` with noise: values on a coarse grid, interpolated smoothly.
void SpiralField::sow(Field& field, unsigned& seed) const {
  const int columns = std::max(kFewestSeeds, width_ / kSeedCells);
  const int rows = std::max(kFewestSeeds, height_ / kSeedCells);
  Field grid(static_cast<std::size_t>(columns) * rows);
  for (double& value : grid) value = noise(seed);
  const auto value = [&](int row, int column) {
    return grid[static_cast<std::size_t>(row % rows) * columns + column % columns];
  };
  for (int row = 0; row < height_; ++row) {
    const double y = static_cast<double>(row) * rows / height_;
    const int top = static_cast<int>(y);
    const double down = smooth(y - top);
    for (int column = 0; column < width_; ++column) {
      const double x = static_cast<double>(column) * columns / width_;
      const int left = static_cast<int>(x);
      const double right = smooth(x - left);
      field[cell(row, column)] =
          std::lerp(std::lerp(value(top, left), value(top, left + 1), right),
                    std::lerp(value(top + 1, left), value(top + 1, left + 1), right), down);
    }
  }
}

void SpiralField::advance() {
  const double swing = std::sin(2 * std::numbers::pi * showTime_ / kSwingSeconds);
  const double b = std::lerp(kCalmestB, kWildestB, 0.5 + 0.5 * swing);
  for (int i = 0; i < kStepsPerFrame; ++i) step(b);
  showTime_ += kFrameSeconds;
}

void SpiralField::wrap(Field& field) const {
  for (int row = 0; row < height_; ++row) {
    field[cell(row, -1)] = field[cell(row, width_ - 1)];
    field[cell(row, width_)] = field[cell(row, 0)];
  }
  const auto copyRow = [&](int from, int to) {
    std::copy_n(field.begin() + cell(from, -1), stride_, field.begin() + cell(to, -1));
  };
  copyRow(height_ - 1, -1);
  copyRow(0, height_);
}

void SpiralField::step(double b) {
  wrap(u_);
  wrap(v_);
  for (int row = 0; row < height_; ++row) stepRow(row, b);
  u_.swap(nextU_);
  v_.swap(nextV_);
}

void SpiralField::stepRow(int row, double b) {
  const std::size_t first = cell(row, 0);
  const auto laplacian = [this](const Field& field, std::size_t at) {
    return field[at - 1] + field[at + 1] + field[at - stride_] + field[at + stride_] -
           4 * field[at];
  };
  for (std::size_t at = first; at < first + static_cast<std::size_t>(width_); ++at) {
    const double u = u_[at];
    const double v = v_[at];
    const double spreadU = kDiffusion * laplacian(u_, at);
    const double spreadV = kDiffusion * laplacian(v_, at);
    const double square = u * u + v * v;
    nextU_[at] = u + kTimeStep * (u + spreadU - b * spreadV - (u - kC * v) * square);
    nextV_[at] = v + kTimeStep * (v + spreadV + b * spreadU - (v + kC * u) * square);
  }
}

}  // namespace framesink::play
