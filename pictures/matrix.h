#pragma once

// Vectors and matrices of a scene: matrices row by row, multiplied with columns.

#include <array>
#include <cmath>
#include <vector>

namespace pictures {

using Vector = std::array<double, 3>;

inline Vector operator+(const Vector& a, const Vector& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline Vector operator-(const Vector& a, const Vector& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Vector operator*(const Vector& a, double s) { return {a[0] * s, a[1] * s, a[2] * s}; }
inline double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline double length(const Vector& a) { return std::sqrt(dot(a, a)); }
/// Of length 1; a vector of no length stays as it is.
inline Vector unit(const Vector& a) { return length(a) > 0 ? a * (1 / length(a)) : a; }
inline Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

struct Matrix {
  std::array<double, 16> values{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

  double& at(std::size_t row, std::size_t column) { return values[row * 4 + column]; }
  double at(std::size_t row, std::size_t column) const { return values[row * 4 + column]; }
  std::vector<double> numbers() const { return {values.begin(), values.end()}; }
};

Matrix operator*(const Matrix& a, const Matrix& b);
Matrix transposed(const Matrix& matrix);
/// Of a matrix that has one.
Matrix inverse(const Matrix& matrix);
/// Around the y axis, in radians: z towards x.
Matrix turnedAroundY(double angle);

}  // namespace pictures
