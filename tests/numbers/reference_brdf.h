#pragma once

#include "tests/numbers/reference_tools.h"

// Reflection models from their papers. Cosines are positive; alpha is the square of the roughness.
namespace numbers_test {

inline double alphaOf(double roughness) { return roughness * roughness; }

// Schlick 1994.
inline Vec3 schlick(Vec3 f0, double cosine) { return f0 + (splat(1.0) - f0) * std::pow(1.0 - cosine, 5.0); }

// Walter et al. 2007, equation 33, with the tangent of the angle.
inline double ggx(double alpha, double cosine) {
  double const tangent2 = (1.0 - cosine * cosine) / (cosine * cosine);
  double const a2 = alpha * alpha;
  return a2 / (kPi * std::pow(cosine, 4) * std::pow(a2 + tangent2, 2));
}

// Heitz 2014, equations 72 and 99: Smith's function for GGX and the height-correlated product.
inline double smithLambda(double alpha, double cosine) {
  double const tangent2 = (1.0 - cosine * cosine) / (cosine * cosine);
  return (std::sqrt(1.0 + alpha * alpha * tangent2) - 1.0) / 2.0;
}

inline double visibility(double alpha, double nDotL, double nDotV) {
  double const masking = 1.0 / (1.0 + smithLambda(alpha, nDotL) + smithLambda(alpha, nDotV));
  return masking / (4.0 * nDotL * nDotV);
}

// Heitz 2014, equations 80 and 86: the same with the width of the facets' slopes along each direction.
// Directions by their parts along tangent, binormal and normal.
inline double anisotropicVisibility(double along, double across, Vec3 l, Vec3 v) {
  auto const lambda = [&](Vec3 direction) {
    double const slope2 = std::pow(along * direction.x, 2) + std::pow(across * direction.y, 2);
    return (std::sqrt(1.0 + slope2 / (direction.z * direction.z)) - 1.0) / 2.0;
  };
  return 1.0 / (1.0 + lambda(l) + lambda(v)) / (4.0 * l.z * v.z);
}

// Hammon 2017, slide 84: a line between the masking of smooth and rough surfaces.
inline double fastVisibility(double alpha, double nDotL, double nDotV) {
  return 0.5 / mix(2.0 * nDotL * nDotV, nDotL + nDotV, alpha);
}

// What GGX sends back of light from one direction, integrated; alone and in the two parts that Schlick's
// Fresnel term gives it: reflectance * plain + grazing.
struct GgxAlbedo {
  double plain = 0.0;
  double grazing = 0.0;
  double loss() const { return 1.0 - plain - grazing; }
};
GgxAlbedo ggxAlbedo(double alpha, double cosine);
// The mean over all directions, weighted with the cosine.
GgxAlbedo ggxMeanAlbedo(double alpha);

// Oren and Nayar 1994, equation 30, in angles, relative to Lambert; 0 for a light below the surface. Made
// smaller where the brightest direction would send back more than arrives.
inline double orenNayarFactor(Vec3 n, Vec3 l, Vec3 v, double sigma) {
  if (dot(n, l) <= 0.0) {
    return 0.0;
  }
  double const variance = sigma * sigma;
  double const a = 1.0 - 0.5 * variance / (variance + 0.33);
  double const b = 0.45 * variance / (variance + 0.09);
  double const lightAngle = std::acos(clamp01(dot(n, l)));
  double const viewAngle = std::acos(clamp01(dot(n, v)));
  double const azimuth = dot(unit(l - n * dot(n, l)), unit(v - n * dot(n, v)));
  double const rough = std::max(azimuth, 0.0) * std::sin(std::max(lightAngle, viewAngle)) *
                       std::tan(std::min(lightAngle, viewAngle));
  return (a + b * rough) / std::max(a + b / 2.0, 1.0);
}

// What that model sends back of light from one direction, integrated.
double orenNayarAlbedo(double sigma, double cosine);
double orenNayarMeanAlbedo(double sigma);

// Blinn 1977, normalised so that its albedo for light along the normal is 1 (Giesen 2009).
inline double blinnLobe(Vec3 n, Vec3 l, Vec3 v, double exponent) {
  double const scale =
      (exponent + 2.0) * (exponent + 4.0) / (8.0 * kPi * (std::pow(2.0, -exponent / 2.0) + exponent));
  return scale * std::pow(std::max(dot(n, unit(l + v)), 0.0), exponent);
}

// What that highlight sends back of light from one direction, integrated.
double blinnAlbedo(double exponent, double cosine);

}  // namespace numbers_test
