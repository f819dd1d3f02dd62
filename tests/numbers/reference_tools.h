#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "tests/numbers/row.h"

namespace numbers_test {

// The spacing of 32-bit floats around 1.
inline constexpr double kUlp = 0x1p-23;
inline constexpr double kPi = std::numbers::pi;

inline Vec2 operator+(Vec2 a, Vec2 b) { return {a.x + b.x, a.y + b.y}; }
inline Vec2 operator-(Vec2 a, Vec2 b) { return {a.x - b.x, a.y - b.y}; }
inline Vec2 operator*(Vec2 a, Vec2 b) { return {a.x * b.x, a.y * b.y}; }
inline Vec2 operator*(Vec2 a, double b) { return {a.x * b, a.y * b}; }
inline double dot(Vec2 a, Vec2 b) { return a.x * b.x + a.y * b.y; }
inline double length(Vec2 a) { return std::sqrt(dot(a, a)); }

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator-(Vec3 a) { return {-a.x, -a.y, -a.z}; }
inline Vec3 operator*(Vec3 a, Vec3 b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
inline Vec3 operator*(Vec3 a, double b) { return {a.x * b, a.y * b, a.z * b}; }
inline double dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3 cross(Vec3 a, Vec3 b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(Vec3 a) { return std::sqrt(dot(a, a)); }
// The unit vector along a; zero for the zero vector.
inline Vec3 unit(Vec3 a) {
  double const l = length(a);
  return l > 0.0 ? a * (1.0 / l) : Vec3{};
}
inline Vec3 splat(double v) { return {v, v, v}; }

inline double clamp01(double v) { return std::clamp(v, 0.0, 1.0); }
inline double fraction(double v) { return v - std::floor(v); }
inline double mix(double a, double b, double t) { return a + (b - a) * t; }
inline Vec2 mix(Vec2 a, Vec2 b, double t) { return a + (b - a) * t; }
inline Vec3 mix(Vec3 a, Vec3 b, double t) { return a + (b - a) * t; }

// Applies a function of one number to each component.
inline Vec3 each(Vec3 a, std::function<double(double)> const& f) { return {f(a.x), f(a.y), f(a.z)}; }
inline Vec3 each(Vec3 a, Vec3 b, std::function<double(double, double)> const& f) {
  return {f(a.x, b.x), f(a.y, b.y), f(a.z, b.z)};
}

// The product of the matrix at input `m`, of `size` columns, and the vector; its first three components.
inline Vec3 transformed(Sample const& in, std::size_t m, std::size_t size, Vec4 v) {
  double const components[] = {v.x, v.y, v.z, v.w};
  double rows[3] = {0.0, 0.0, 0.0};
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < size; ++c) {
      rows[r] += in.at(m, r * size + c) * components[c];
    }
  }
  return {rows[0], rows[1], rows[2]};
}

// No arithmetic is done, or its result is always a float.
inline Tolerance exactly() { return {0.0, 0.0, "no rounding is involved"}; }
// A few roundings of intermediate values of up to `magnitude`.
inline Tolerance rounding(double count, double magnitude) {
  return {count * kUlp * magnitude, count * kUlp, "rounding of a few intermediate values"};
}

}  // namespace numbers_test
