#include "pictures/matrix.h"

#include <utility>

namespace pictures {

Matrix operator*(const Matrix& a, const Matrix& b) {
  Matrix product;
  for (std::size_t i = 0; i < 16; ++i) {
    product.values[i] = 0;
    for (std::size_t k = 0; k < 4; ++k) product.values[i] += a.at(i / 4, k) * b.at(k, i % 4);
  }
  return product;
}

Matrix transposed(const Matrix& matrix) {
  Matrix turned;
  for (std::size_t i = 0; i < 16; ++i) turned.values[i] = matrix.at(i % 4, i / 4);
  return turned;
}

// Elimination with the largest pivot, on both sides at once.
Matrix inverse(const Matrix& matrix) {
  Matrix left = matrix;
  Matrix right;
  for (std::size_t column = 0; column < 4; ++column) {
    std::size_t pivot = column;
    for (std::size_t row = column + 1; row < 4; ++row) {
      if (std::abs(left.at(row, column)) > std::abs(left.at(pivot, column))) pivot = row;
    }
    for (std::size_t k = 0; k < 4; ++k) {
      std::swap(left.at(column, k), left.at(pivot, k));
      std::swap(right.at(column, k), right.at(pivot, k));
    }
    const double scale = 1 / left.at(column, column);
    for (std::size_t k = 0; k < 4; ++k) {
      left.at(column, k) *= scale;
      right.at(column, k) *= scale;
    }
    for (std::size_t row = 0; row < 4; ++row) {
      const double factor = left.at(row, column);
      for (std::size_t k = 0; row != column && k < 4; ++k) {
        left.at(row, k) -= factor * left.at(column, k);
        right.at(row, k) -= factor * right.at(column, k);
      }
    }
  }
  return right;
}

Matrix turnedAroundY(double angle) {
  Matrix turned;
  turned.at(0, 0) = turned.at(2, 2) = std::cos(angle);
  turned.at(0, 2) = std::sin(angle);
  turned.at(2, 0) = -std::sin(angle);
  return turned;
}

}  // namespace pictures
