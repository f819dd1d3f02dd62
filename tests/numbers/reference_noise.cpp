#include "tests/numbers/reference_noise.h"

#include <functional>

namespace numbers_test {

namespace {

constexpr std::uint32_t kMultiplier = 1664525u;
constexpr std::uint32_t kIncrement = 1013904223u;

// Blends the values at the corners of the cell that holds p along one axis after the other.
double blendCorners(Vec2 p, std::function<double(Vec2 corner)> const& at) {
  Vec2 const base{std::floor(p.x), std::floor(p.y)};
  double sum = 0.0;
  for (int corner = 0; corner < 4; ++corner) {
    Vec2 const lattice{base.x + (corner & 1), base.y + (corner >> 1)};
    auto const weight = [](double distance) {
      double const t = 1.0 - std::fabs(distance);
      return std::pow(t, 3) * (10.0 - 15.0 * t + 6.0 * t * t);
    };
    sum += at(lattice) * weight(p.x - lattice.x) * weight(p.y - lattice.y);
  }
  return sum;
}

double blendCorners(Vec3 p, std::function<double(Vec3 corner)> const& at) {
  double const base = std::floor(p.z);
  double sum = 0.0;
  for (double const z : {base, base + 1.0}) {
    double const t = 1.0 - std::fabs(p.z - z);
    double const weight = std::pow(t, 3) * (10.0 - 15.0 * t + 6.0 * t * t);
    sum += weight * blendCorners(Vec2{p.x, p.y}, [&](Vec2 corner) { return at({corner.x, corner.y, z}); });
  }
  return sum;
}

// The lattice of each octave is turned (in the plane by the angle of the triangle with sides 3, 4 and 5) and
// moved.
Vec2 turned(Vec2 p) {
  return Vec2{(4.0 * p.x - 3.0 * p.y) / 5.0, (3.0 * p.x + 4.0 * p.y) / 5.0} + Vec2{0.37, 0.71};
}

template <typename Vector>
double octaveSum(Vector p, int octaves, double lacunarity, double gain,
                 std::function<double(double)> const& shape) {
  double sum = 0.0;
  double weights = 0.0;
  for (int i = 0; i < octaves; ++i) {
    double const weight = std::pow(gain, i);
    p = turned(p);
    sum += weight * shape(perlinNoise(p));
    weights += weight;
    p = p * lacunarity;
  }
  return weights > 0.0 ? sum / weights : 0.0;
}

}  // namespace

Vec3 turned(Vec3 p) {
  // An orthogonal matrix of ninths.
  Vec3 const x = Vec3{8, 1, -4} * (1.0 / 9.0);
  Vec3 const y = Vec3{-4, 4, -7} * (1.0 / 9.0);
  Vec3 const z = Vec3{1, 8, 4} * (1.0 / 9.0);
  return Vec3{dot(x, p), dot(y, p), dot(z, p)} + Vec3{0.37, 0.71, 0.53};
}

std::uint32_t pcgHash(std::uint32_t key) {
  std::uint32_t const state = key * 747796405u + 2891336453u;
  std::uint32_t const word = ((state >> ((state >> 28) + 4)) ^ state) * 277803737u;
  return (word >> 22) ^ word;
}

Words2 pcgHash(Words2 key) {
  auto [x, y] = key;
  x = x * kMultiplier + kIncrement;
  y = y * kMultiplier + kIncrement;
  for (int round = 0; round < 2; ++round) {
    x += y * kMultiplier;
    y += x * kMultiplier;
    x ^= x >> 16;
    y ^= y >> 16;
  }
  return {x, y};
}

Words3 pcgHash(Words3 key) {
  std::uint32_t x = key[0];
  std::uint32_t y = key[1];
  std::uint32_t z = key[2];
  auto const mixWords = [&] {
    x += y * z;
    y += z * x;
    z += x * y;
  };
  x = x * kMultiplier + kIncrement;
  y = y * kMultiplier + kIncrement;
  z = z * kMultiplier + kIncrement;
  mixWords();
  x ^= x >> 16;
  y ^= y >> 16;
  z ^= z >> 16;
  mixWords();
  return {x, y, z};
}

std::uint32_t cellWord(double coordinate) {
  return static_cast<std::uint32_t>(static_cast<std::int64_t>(std::floor(coordinate)));
}

Words2 cellOf(Vec2 p) { return {cellWord(p.x), cellWord(p.y)}; }

Words3 cellOf(Vec3 p) { return {cellWord(p.x), cellWord(p.y), cellWord(p.z)}; }

double unitFromWord(std::uint32_t word) { return static_cast<double>(word >> 8) / 16777216.0; }

double randomOf(Vec2 p) { return unitFromWord(pcgHash(cellOf(p))[0]); }

double randomOf(Vec3 p) { return unitFromWord(pcgHash(cellOf(p))[0]); }

double valueNoise(Vec2 p) {
  return blendCorners(p, [](Vec2 corner) { return randomOf(corner); });
}

double valueNoise(Vec3 p) {
  return blendCorners(p, [](Vec3 corner) { return randomOf(corner); });
}

double perlinNoise(Vec2 p) {
  // The four diagonals and the four axes, all as long as a diagonal; the library's choice for the plane.
  static double const r = std::numbers::sqrt2;
  static std::array<Vec2, 8> const gradients = {
      {{1, 1}, {-1, 1}, {1, -1}, {-1, -1}, {r, 0}, {-r, 0}, {0, r}, {0, -r}}};
  return blendCorners(
      p, [&](Vec2 corner) { return dot(gradients[pcgHash(cellOf(corner))[0] % 8], p - corner); });
}

double perlinNoise(Vec3 p) {
  // The edges of a cube, and a tetrahedron of them again to make sixteen.
  static std::array<Vec3, 16> const gradients = {{{1, 1, 0},
                                                  {-1, 1, 0},
                                                  {1, -1, 0},
                                                  {-1, -1, 0},
                                                  {1, 0, 1},
                                                  {-1, 0, 1},
                                                  {1, 0, -1},
                                                  {-1, 0, -1},
                                                  {0, 1, 1},
                                                  {0, -1, 1},
                                                  {0, 1, -1},
                                                  {0, -1, -1},
                                                  {1, 1, 0},
                                                  {0, -1, 1},
                                                  {-1, 1, 0},
                                                  {0, -1, -1}}};
  return blendCorners(
      p, [&](Vec3 corner) { return dot(gradients[pcgHash(cellOf(corner))[0] % 16], p - corner); });
}

double fbm(Vec2 p, int octaves, double lacunarity, double gain) {
  return octaveSum(p, octaves, lacunarity, gain, [](double v) { return v; });
}

double fbm(Vec3 p, int octaves, double lacunarity, double gain) {
  return octaveSum(p, octaves, lacunarity, gain, [](double v) { return v; });
}

double turbulence(Vec3 p, int octaves, double lacunarity, double gain) {
  return octaveSum(p, octaves, lacunarity, gain, [](double v) { return std::fabs(v); });
}

double ridged(Vec3 p, int octaves, double lacunarity) {
  constexpr double kOffset = 1.0;
  constexpr double kGain = 2.0;
  double sum = 0.0;
  double weights = 0.0;
  double previous = 1.0 / kGain;
  for (int i = 0; i < octaves; ++i) {
    p = turned(p);
    double const crest = kOffset - std::fabs(perlinNoise(p));
    double const signal = crest * crest * clamp01(previous * kGain);
    sum += signal * std::exp2(-i);
    weights += std::exp2(-i);
    previous = signal;
    p = p * lacunarity;
  }
  return weights > 0.0 ? sum / weights : 0.0;
}

}  // namespace numbers_test
