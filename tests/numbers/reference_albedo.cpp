// Albedos by integration; they share no formula with the fits of the library.

#include <map>

#include "tests/numbers/device_fragment.h"
#include "tests/numbers/reference_brdf.h"

namespace numbers_test {

namespace {

constexpr std::size_t kPoints = 1024;
constexpr std::size_t kAngles = 48;

// Over the facets that the direction sees: Heitz 2018, "Sampling the GGX Distribution of Visible Normals".
GgxAlbedo integrate(double alpha, double cosine) {
  double const sine = std::sqrt(1.0 - cosine * cosine);
  Vec3 const view{sine, 0.0, cosine};
  Vec3 const stretched = unit(Vec3{alpha * sine, 0.0, cosine});
  Vec3 const first{0.0, 1.0, 0.0};
  Vec3 const second = cross(stretched, first);
  GgxAlbedo sum;
  for (std::size_t i = 0; i < kPoints; ++i) {
    Vec2 const point = evenPoint(i, kPoints);
    double const radius = std::sqrt(point.x);
    double const x = radius * std::cos(2.0 * kPi * point.y);
    double const share = (1.0 + stretched.z) / 2.0;
    double const y = mix(std::sqrt(1.0 - x * x), radius * std::sin(2.0 * kPi * point.y), share);
    double const z = std::sqrt(std::max(1.0 - x * x - y * y, 0.0));
    Vec3 const facet = first * x + second * y + stretched * z;
    Vec3 const half = unit(Vec3{alpha * facet.x, alpha * facet.y, std::max(facet.z, 1e-9)});
    double const along = dot(view, half);
    Vec3 const light = half * (2.0 * along) - view;
    if (light.z <= 0.0 || along <= 0.0) {
      continue;
    }
    double const masked = 1.0 + smithLambda(alpha, cosine);
    double const weight = masked / (masked + smithLambda(alpha, light.z)) / static_cast<double>(kPoints);
    double const fresnel = std::pow(1.0 - along, 5.0);
    sum.plain += weight * (1.0 - fresnel);
    sum.grazing += weight * fresnel;
  }
  return sum;
}

// The mean of a function of the cosine over the hemisphere, weighted with the cosine.
template <typename Function>
double meanOf(Function const& f) {
  double sum = 0.0;
  for (std::size_t i = 0; i < kAngles; ++i) {
    sum += f(std::sqrt((static_cast<double>(i) + 0.5) / kAngles)) / kAngles;
  }
  return sum;
}

}  // namespace

GgxAlbedo ggxAlbedo(double alpha, double cosine) { return integrate(alpha, std::max(cosine, 1e-4)); }

GgxAlbedo ggxMeanAlbedo(double alpha) {
  constexpr double kSteps = 64.0;  // of a table between alphas of 0 and 1
  static std::map<int, GgxAlbedo> table;
  auto const entry = [](int step) {
    auto const found = table.find(step);
    if (found != table.end()) {
      return found->second;
    }
    double const at = std::max(step / kSteps, 0.001);
    GgxAlbedo const made{meanOf([&](double c) { return integrate(at, c).plain; }),
                         meanOf([&](double c) { return integrate(at, c).grazing; })};
    return table.emplace(step, made).first->second;
  };
  int const below = std::min(static_cast<int>(alpha * kSteps), static_cast<int>(kSteps) - 1);
  double const t = alpha * kSteps - below;
  GgxAlbedo const low = entry(below);
  GgxAlbedo const high = entry(below + 1);
  return {mix(low.plain, high.plain, t), mix(low.grazing, high.grazing, t)};
}

double orenNayarAlbedo(double sigma, double cosine) {
  Vec3 const n{0.0, 0.0, 1.0};
  double const c = std::max(cosine, 1e-4);
  Vec3 const v{std::sqrt(1.0 - c * c), 0.0, c};
  double sum = 0.0;
  for (std::size_t i = 0; i < kPoints; ++i) {
    Vec2 const point = evenPoint(i, kPoints);
    double const angle = 2.0 * kPi * point.y;
    double const sine = std::sqrt(point.x);
    Vec3 const l{sine * std::cos(angle), sine * std::sin(angle), std::sqrt(1.0 - point.x)};
    sum += orenNayarFactor(n, l, v, sigma) / static_cast<double>(kPoints);
  }
  return sum;
}

double orenNayarMeanAlbedo(double sigma) {
  // The factor is a + b g, and a and b alone depend on sigma: three means say all.
  static double const direction = [] {
    double const rough = 1e6;  // a = 0.5, b = 0.45
    return (meanOf([&](double c) { return orenNayarAlbedo(rough, c); }) - 0.5) / 0.45;
  }();
  double const variance = sigma * sigma;
  double const a = 1.0 - 0.5 * variance / (variance + 0.33);
  double const b = 0.45 * variance / (variance + 0.09);
  return (a + b * direction) / std::max(a + b / 2.0, 1.0);
}

double blinnAlbedo(double exponent, double cosine) {
  Vec3 const n{0.0, 0.0, 1.0};
  Vec3 const v{std::sqrt(1.0 - cosine * cosine), 0.0, cosine};
  double sum = 0.0;
  for (std::size_t i = 0; i < kPoints; ++i) {
    // Half vectors after the power of their cosine.
    Vec2 const point = evenPoint(i, kPoints);
    double const up = std::pow(point.x, 1.0 / (exponent + 1.0));
    double const side = std::sqrt(1.0 - up * up);
    double const angle = 2.0 * kPi * point.y;
    Vec3 const half{side * std::cos(angle), side * std::sin(angle), up};
    Vec3 const light = half * (2.0 * dot(v, half)) - v;
    if (light.z > 0.0 && dot(v, half) > 0.0) {
      double const density = (exponent + 1.0) / (2.0 * kPi) * std::pow(up, exponent) / (4.0 * dot(v, half));
      sum += blinnLobe(n, light, v, exponent) * light.z / (density * static_cast<double>(kPoints));
    }
  }
  return sum;
}

}  // namespace numbers_test
