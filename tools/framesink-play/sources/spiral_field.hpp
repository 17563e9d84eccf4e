// A field of spiral waves: the complex Ginzburg-Landau equation, which many oscillating reactions
// follow near the onset of their oscillation,
//
//     dA/dt = A + (1 + ib) lap(A) - (1 + ic) |A|^2 A        A = u + iv
//
// on a torus, in doubles. Its defects turn like pinwheels. b swings slowly between calm and unrest;
// unrest makes and destroys defects.
#pragma once

#include <cstddef>
#include <vector>

namespace framesink::play {

class SpiralField {
 public:
  static constexpr double kFrameSeconds = 1.0 / 60;

  // Sizes in cells. The field begins as smooth noise, the same in every run.
  SpiralField(int width, int height);

  // Moves the field on by kFrameSeconds.
  void advance();

  // The real and the imaginary part of A at a cell. |A| stays below about 1.
  double u(int row, int column) const { return u_[cell(row, column)]; }
  double v(int row, int column) const { return v_[cell(row, column)]; }

 private:
  using Field = std::vector<double>;

  // Each side has a border of one cell, which repeats the opposite side.
  std::size_t cell(int row, int column) const {
    return static_cast<std::size_t>(row + 1) * stride_ + static_cast<std::size_t>(column + 1);
  }
  void sow(Field& field, unsigned& seed) const;
  void wrap(Field& field) const;
  void step(double b);
  void stepRow(int row, double b);

  int width_;
  int height_;
  std::size_t stride_;
  Field u_, v_;
  Field nextU_, nextV_;
  double showTime_ = 0;  // seconds
};

}  // namespace framesink::play
