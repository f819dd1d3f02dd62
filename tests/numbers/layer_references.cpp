// References of layers.fraglib. Directions are unit vectors away from the surface.

#include "tests/numbers/layer_references.h"

#include <complex>

#include "tests/numbers/reference_brdf.h"

namespace numbers_test {

namespace {

Tolerance const kLobe{1e-5, 2e-3, "a rounded cosine near 1 against alpha^2, down to 0.008, in a square"};

// Gulbrandsen 2014, equations 1 to 3.
double metal(double n, double k, double c) {
  double const across = (n * n + k * k - 2.0 * n * c + c * c) / (n * n + k * k + 2.0 * n * c + c * c);
  double const along =
      ((n * n + k * k) * c * c - 2.0 * n * c + 1.0) / ((n * n + k * k) * c * c + 2.0 * n * c + 1.0);
  return (across + along) / 2.0;
}

// The same, equations 4 to 9.
double artistic(double r, double g, double c) {
  double const least = (1.0 - r) / (1.0 + r);
  double const most = (1.0 + std::sqrt(r)) / (1.0 - std::sqrt(r));
  double const n = g * least + (1.0 - g) * most;
  double const k2 = (r * std::pow(n + 1.0, 2) - std::pow(n - 1.0, 2)) / (1.0 - r);
  return metal(n, std::sqrt(std::max(k2, 0.0)), c);
}

double lobe(double at, double middle, double below, double above) {
  double const t = (at - middle) / (at < middle ? below : above);
  return std::exp(-t * t / 2.0);
}

// The colour-matching functions by Wyman, Sloan and Shirley 2013, over nanometres.
Vec3 colorMatching(double l) {
  return {1.056 * lobe(l, 599.8, 37.9, 31.0) + 0.362 * lobe(l, 442.0, 16.0, 26.7) -
              0.065 * lobe(l, 501.1, 20.4, 26.2),
          0.821 * lobe(l, 568.8, 46.9, 40.5) + 0.286 * lobe(l, 530.9, 16.3, 31.1),
          1.217 * lobe(l, 437.0, 11.8, 36.0) + 0.681 * lobe(l, 459.0, 26.0, 13.8)};
}

// Airy's sum for one wave length, with complex amplitudes.
double film(double thickness, double filmIndex, double baseIndex, double c, double wave) {
  auto const inside = [c](double index) { return std::sqrt(1.0 - (1.0 - c * c) / (index * index)); };
  double const cf = inside(filmIndex);
  double const cb = inside(baseIndex);
  double const phase = 4.0 * kPi * filmIndex * thickness * cf / wave;
  std::complex<double> const turn = std::polar(1.0, phase);
  auto const share = [turn](double outer, double inner) {
    return std::norm((outer + inner * turn) / (1.0 + outer * inner * turn));
  };
  double const across = share((c - filmIndex * cf) / (c + filmIndex * cf),
                              (filmIndex * cf - baseIndex * cb) / (filmIndex * cf + baseIndex * cb));
  double const along = share((filmIndex * c - cf) / (filmIndex * c + cf),
                             (baseIndex * cf - filmIndex * cb) / (baseIndex * cf + filmIndex * cb));
  return (across + along) / 2.0;
}

// Light of the same power in all wave lengths, seen as white.
Result thinFilm(Sample const& in) {
  Vec3 seen;
  Vec3 white;
  for (double wave = 380.5; wave < 780.0; wave += 1.0) {
    Vec3 const eye = colorMatching(wave);
    seen = seen + eye * film(in(0), in(1), in(2), in(3), wave);
    white = white + eye;
  }
  double const x = seen.x / white.x * 0.950456;
  double const y = seen.y / white.y;
  double const z = seen.z / white.z * 1.089058;
  return Result(clamp01(3.2404542 * x - 1.5371385 * y - 0.4985314 * z),
                clamp01(-0.9692660 * x + 1.8760108 * y + 0.0415560 * z),
                clamp01(0.0556434 * x - 0.2040259 * y + 1.0572252 * z));
}

// Albedo of GGX with all bounces, for a reflectance of 0.04 (Fdez-Aguera 2019).
double coatAlbedo(double alpha, double cosine) {
  static double const f0 = 0.04;
  GgxAlbedo const once = ggxAlbedo(alpha, cosine);
  double const mean = f0 + (1.0 - f0) / 21.0;
  double const lost = ggxMeanAlbedo(alpha).loss();
  return f0 * once.plain + once.grazing + mean * mean * (1.0 - lost) / (1.0 - mean * lost) * once.loss();
}

Result coat(Sample const& in) {
  double const nDotL = dot(in.vec3(0), in.vec3(1));
  double const nDotV = dot(in.vec3(0), in.vec3(2));
  if (nDotL <= 0.0) {
    return Result(0.0, 0.0);
  }
  double const alpha = alphaOf(in(4));
  Vec3 const h = unit(in.vec3(1) + in.vec3(2));
  double const reflected = schlick(splat(0.04), dot(in.vec3(1), h)).x *
                           (ggx(alpha, dot(in.vec3(0), h)) * visibility(alpha, nDotL, nDotV));
  return Result(in(3) * reflected,
                (1.0 - in(3) * coatAlbedo(alpha, nDotL)) * (1.0 - in(3) * coatAlbedo(alpha, nDotV)));
}

// Estevez and Kulla 2017, with the masking of Neubelt and Pettineo 2013, over a half vector's cosine.
double threads(double alpha, double nDotH, double nDotL, double nDotV) {
  double const charlie =
      (2.0 + 1.0 / alpha) * std::pow(std::max(1.0 - nDotH * nDotH, 0.0), 0.5 / alpha) / (2.0 * kPi);
  return charlie / (4.0 * (nDotL + nDotV - nDotL * nDotV));
}

// What they send back of light from one direction: an integral over directions.
double threadAlbedo(double alpha, double cosine) {
  constexpr int kSteps = 64;
  double const sine = std::sqrt(1.0 - cosine * cosine);
  double sum = 0.0;
  for (int i = 0; i < kSteps; ++i) {
    double const c = (i + 0.5) / kSteps;
    double const s = std::sqrt(1.0 - c * c);
    for (int k = 0; k < kSteps; ++k) {
      double const towards = cosine * c + sine * s * std::cos(kPi * (k + 0.5) / kSteps);
      double const nDotH = (cosine + c) / std::sqrt(2.0 + 2.0 * towards);
      sum += threads(alpha, nDotH, c, cosine) * c;
    }
  }
  return sum * 2.0 * kPi / (kSteps * kSteps);
}

double meanThreadAlbedo(double alpha) {
  double sum = 0.0;
  for (int i = 0; i < 16; ++i) {
    double const cosine = (i + 0.5) / 16.0;
    sum += std::min(threadAlbedo(alpha, cosine), 1.0) * cosine / 8.0;
  }
  return sum;
}

Result sheen(Sample const& in) {
  double const nDotL = dot(in.vec3(0), in.vec3(1));
  double const nDotV = dot(in.vec3(0), in.vec3(2));
  if (nDotL <= 0.0) {
    return Result(0.0, 0.0);
  }
  double const alpha = alphaOf(in(4));
  double const eL = threadAlbedo(alpha, nDotL);
  double const eV = threadAlbedo(alpha, nDotV);
  double const nDotH = dot(in.vec3(0), unit(in.vec3(1) + in.vec3(2)));
  double const through = (1.0 - in(3) * std::min(eL, 1.0)) * (1.0 - in(3) * std::min(eV, 1.0)) /
                         (1.0 - in(3) * meanThreadAlbedo(alpha));
  return Result(in(3) * threads(alpha, nDotH, nDotL, nDotV) / std::max({eL, eV, 1.0}), through);
}

// Karis 2013, pages 14 to 16: towards the point of the ball that is nearest to the mirrored ray.
Vec3 toNearest(Sample const& in) {
  Vec3 const n = in.vec3(0);
  Vec3 const v = in.vec3(1);
  Vec3 const mirrored = n * (2.0 * dot(n, v)) - v;
  Vec3 const aside = mirrored * dot(in.vec3(2), mirrored) - in.vec3(2);
  return unit(in.vec3(2) + aside * clamp01(in(3) / length(aside)));
}

Result ball(Sample const& in) {
  Vec3 const n = in.vec3(0);
  Vec3 const v = in.vec3(1);
  Vec3 const l = toNearest(in);
  if (dot(n, l) <= 0.0) {
    return Result(Vec3{});
  }
  double const alpha = alphaOf(in(5));
  double const wider = clamp01(alpha + in(3) / (2.0 * length(in.vec3(2))));
  Vec3 const h = unit(l + v);
  double const lobe = ggx(alpha, dot(n, h)) * visibility(alpha, dot(n, l), dot(n, v));
  return Result(schlick(in.vec3(4), dot(l, h)) * (lobe * std::pow(alpha / wider, 2)));
}

double bell(double width, double angle) {
  return std::exp(-angle * angle / (2.0 * width * width)) / (width * std::sqrt(2.0 * kPi));
}

// Fresnel's equations for an index of 1.55.
double hairFresnel(double c) {
  double const inside = std::sqrt(1.0 - (1.0 - c * c) / (1.55 * 1.55));
  double const across = (c - 1.55 * inside) / (c + 1.55 * inside);
  double const along = (1.55 * c - inside) / (1.55 * c + inside);
  return (across * across + along * along) / 2.0;
}

// Marschner et al. 2003, in angles: three lobes; the spreads around the hair are powers of the cosine of
// area 1.
Result hair(Sample const& in) {
  Vec3 const t = in.vec3(0);
  Vec3 const l = in.vec3(1);
  Vec3 const v = in.vec3(2);
  double const lightAngle = std::asin(std::clamp(dot(t, l), -1.0, 1.0));
  double const viewAngle = std::asin(std::clamp(dot(t, v), -1.0, 1.0));
  Vec3 const lightPart = unit(l - t * dot(t, l));
  Vec3 const viewPart = unit(v - t * dot(t, v));
  double const around = std::acos(std::clamp(dot(lightPart, viewPart), -1.0, 1.0));
  double const outside = hairFresnel(std::cos(std::acos(std::clamp(dot(l, v), -1.0, 1.0)) / 2.0));
  double const inside = hairFresnel(0.5 * std::cos((viewAngle - lightAngle) / 2.0));
  double const middle = (lightAngle + viewAngle) / 2.0;
  double const near = std::cos(around / 2.0);
  double const far = std::sin(around / 2.0);
  // The integrals of the eighth power of a half angle's sine and the fourth of its cosine are 35/64 and 3/4
  // of pi.
  double const surface = outside * bell(in(5), middle + in(4)) * near / 4.0;
  double const entering = std::pow(1.0 - inside, 2);
  double const through =
      entering * bell(in(5) / 2.0, middle - in(4) / 2.0) * std::pow(far, 8) / (kPi * 35.0 / 64.0);
  double const back =
      entering * inside * bell(in(5) * 2.0, middle - 1.5 * in(4)) * std::pow(near, 4) / (kPi * 3.0 / 4.0);
  double const least = std::max(std::cos(lightAngle), std::cos(viewAngle));
  double const cosine = std::cos(lightAngle) / (least * least) / 2.0;
  return Result(each(
      in.vec3(3), [&](double color) { return (surface + color * through + color * color * back) * cosine; }));
}

bool grazes(Vec3 n, Vec3 direction) { return std::fabs(dot(n, direction)) < 2e-3; }

}  // namespace

Topic layerTopic() {
  std::vector<Input> const coated = {unit3("normal"), unit3("light"), above3("view"),
                                     number("strength", 0, 1), number("roughness", 0.3, 1)};
  return {
      "layers.fraglib",
      {
          {"artisticFresnel",
           {vector3("reflectance", 0.02, 0.98), vector3("edgeTint", 0, 1), number("cosine", 0, 1)},
           {1e-4, 0.0, "differences of squares of up to 10,000"},
           [](Sample const& in) {
             return Result(
                 each(in.vec3(0), in.vec3(1), [&](double r, double g) { return artistic(r, g, in(2)); }));
           }},
          {"metalFresnel",
           {vector3("refraction", 0.1, 4), vector3("extinction", 0, 8), number("cosine", 0, 1)},
           {1e-5, 0.0, "rounding of quotients near 1"},
           [](Sample const& in) {
             return Result(
                 each(in.vec3(0), in.vec3(1), [&](double n, double k) { return metal(n, k, in(2)); }));
           }},
          {"thinFilmFresnel",
           {number("thickness", 0, 1000), number("filmIndex", 1.1, 2), number("baseIndex", 1, 2),
            number("cosine", 0.1, 1)},
           {0.06, 0.0, "Gaussians over frequencies stand for the colour-matching functions"},
           thinFilm},
          {"coatLayer",
           coated,
           {0.01, 2e-3, "fits of albedos to within 0.005"},
           coat,
           -1.0,
           {},
           [](Sample const& in) { return grazes(in.vec3(0), in.vec3(1)) || grazes(in.vec3(0), in.vec3(2)); }},
          {"sheenLayer",
           coated,
           {0.03, 0.02, "a fit of the albedo to within 0.013, over at least 0.2"},
           sheen,
           -1.0,
           {},
           [](Sample const& in) { return grazes(in.vec3(0), in.vec3(1)) || grazes(in.vec3(0), in.vec3(2)); }},
          {"ballLightSpecular",
           {unit3("normal"), above3("view"), vector3("lamp", -3, 3), number("radius", 0, 1),
            vector3("reflectance", 0, 1), number("roughness", 0.4, 1)},
           {1e-4, 1e-2,
            "the direction of the nearest point is rounded where it is in the middle of the ball"},
           ball,
           -1.0,
           {},
           [](Sample const& in) {
             return grazes(in.vec3(0), in.vec3(1)) || grazes(in.vec3(0), toNearest(in));
           }},
          {"hairReflection",
           {unit3("tangent"), unit3("light"), unit3("view"), vector3("color", 0, 1),
            number("tilt", -0.2, 0.2), number("width", 0.1, 0.6)},
           {2e-3, 1e-2, "Vulkan's arc sine is off by up to 2^-11, of a curve as narrow as 0.05"},
           hair,
           -1.0,
           {},
           [](Sample const& in) {
             return std::fabs(dot(in.vec3(0), in.vec3(1))) > 0.995 ||
                    std::fabs(dot(in.vec3(0), in.vec3(2))) > 0.995;
           }},
          {"diffusionProfile",
           {number("distance", 0.01, 3), number("albedo", 0, 1), number("meanFreePath", 0.1, 2)},
           {1e-5, 1e-3, "Vulkan's exp is off by 3 + 2 |x| units in the last place"},
           [](Sample const& in) {
             double const s = 1.85 - in(1) + 7.0 * std::pow(std::fabs(in(1) - 0.8), 3);
             double const d = in(2) / s;
             return Result(in(1) * (std::exp(-in(0) / d) + std::exp(-in(0) / (3.0 * d))) /
                           (8.0 * kPi * d * in(0)));
           }},
          {"translucentLight",
           {unit3("normal"), unit3("light"), unit3("view"), number("distortion", 0, 0.8),
            number("power", 1, 12), number("thinness", 0, 1)},
           {1e-4, 1e-3, "Vulkan's pow"},
           [](Sample const& in) {
             Vec3 const bent = unit(in.vec3(1) + in.vec3(0) * in(3));
             return Result(std::pow(clamp01(-dot(in.vec3(2), bent)), in(4)) * in(5));
           }},
      }};
}

}  // namespace numbers_test
