// Surfaces under lights: what the light loop writes, added up by hand.

#include <gtest/gtest.h>

#include "tests/numbers/agreement.h"
#include "tests/numbers/compute_shader.h"
#include "tests/numbers/fragment_source.h"
#include "tests/numbers/reference_brdf.h"
#include "tests/numbers/reference_texture.h"
#include "tests/numbers/sampler.h"
#include "tests/numbers/vulkan_compute.h"

namespace numbers_test {
namespace {

Tolerance const kSum{2e-4, 2e-4, "rounding of distances and cosines, times irradiances of up to 10"};
Tolerance const kFits{0.06, 0.006,
                      "fits of albedos to within 0.005, times irradiances of up to 10 of each light"};
Tolerance const kHighlights{0.03, 2e-3, "a fit of the highlight of the sky to within 0.03"};

// What one light does at the shading point.
struct Arrival {
  Vec3 direction;   // to the light
  Vec3 irradiance;  // on a surface that faces it
  Vec3 sky;         // radiance from above and below
  Vec3 ground;
};

Vec3 ambientOf(Arrival const& light, Vec3 n) { return mix(light.ground, light.sky, (1.0 + n.y) / 2.0); }

Vec3 arriving(Arrival const& light, Vec3 n) {
  return light.irradiance * std::max(dot(n, light.direction), 0.0);
}

// The state of every row, in front of the surface's ports, so that it has the same place in all.
constexpr std::size_t kPosition = 0;
constexpr std::size_t kEye = 1;
constexpr std::size_t kNormal = 2;
constexpr std::size_t kFirstOwn = 3;

struct Surface {
  std::string fragment;
  double lod = 100.0;
  std::vector<Input> ports;
  std::function<Vec3(Sample const& in, Arrival const& light, Vec3 n, Vec3 v)> shade;
  Tolerance tolerance;
};

Vec3 lambertOf(Arrival const& light, Vec3 n, Vec3 albedo) {
  return albedo * (arriving(light, n) * (1.0 / kPi) + ambientOf(light, n));
}

Vec3 minus(Vec3 color) { return splat(1.0) - color; }

// One bounce, and what several add: Kulla and Conty 2017, with the colour of Fdez-Aguera 2019.
Vec3 orenNayarOf(Arrival const& light, Vec3 n, Vec3 v, Vec3 albedo, double sigma) {
  double const mean = orenNayarMeanAlbedo(sigma);
  double const lossL = 1.0 - orenNayarAlbedo(sigma, std::max(dot(n, light.direction), 0.0));
  double const lossV = 1.0 - orenNayarAlbedo(sigma, dot(n, v));
  Vec3 const again = each(albedo, [&](double rho) { return rho * rho * mean / (1.0 - rho * (1.0 - mean)); });
  double const around = mean < 1.0 ? lossL * lossV / (1.0 - mean) : 0.0;
  Vec3 const lamp = albedo * orenNayarFactor(n, light.direction, v, sigma) + again * around;
  return lamp * arriving(light, n) * (1.0 / kPi) +
         ambientOf(light, n) * (albedo * (1.0 - lossV) + again * lossV);
}

// What several bounces add, weighed by the loss of the view alone.
Vec3 fastOrenNayarOf(Arrival const& light, Vec3 n, Vec3 v, Vec3 albedo, double sigma) {
  double const mean = orenNayarMeanAlbedo(sigma);
  double const loss = 1.0 - orenNayarAlbedo(sigma, dot(n, v));
  Vec3 const again =
      each(albedo, [&](double rho) { return rho * rho * mean / (1.0 - rho * (1.0 - mean)) * loss; });
  Vec3 const lamp = albedo * orenNayarFactor(n, light.direction, v, sigma) + again;
  return lamp * arriving(light, n) * (1.0 / kPi) + ambientOf(light, n) * (albedo * (1.0 - loss) + again);
}

// Diffuse light where nothing is mirrored; the highlight of an even sky is the albedo of the lobe.
Vec3 blinnPhongOf(Arrival const& light, Vec3 n, Vec3 v, Vec3 diffuse, Vec3 specular, double exponent) {
  Vec3 const mirrored = n * (2.0 * dot(n, v)) - v;
  return lambertOf(light, n, diffuse * minus(specular)) +
         specular * (arriving(light, n) * blinnLobe(n, light.direction, v, exponent) +
                     ambientOf(light, mirrored) * blinnAlbedo(exponent, dot(n, v)));
}

// How a GGX surface divides light of one direction.
struct Division {
  double loss = 0.0;
  Vec3 albedo;  // with all bounces
};

Vec3 bounceOf(Vec3 f0, double meanLoss) {
  return each(f0, [&](double f) {
    double const mean = f + (1.0 - f) / 21.0;
    return mean * mean * (1.0 - meanLoss) / (1.0 - mean * meanLoss);
  });
}

Division divide(GgxAlbedo const& once, Vec3 f0, Vec3 bounce) {
  return {once.loss(), f0 * once.plain + splat(once.grazing) + bounce * once.loss()};
}

Vec3 ggxOf(Arrival const& light, Vec3 n, Vec3 v, Vec3 albedo, double metallic, double roughness) {
  Vec3 const f0 = mix(splat(0.04), albedo, metallic);
  double const alpha = alphaOf(roughness);
  GgxAlbedo const once = ggxMeanAlbedo(alpha);
  Vec3 const bounce = bounceOf(f0, once.loss());
  Division const mean = divide(once, f0, bounce);
  Division const toEye = divide(ggxAlbedo(alpha, dot(n, v)), f0, bounce);
  Vec3 const mirrored = n * (2.0 * dot(n, v)) - v;
  Vec3 const diffuse = albedo * (1.0 - metallic);
  Vec3 color =
      ambientOf(light, mirrored) * toEye.albedo + ambientOf(light, n) * diffuse * minus(toEye.albedo);
  if (double const cosine = dot(n, light.direction); cosine > 0.0) {
    Division const fromLight = divide(ggxAlbedo(alpha, cosine), f0, bounce);
    Vec3 const h = unit(light.direction + v);
    double const lobe = ggx(alpha, dot(n, h)) * visibility(alpha, cosine, dot(n, v));
    Vec3 const below = minus(fromLight.albedo) * minus(toEye.albedo) *
                       each(minus(mean.albedo), [](double left) { return 1.0 / std::max(left, 1e-9); });
    color = color + arriving(light, n) * (schlick(f0, dot(v, h)) * lobe +
                                          bounce * (fromLight.loss * toEye.loss / (kPi * mean.loss)) +
                                          diffuse * below * (1.0 / kPi));
  }
  return color;
}

std::vector<Surface> surfaces() {
  Input const albedo = vector3("albedo", 0, 1);
  return {
      {"lambertSurface",
       100.0,
       {albedo},
       [](Sample const& in, Arrival const& light, Vec3 n, Vec3) {
         return lambertOf(light, n, in.vec3(kFirstOwn));
       },
       kSum},
      {"orenNayarSurface",
       100.0,
       {albedo, number("sigma", 0, 1.5)},
       [](Sample const& in, Arrival const& light, Vec3 n, Vec3 v) {
         return orenNayarOf(light, n, v, in.vec3(kFirstOwn), in(kFirstOwn + 1));
       },
       kFits},
      {"orenNayarSurface",
       0.0,
       {albedo, number("sigma", 0, 1.5)},
       [](Sample const& in, Arrival const& light, Vec3 n, Vec3 v) {
         return fastOrenNayarOf(light, n, v, in.vec3(kFirstOwn), in(kFirstOwn + 1));
       },
       kFits},
      {"blinnPhongSurface",
       100.0,
       {vector3("diffuse", 0, 1), vector3("specular", 0, 1), number("exponent", 1, 50)},
       [](Sample const& in, Arrival const& light, Vec3 n, Vec3 v) {
         return blinnPhongOf(light, n, v, in.vec3(kFirstOwn), in.vec3(kFirstOwn + 1), in(kFirstOwn + 2));
       },
       kHighlights},
      {"ggxSurface",
       100.0,
       {albedo, number("metallic", 0, 1), number("roughness", 0.3, 1)},
       [](Sample const& in, Arrival const& light, Vec3 n, Vec3 v) {
         return ggxOf(light, n, v, in.vec3(kFirstOwn), in(kFirstOwn + 1), in(kFirstOwn + 2));
       },
       kFits},
  };
}

// A light's uniforms, in which its instance name is appended to each, and what they do at a point.
struct Light {
  std::vector<Input> uniforms;
  std::function<Arrival(Sample const& in, std::size_t first, Vec3 point)> arrive;
};

Light sun() {
  return {{vector3("light_axisSun", 0.1, 1), vector3("light_colorSun", 0, 1),
           number("light_intensitySun", 0, 10)},
          [](Sample const& in, std::size_t first, Vec3) {
            return Arrival{-unit(in.vec3(first)), in.vec3(first + 1) * in(first + 2), {}, {}};
          }};
}

Light sky() {
  return {{vector3("light_skySky", 0, 1), vector3("light_groundSky", 0, 1)},
          [](Sample const& in, std::size_t first, Vec3) {
            return Arrival{{0, 1, 0}, {}, in.vec3(first), in.vec3(first + 1)};
          }};
}

// The inverse square of the distance, in a window that ends at the range (Karis 2013).
double falloff(double distance, double range) {
  double const window = range > 0.0 ? clamp01(1.0 - std::pow(distance / range, 4)) : 1.0;
  return window * window / (distance * distance);
}

Light lantern() {
  return {{vector3("light_positionLantern", 2.5, 6), vector3("light_colorLantern", 0, 1),
           number("light_intensityLantern", 0, 30), number("light_rangeLantern", 0, 20)},
          [](Sample const& in, std::size_t first, Vec3 point) {
            Vec3 const toLamp = in.vec3(first) - point;
            double const strength = in(first + 2) * falloff(length(toLamp), in(first + 3));
            return Arrival{unit(toLamp), in.vec3(first + 1) * strength, {}, {}};
          }};
}

Light torch() {
  return {{vector3("light_positionTorch", 2.5, 6), vector3("light_axisTorch", -1, -0.1),
           vector3("light_colorTorch", 0, 1), number("light_intensityTorch", 0, 30),
           number("light_innerTorch", 0, 0.4), number("light_outerTorch", 0.6, 1.2),
           number("light_rangeTorch", 0, 20)},
          [](Sample const& in, std::size_t first, Vec3 point) {
            Vec3 const toLamp = in.vec3(first) - point;
            double const cosine = dot(unit(-toLamp), unit(in.vec3(first + 1)));
            double const inner = std::cos(in(first + 4));
            double const outer = std::cos(in(first + 5));
            double const t = clamp01((cosine - outer) / (inner - outer));
            double const strength =
                in(first + 3) * falloff(length(toLamp), in(first + 6)) * t * t * (3.0 - 2.0 * t);
            return Arrival{unit(toLamp), in.vec3(first + 2) * strength, {}, {}};
          }};
}

// The table: the angle about the axis to the right, from the axis down.
Light measured() {
  return {{vector3("light_positionLamp", 2.5, 6), vector3("light_axisLamp", -1, -0.1),
           vector3("light_referenceLamp", 0.2, 1), vector3("light_colorLamp", 0, 1),
           number("light_intensityLamp", 0, 30)},
          [](Sample const& in, std::size_t first, Vec3 point) {
            Vec3 const leaving = unit(point - in.vec3(first));
            Vec3 const axis = unit(in.vec3(first + 1));
            Vec3 const reference = in.vec3(first + 2);
            Vec3 const zero = unit(reference - axis * dot(reference, axis));
            double const around = std::atan2(dot(leaving, cross(axis, zero)), dot(leaving, zero));
            double const away = std::acos(std::clamp(dot(leaving, axis), -1.0, 1.0));
            double const share = textureAt(Vec2{around / (2.0 * kPi), away / kPi}).x;
            double const strength = in(first + 4) * falloff(length(in.vec3(first) - point), 0.0) * share;
            return Arrival{-leaving, in.vec3(first + 3) * strength, {}, {}};
          }};
}

// The lamp at the eye that stands for the light of a scene without lights.
Arrival headLight(Sample const& in) { return {unit(in.vec3(kEye) - in.vec3(kPosition)), splat(kPi), {}, {}}; }

// The row of a surface under lights.
Row rowOf(Surface const& surface, std::vector<Light> const& lights) {
  Row row;
  row.fragment = surface.fragment;
  row.tolerance = surface.tolerance;
  row.inputs = {vector3("sfg_worldPosition", -2, 2), vector3("sfg_eyePosition", 3, 8),
                vector3("normal", 0.2, 1)};
  row.inputs.insert(row.inputs.end(), surface.ports.begin(), surface.ports.end());
  std::vector<std::size_t> firsts;
  for (Light const& light : lights) {
    firsts.push_back(row.inputs.size());
    row.inputs.insert(row.inputs.end(), light.uniforms.begin(), light.uniforms.end());
  }
  row.reference = [surface, lights, firsts](Sample const& in) {
    Vec3 const n = unit(in.vec3(kNormal));
    Vec3 const v = unit(in.vec3(kEye) - in.vec3(kPosition));
    if (lights.empty()) {
      return Result(surface.shade(in, headLight(in), n, v));
    }
    Vec3 sum;
    for (std::size_t i = 0; i < lights.size(); ++i) {
      sum = sum + surface.shade(in, lights[i].arrive(in, firsts[i], in.vec3(kPosition)), n, v);
    }
    return Result(sum);
  };
  return row;
}

class LitSurfaces : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }

  static void check(std::string const& environment, std::vector<Light> const& lights) {
    VulkanCompute compute;
    for (Surface const& surface : surfaces()) {
      FragmentProfile const profile{surface.fragment, "sfg_Light", surface.lod};
      SCOPED_TRACE(describe(profile));
      Row const row = rowOf(surface, lights);
      Function const function = litFunction(profile, row, "tests/numbers/environments/" + environment);
      std::vector<float> const inputs = drawSamples(row.inputs, kSamples, row.fragment);
      EXPECT_TRUE(agree(
          row, inputs,
          compute.run(compileCompute(computeShader(function)), inputs, kSamples * 3, kSamples / kGroupSize)));
    }
  }
};

TEST_F(LitSurfaces, AreLitByALampAtTheEyeWithoutLights) { check("none.json", {}); }

TEST_F(LitSurfaces, ReflectOneLight) { check("sun.json", {sun()}); }

TEST_F(LitSurfaces, AddUpFourLights) { check("four.json", {sun(), sky(), lantern(), torch()}); }

TEST_F(LitSurfaces, ReflectALampWithATable) { check("measured.json", {measured()}); }

}  // namespace
}  // namespace numbers_test
