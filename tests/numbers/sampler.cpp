#include "tests/numbers/sampler.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>
#include <random>

#include "tests/numbers/compute_shader.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {

namespace {

// Random numbers that do not depend on the standard library: its engines are fixed, its distributions are
// not.
class Source {
public:
  explicit Source(std::string_view seed) {
    std::uint64_t hash = 14695981039346656037u;
    for (char const c : seed) {
      hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
    }
    engine_.seed(hash);
  }

  // In [0, 1).
  double unit() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
  bool oneIn(std::uint64_t n) { return engine_() % n == 0; }
  std::uint64_t below(std::uint64_t n) { return engine_() % n; }

private:
  std::mt19937_64 engine_;
};

double drawComponent(Input const& input, Source& source) {
  if (input.draw == Draw::kWhole) {
    return input.low + std::floor(source.unit() * (input.high - input.low + 1.0));
  }
  if (source.oneIn(8)) {
    double const corners[] = {input.low, input.high, 0.0, 1.0};
    double const corner = corners[source.below(4)];
    if (corner >= input.low && corner <= input.high) {
      return corner;
    }
  }
  return input.low + source.unit() * (input.high - input.low);
}

Vec3 drawUnit(Source& source) {
  if (source.oneIn(8)) {
    double xyz[3] = {0.0, 0.0, 0.0};
    xyz[source.below(3)] = source.oneIn(2) ? 1.0 : -1.0;
    return {xyz[0], xyz[1], xyz[2]};
  }
  double const z = 2.0 * source.unit() - 1.0;
  double const angle = 2.0 * std::numbers::pi * source.unit();
  double const radius = std::sqrt(1.0 - z * z);
  return {radius * std::cos(angle), radius * std::sin(angle), z};
}

// A unit vector that stands to `first` as the input wants it.
Vec3 drawDirection(Input const& input, Vec3 first, Source& source) {
  Vec3 direction = drawUnit(source);
  if (input.draw == Draw::kAbove) {
    return dot(direction, first) < 0.0 ? -direction : direction;
  }
  if (input.draw == Draw::kAcross) {
    while (length(cross(direction, first)) < 0.1) {
      direction = drawUnit(source);
    }
    return unit(cross(direction, first));
  }
  return direction;
}

}  // namespace

std::vector<float> drawSamples(std::vector<Input> const& inputs, std::size_t count, std::string_view seed) {
  Source source(seed);
  std::vector<float> values;
  for (std::size_t i = 0; i < count; ++i) {
    std::optional<Vec3> first;
    for (Input const& input : inputs) {
      if (input.draw == Draw::kUnit || input.draw == Draw::kAbove || input.draw == Draw::kAcross) {
        Vec3 const direction = drawDirection(input, first.value_or(Vec3{}), source);
        first = first.value_or(direction);
        for (double const component : {direction.x, direction.y, direction.z}) {
          values.push_back(static_cast<float>(component));
        }
        continue;
      }
      for (std::size_t c = 0; c < componentCount(input.type); ++c) {
        values.push_back(static_cast<float>(drawComponent(input, source)));
      }
    }
  }
  return values;
}

}  // namespace numbers_test
