// References of brdf.fraglib. Directions are unit vectors away from the surface; alpha is the square of the
// roughness.

#include "tests/numbers/reference_brdf.h"
#include "tests/numbers/row.h"

namespace numbers_test {

namespace {

Tolerance const kFew = rounding(8, 1);
Tolerance const kPower{1e-5, 1e-4,
                       "Vulkan's pow is exp2(b log2 a), and the errors of a cosine grow with the exponent"};
Tolerance const kLobe{1e-5, 1e-3, "a rounded cosine near 1 against alpha^2, down to 0.008, in a square"};

Result orenNayar(Sample const& in) {
  double const cosine = std::max(dot(in.vec3(0), in.vec3(1)), 0.0);
  return Result(orenNayarFactor(in.vec3(0), in.vec3(1), in.vec3(2), in(3)) * cosine / kPi);
}

// Burley 2012, section 5.3, with the grazing factor of Lagarde and de Rousiers 2014, listing 7, and a scale;
// times the cosine of the light.
Result burley(Sample const& in) {
  Vec3 const n = in.vec3(0);
  Vec3 const l = in.vec3(1);
  Vec3 const v = in.vec3(2);
  double const lightCosine = dot(n, l);
  if (lightCosine <= 0.0) {
    return Result(0.0);
  }
  double const difference = dot(l, unit(l + v));
  double const grazing = 0.5 * in(3) + 2.0 * in(3) * difference * difference;
  auto const term = [&](double cosine) { return 1.0 + (grazing - 1.0) * std::pow(1.0 - cosine, 5.0); };
  return Result(mix(1.0, 1.0 / 1.55, in(3)) * term(lightCosine) * term(dot(n, v)) * lightCosine / kPi);
}

Result phongLobe(Sample const& in) {
  Vec3 const mirrored = in.vec3(0) * (2.0 * dot(in.vec3(0), in.vec3(1))) - in.vec3(1);
  double const cosine = std::max(dot(mirrored, in.vec3(2)), 0.0);
  return Result((in(3) + 2.0) / (2.0 * kPi) * std::pow(cosine, in(3)));
}

Result blinnHighlight(Sample const& in) {
  return Result(blinnLobe(in.vec3(0), in.vec3(1), in.vec3(2), in(3)));
}

// Fresnel's equations for the two polarisations.
Result fresnel(Sample const& in) {
  double const inside = std::sqrt(1.0 - (1.0 - in(1) * in(1)) / (in(0) * in(0)));
  double const across = (in(1) - in(0) * inside) / (in(1) + in(0) * inside);
  double const along = (in(0) * in(1) - inside) / (in(0) * in(1) + inside);
  return Result((across * across + along * along) / 2.0);
}

Result beckmann(Sample const& in) {
  double const angle = std::acos(in(0));
  double const a2 = std::pow(alphaOf(in(1)), 2);
  return Result(std::exp(-std::pow(std::tan(angle), 2) / a2) / (kPi * a2 * std::pow(std::cos(angle), 4)));
}

// Estevez and Kulla 2017.
Result charlie(Sample const& in) {
  double const inverse = 1.0 / alphaOf(in(1));
  return Result((2.0 + inverse) * std::pow(std::sin(std::acos(in(0))), inverse) / (2.0 * kPi));
}

Result ggxSpecular(Sample const& in) {
  Vec3 const n = in.vec3(0);
  Vec3 const l = in.vec3(1);
  Vec3 const v = in.vec3(2);
  if (dot(n, l) <= 0.0) {
    return Result(Vec3{});
  }
  Vec3 const h = unit(l + v);
  double const alpha = alphaOf(in(4));
  return Result(schlick(in.vec3(3), dot(l, h)) *
                (ggx(alpha, dot(n, h)) * visibility(alpha, dot(n, l), dot(n, v))));
}

// Burley 2012, appendix B.2: the anisotropic distribution.
Result ggxAnisotropic(Sample const& in) {
  Vec3 const n = in.vec3(0);
  Vec3 const t = in.vec3(1);
  Vec3 const l = in.vec3(2);
  Vec3 const v = in.vec3(3);
  if (dot(n, l) <= 0.0) {
    return Result(Vec3{});
  }
  Vec3 const h = unit(l + v);
  double const along = alphaOf(in(5));
  double const across = alphaOf(in(6));
  double const slope =
      std::pow(dot(h, t) / along, 2) + std::pow(dot(h, cross(n, t)) / across, 2) + std::pow(dot(h, n), 2);
  double const distribution = 1.0 / (kPi * along * across * slope * slope);
  auto const parts = [&](Vec3 direction) {
    return Vec3{dot(direction, t), dot(direction, cross(n, t)), dot(direction, n)};
  };
  double const masking = anisotropicVisibility(along, across, parts(l), parts(v));
  return Result(schlick(in.vec3(4), dot(l, h)) * (distribution * masking));
}

// The low level of detail: as the high one with faster masking.
Result ggxSpecularFast(Sample const& in) {
  Vec3 const n = in.vec3(0);
  Vec3 const l = in.vec3(1);
  Vec3 const v = in.vec3(2);
  if (dot(n, l) <= 0.0) {
    return Result(Vec3{});
  }
  Vec3 const h = unit(l + v);
  double const alpha = alphaOf(in(4));
  return Result(schlick(in.vec3(3), dot(l, h)) *
                (ggx(alpha, dot(n, h)) * fastVisibility(alpha, dot(n, l), dot(n, v))));
}

// As many flat tones as steps from 0 to 1, each as wide as the others; the share `softness` of a tone around
// each border rises along the cubic Hermite curve.
Result toonSteps(Sample const& in) {
  int const tones = std::max(static_cast<int>(in(1)), 2);
  double tone = 0.0;
  for (int border = 1; border < tones; ++border) {
    double const t = clamp01((in(0) * tones - border) / in(2) + 0.5);
    tone += (3.0 * t * t - 2.0 * t * t * t) / (tones - 1);
  }
  return Result(tone);
}

bool viewGrazes(Sample const& in, std::size_t view) { return dot(in.vec3(0), in.vec3(view)) < 1e-3; }

// The light is in the plane of the surface: rounding says on which side.
bool lightGrazes(Sample const& in, std::size_t light) {
  return std::fabs(dot(in.vec3(0), in.vec3(light))) < 1e-3;
}

std::vector<Row> diffuseRows() {
  std::vector<Input> const directions = {unit3("normal"), unit3("light")};
  return {
      {"halfVector",
       {unit3("light"), unit3("view")},
       {1e-5, 0.0, "the sum of nearly opposite directions is rounded"},
       [](Sample const& in) { return Result(unit(in.vec3(0) + in.vec3(1))); }},
      {"lambert", directions, kFew,
       [](Sample const& in) { return Result(std::max(dot(in.vec3(0), in.vec3(1)), 0.0) / kPi); }},
      {"lambertInline", directions, kFew,
       [](Sample const& in) { return Result(std::max(dot(in.vec3(0), in.vec3(1)), 0.0) / kPi); }, -1.0,
       "float"},
      {"halfLambert",
       {unit3("normal"), unit3("light"), number("wrap", 0, 1)},
       kPower,
       [](Sample const& in) {
         // 0 is Lambert, 1 the square of (1 + cosine) / 2.
         double const wrapped = std::max((dot(in.vec3(0), in.vec3(1)) + in(2)) / (1.0 + in(2)), 0.0);
         return Result(std::pow(wrapped, 1.0 + in(2)));
       }},
      {"orenNayar",
       {unit3("normal"), unit3("light"), above3("view"), number("sigma", 0, 1.5)},
       {1e-4, 0.0, "the angle between nearly vertical projections"},
       orenNayar},
      {"burleyDiffuse",
       {unit3("normal"), unit3("light"), above3("view"), number("roughness", 0, 1)},
       rounding(32, 1),
       burley},
      {"rimLight",
       {unit3("normal"), unit3("view"), number("power", 0.5, 6)},
       kPower,
       [](Sample const& in) { return Result(std::pow(1.0 - clamp01(dot(in.vec3(0), in.vec3(1))), in(2))); }},
      {"hemisphereAmbient",
       {unit3("normal"), vector3("sky", 0, 1), vector3("ground", 0, 1)},
       kFew,
       [](Sample const& in) { return Result(mix(in.vec3(2), in.vec3(1), (1.0 + in.vec3(0).y) / 2.0)); }},
  };
}

std::vector<Row> termRows() {
  std::vector<Input> const micro = {number("nDotH", 0.001, 1), number("roughness", 0.3, 1)};
  return {
      {"schlickFresnel",
       {vector3("reflectance", 0, 1), number("cosine", 0, 1)},
       kFew,
       [](Sample const& in) { return Result(schlick(in.vec3(0), in(1))); }},
      {"dielectricFresnel",
       {number("refraction", 1.05, 2.5), number("cosine", 0, 1)},
       rounding(64, 1),
       fresnel},
      {"reflectanceFromIndex",
       {number("refraction", 1, 3)},
       kFew,
       [](Sample const& in) { return Result(std::pow((in(0) - 1.0) / (in(0) + 1.0), 2)); }},
      {"ggxDistribution", micro, kLobe, [](Sample const& in) { return Result(ggx(alphaOf(in(1)), in(0))); }},
      {"beckmannDistribution", micro, kLobe, beckmann},
      {"charlieSheen", micro, kPower, charlie},
      {"smithVisibility",
       {number("nDotL", 0.01, 1), number("nDotV", 0.01, 1), number("roughness", 0.1, 1)},
       rounding(64, 1),
       [](Sample const& in) { return Result(visibility(alphaOf(in(2)), in(0), in(1))); }},
  };
}

std::vector<Row> lobeRows() {
  std::vector<Input> const highlight = {unit3("normal"), unit3("light"), above3("view"),
                                        number("exponent", 1, 100)};
  return {
      {"phong", highlight, kPower, phongLobe},
      {"blinnPhong", highlight, kPower, blinnHighlight},
      {"ggxSpecular",
       {unit3("normal"), unit3("light"), above3("view"), vector3("reflectance", 0, 1),
        number("roughness", 0.3, 1)},
       kLobe,
       ggxSpecular,
       100.0,
       {},
       [](Sample const& in) { return viewGrazes(in, 2) || lightGrazes(in, 1); }},
      {"ggxSpecular",
       {unit3("normal"), unit3("light"), above3("view"), vector3("reflectance", 0, 1),
        number("roughness", 0.3, 1)},
       kLobe,
       ggxSpecularFast,
       0.0,
       {},
       [](Sample const& in) { return viewGrazes(in, 2) || lightGrazes(in, 1); }},
      {"toonSteps",
       {number("value", 0, 1), whole("steps", 1, 8), number("softness", 0.05, 1)},
       rounding(400, 1),
       toonSteps},
      {"toonSteps",
       {number("value", -1, 2), number("steps", 0, 9), number("softness", 0.05, 1)},
       rounding(400, 1),
       [](Sample const& in) {
         Sample const& clamped = in;
         return clamped(0) <= 0.0 ? Result(0.0) : clamped(0) >= 1.0 ? Result(1.0) : toonSteps(in);
       }},
      {"ggxAnisotropic",
       {unit3("normal"), across3("tangent"), unit3("light"), above3("view"), vector3("reflectance", 0, 1),
        number("roughnessAlong", 0.3, 1), number("roughnessAcross", 0.3, 1)},
       kLobe,
       ggxAnisotropic,
       -1.0,
       {},
       [](Sample const& in) { return viewGrazes(in, 3) || lightGrazes(in, 2); }},
  };
}

}  // namespace

Topic brdfTopic() {
  Topic topic{"brdf.fraglib", {}};
  for (std::vector<Row> const& rows : {diffuseRows(), termRows(), lobeRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

}  // namespace numbers_test
