// The white furnace: what reflection models and surfaces send back of light from all sides, and that light
// may take each road both ways.

#include <cstdio>

#include <gtest/gtest.h>

#include "tests/numbers/reflection_models.h"

namespace numbers_test {
namespace {

// Of each way to choose directions; long highlights of brushed metal need more.
constexpr std::size_t kPoints = 1024;
constexpr std::size_t kTangentPoints = 8192;
constexpr double kMost = 1.01;

std::vector<double> const& viewAngles() {
  static std::vector<double> const degrees = {0, 30, 60, 75, 80, 85, 87, 89.5};
  return degrees;
}

double radians(double degrees) { return degrees * kPi / 180.0; }

Vec3 direction(double cosine, double azimuth) {
  double const sine = std::sqrt(std::max(1.0 - cosine * cosine, 0.0));
  return {sine * std::cos(azimuth), sine * std::sin(azimuth), cosine};
}

// The widths of a highlight along and across the tangent.
struct Lobe {
  double along = 1.0;
  double across = 1.0;

  double density(Vec3 half) const {
    double const d = std::pow(half.x / along, 2) + std::pow(half.y / across, 2) + half.z * half.z;
    return half.z / (kPi * along * across * d * d);
  }
  Vec3 half(Vec2 point) const {
    double const slope = std::sqrt(point.x / (1.0 - point.x));
    double const angle = 2.0 * kPi * point.y;
    return unit(Vec3{along * slope * std::cos(angle), across * slope * std::sin(angle), 1.0});
  }
};

// The light directions to integrate over for one view: some after the cosine, some after the half vectors of
// each of the highlights. Each has the weight of its share of the hemisphere.
struct WeightedLight {
  Vec3 direction;
  double weight = 0.0;
};

std::vector<WeightedLight> lightsFor(Vec3 view, std::vector<Lobe> const& lobes, std::size_t points) {
  std::vector<WeightedLight> lights;
  auto const add = [&](Vec3 light) {
    if (light.z <= 0.0) {
      return;
    }
    Vec3 const half = unit(light + view);
    double density = light.z / kPi;
    for (Lobe const& lobe : lobes) {
      density += lobe.density(half) / (4.0 * dot(view, half));
    }
    lights.push_back({light, 1.0 / (density * static_cast<double>(points))});
  };
  for (std::size_t i = 0; i < points; ++i) {
    Vec2 const point = evenPoint(i, points);
    add(direction(std::sqrt(point.x), 2.0 * kPi * point.y));
    for (Lobe const& lobe : lobes) {
      Vec3 const half = lobe.half(point);
      add(half * (2.0 * dot(view, half)) - view);
    }
  }
  return lights;
}

// The highlights of a setting: that of its roughnesses and a middling one.
std::vector<Lobe> lobesOf(ReflectionModel const& model, std::vector<double> const& setting) {
  std::vector<Lobe> lobes = {{0.1, 0.1}};
  if (!model.roughnesses.empty()) {
    auto const alpha = [&](std::size_t at) { return std::max(setting[at] * setting[at], 0.001); };
    lobes.push_back({alpha(model.roughnesses.front()), alpha(model.roughnesses.back())});
  }
  return lobes;
}

struct Range {
  double low = HUGE_VAL;
  double high = -HUGE_VAL;
  std::string lowPlace = {};
  std::string highPlace = {};

  void add(double value, std::string const& place) {
    if (!(value >= low)) {
      low = value;
      lowPlace = place;
    }
    if (!(value <= high)) {
      high = value;
      highPlace = place;
    }
  }
};

std::string placeOf(std::vector<double> const& setting, double degrees, double azimuth) {
  std::string text = "at " + std::to_string(static_cast<int>(degrees)) + " degrees, azimuth " +
                     std::to_string(azimuth) + ", with";
  for (double const value : setting) {
    text += " " + std::to_string(value);
  }
  return text;
}

bool isFinite(Vec3 color) { return std::isfinite(color.x + color.y + color.z); }

class Reflection : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }

  // Checks the albedo at every setting and angle, under lamps all around and under an even sky.
  void checkAlbedo(ReflectionModel const& model) {
    SCOPED_TRACE(describe(model));
    ReflectionOnDevice const device(model);
    Range lamps;
    Range sky;
    double furthest = 0.0;
    std::string furthestPlace;
    for (std::vector<double> const& setting : model.settings) {
      for (double degrees : viewAngles()) {
        if (model.hasTangent && degrees > 89.0) {
          degrees =
              89.0;  // nearer to the horizon, the sum over a highlight 400 times as long as wide is noise
        }
        for (double const azimuth : azimuthsOf(model)) {
          Vec3 const view = direction(std::cos(radians(degrees)), azimuth);
          std::string const place = placeOf(setting, degrees, azimuth);
          Vec3 const albedo = integrate(model, device, view, setting);
          add(lamps, albedo, place);
          if (model.isSurface) {
            Vec3 const even = device.inEvenLight(compute_, {{{0, 0, 1}, view, &setting}}).at(0);
            add(sky, even, place);
            Vec3 const off = even - albedo;
            double const difference = std::max({std::fabs(off.x), std::fabs(off.y), std::fabs(off.z)});
            if (!(difference <= furthest)) {
              furthest = difference;
              furthestPlace = place;
            }
          }
        }
      }
    }
    std::printf("albedo %.3f to %.3f", lamps.low, lamps.high);
    if (model.isSurface) {
      std::printf(", under a sky %.3f to %.3f, %.3f apart", sky.low, sky.high, furthest);
    }
    std::printf(": %s\n", describe(model).c_str());
    EXPECT_LE(lamps.high, kMost) << lamps.highPlace;
    EXPECT_GE(lamps.low, model.least) << lamps.lowPlace;
    if (model.isSurface) {
      EXPECT_LE(sky.high, kMost) << sky.highPlace;
      EXPECT_LE(furthest, model.skyApart) << furthestPlace;
    }
  }

  Vec3 integrate(ReflectionModel const& model, ReflectionOnDevice const& device, Vec3 view,
                 std::vector<double> const& setting) {
    std::vector<ReflectionOnDevice::Pair> pairs;
    std::vector<WeightedLight> const lights =
        lightsFor(view, lobesOf(model, setting), model.hasTangent ? kTangentPoints : kPoints);
    for (WeightedLight const& light : lights) {
      pairs.push_back({light.direction, view, &setting});
    }
    std::vector<Vec3> const reflected = device.reflected(compute_, pairs);
    Vec3 sum;
    for (std::size_t i = 0; i < lights.size(); ++i) {
      sum = sum + reflected[i] * lights[i].weight;
    }
    return sum;
  }

  VulkanCompute compute_;

private:
  static std::vector<double> azimuthsOf(ReflectionModel const& model) {
    return model.hasTangent ? std::vector<double>{0.0, kPi / 4.0, kPi / 2.0} : std::vector<double>{0.3};
  }

  // The smallest of the first channel, the white one, and the largest of all; nothing may be NaN.
  static void add(Range& range, Vec3 color, std::string const& place) {
    range.add(color.x, place);
    for (double const channel : {color.y, color.z}) {
      if (!(channel <= range.high)) {
        range.high = channel;
        range.highPlace = place;
      }
    }
    EXPECT_TRUE(isFinite(color)) << place;
  }
};

TEST_F(Reflection, IsNeverMoreThanArrives) {
  for (ReflectionModel const& model : reflectionModels()) {
    checkAlbedo(model);
  }
}

TEST_F(Reflection, IsTheSameBothWays) {
  for (ReflectionModel const& model : reflectionModels()) {
    if (!model.isReciprocal) {
      continue;
    }
    SCOPED_TRACE(describe(model));
    ReflectionOnDevice const device(model);
    for (std::vector<double> const& setting : model.settings) {
      std::vector<ReflectionOnDevice::Pair> there;
      std::vector<ReflectionOnDevice::Pair> back;
      for (std::size_t i = 0; i < 256; ++i) {
        Vec2 const a = evenPoint(i, 256);
        Vec2 const b = evenPoint((i * 37) % 256, 256);
        Vec3 const light = direction(0.05 + 0.95 * a.x, 2.0 * kPi * b.y);
        Vec3 const view = direction(0.05 + 0.95 * b.x, 2.0 * kPi * a.y);
        there.push_back({light, view, &setting});
        back.push_back({view, light, &setting});
      }
      std::vector<Vec3> const first = device.reflected(compute_, there);
      std::vector<Vec3> const second = device.reflected(compute_, back);
      for (std::size_t i = 0; i < first.size(); ++i) {
        Vec3 const a = first[i] * (1.0 / there[i].light.z);
        Vec3 const b = second[i] * (1.0 / back[i].light.z);
        EXPECT_LE(length(a - b), 1e-4 + 3e-3 * length(a)) << placeOf(setting, 0, 0) << ", pair " << i;
        if (HasFailure()) {
          return;
        }
      }
    }
  }
}

// Of a polished white metal nothing is lost to the digits of 32-bit numbers, whose step near 1 is a tenth of
// the square of the smallest width.
TEST_F(Reflection, OfNarrowHighlightsLosesNothing) {
  for (double const lod : {100.0, 0.0}) {
    ReflectionModel model;
    model.fragment = "ggxSpecular";
    model.lod = lod;
    model.ports = {vector3("reflectance", 0, 1), number("roughness", 0, 1)};
    model.settings = {{1, 1, 1, 0.0}, {1, 1, 1, 0.03}, {1, 1, 1, 0.05}, {1, 1, 1, 0.1}};
    model.roughnesses = {3};
    model.isSurface = false;
    model.hasCosine = false;
    ReflectionOnDevice const device(model);
    for (std::vector<double> const& setting : model.settings) {
      for (double const degrees : {0.0, 10.0, 30.0, 60.0}) {
        Vec3 const view = direction(std::cos(radians(degrees)), 0.3);
        EXPECT_NEAR(integrate(model, device, view, setting).x, 1.0, lod == 100.0 ? 0.005 : 0.02)
            << placeOf(setting, degrees, 0.3);
      }
    }
  }
}

// Seen from above, the facets of every distribution cover the surface once.
TEST_F(Reflection, OfFacetsCoversTheSurfaceOnce) {
  for (std::string const name : {"ggxDistribution", "beckmannDistribution", "charlieSheen"}) {
    DeviceFragment const device({name, "default", 100.0}, {number("nDotH", 0, 1), number("roughness", 0, 1)});
    for (double const roughness : {0.1, 0.2, 0.4, 0.7, 1.0}) {
      constexpr std::size_t kSteps = 65536;
      std::vector<float> samples;
      std::vector<double> weights;
      double before = 1.0;
      for (std::size_t i = 1; i <= kSteps; ++i) {
        // The cosine falls quadratically from 1: narrow lobes lie there.
        double const t = static_cast<double>(i) / kSteps;
        double const cosine = 1.0 - t * t;
        samples.push_back(static_cast<float>((before + cosine) / 2.0));
        samples.push_back(static_cast<float>(roughness));
        weights.push_back(2.0 * kPi * (before - cosine));
        before = cosine;
      }
      std::vector<float> const density = device.run(compute_, samples);
      double sum = 0.0;
      for (std::size_t i = 0; i < kSteps; ++i) {
        sum += static_cast<double>(density[i] * samples[2 * i]) * weights[i];
      }
      EXPECT_NEAR(sum, 1.0, 0.005) << name << " of roughness " << roughness;
    }
  }
}

// The weights of MetaSL surfaces, whose complete shaders CompleteShaders compares.
TEST_F(Reflection, OfMetaSlIsNeverMoreThanArrives) {
  Function function;
  function.code = includeText("sfg_msl_common.h") + R"(
float2 numbers_weights(float3 toLight, float3 toEye, float exponent)
{
    float3 n = float3(0.0, 0.0, 1.0);
    sfg_Light lamp = sfg_makeLight(toLight, 1.0, float3(1.0, 1.0, 1.0));
    Light_iterator record = sfg_mslFromLight(lamp, float3(0.0, 0.0, 0.0), n);
    return float2(sfg_mslDiffuse(record), sfg_mslSpecular(record, n, toEye, exponent));
}
)";
  function.call = "result = numbers_weights(toLight, toEye, exponent);";
  function.inputs = {
      {{"toLight", "float3"}, false}, {{"toEye", "float3"}, false}, {{"exponent", "float"}, false}};
  function.outputs = {{"result", "float2"}};
  DeviceFragment const device(function);
  for (double const exponent : {0.0, 1.0, 2.0, 4.0, 10.0, 50.0, 1000.0}) {
    for (double const degrees : viewAngles()) {
      Vec3 const view = direction(std::cos(radians(degrees)), 0.3);
      std::vector<WeightedLight> const lights = lightsFor(view, {{0.1, 0.1}, {0.5, 0.5}}, 4 * kPoints);
      std::vector<float> samples;
      for (WeightedLight const& light : lights) {
        append(samples, light.direction);
        append(samples, view);
        samples.push_back(static_cast<float>(exponent));
      }
      std::vector<float> const weights = device.run(compute_, samples);
      double diffuse = 0.0;
      double specular = 0.0;
      for (std::size_t i = 0; i < lights.size(); ++i) {
        diffuse += static_cast<double>(weights[2 * i]) * lights[i].weight;
        specular += static_cast<double>(weights[2 * i + 1]) * lights[i].weight;
      }
      EXPECT_NEAR(diffuse, 1.0, 0.01);
      EXPECT_LE(specular, kMost) << "exponent " << exponent << " at " << degrees << " degrees";
      if (degrees == 0) {
        EXPECT_GE(specular, 0.97) << "exponent " << exponent;
      }
    }
  }
}

// What the surfaces make of an image light, whose cube map is read by its fragment.
TEST_F(Reflection, OfAnImageIsThatOfTheMirrorDirection) {
  Function function;
  function.code = includeText("sfg_surfaces.h") + R"(
float3 numbers_shade(float metallic, float roughness)
{
    sfg_Light light = sfg_makeImageLight(float3(1.0, 0.0, 0.0), float3(0.0, 1.0, 0.0), float3(0.0, 0.0, 1.0));
    float3 white = float3(1.0, 1.0, 1.0);
    return sfg_shadeGgx(light, float3(0.0, 0.0, 1.0), float3(0.6, 0.0, 0.8), white, metallic, roughness);
}
)";
  function.call = "result = numbers_shade(metallic, roughness);";
  function.inputs = {{{"metallic", "float"}, false}, {{"roughness", "float"}, false}};
  function.outputs = {{"result", "float3"}};
  // A polished mirror, matt metal, and white plastic whose diffuse light comes along the normal.
  std::vector<float> const colors = DeviceFragment(function).run(compute_, {1, 0, 1, 1, 0, 0});
  float const expected[] = {0, 1, 0, 0, 0, 1, 0.96f, 0.04f, 0};
  for (std::size_t i = 0; i < 9; ++i) {
    EXPECT_NEAR(colors[i], expected[i], 0.005f) << "component " << i;
  }
}

// A surface between two of the six degrees of blur mixes the two.
TEST_F(Reflection, OfAnImageHasSixDegreesOfBlur) {
  Function function;
  function.code = includeText("sfg_lights.h") + R"(
float3 numbers_mirrored(float roughness)
{
    sfg_Light light = sfg_makeImageLight(float3(0.0, 0.0, 0.0), float3(0.0, 0.0, 1.0), float3(0.0, 0.0, 32.0));
    light.mirrorSmooth = float3(0.0, 0.0, 2.0);
    light.mirrorSatin = float3(0.0, 0.0, 4.0);
    light.mirrorBrushed = float3(0.0, 0.0, 8.0);
    light.mirrorRough = float3(0.0, 0.0, 16.0);
    return sfg_lightMirrored(light, float3(0.0, 1.0, 0.0), roughness);
}
)";
  function.call = "result = numbers_mirrored(roughness);";
  function.inputs = {{{"roughness", "float"}, false}};
  function.outputs = {{"result", "float3"}};
  std::vector<float> const seen = DeviceFragment(function).run(
      compute_, {-1.0f, 0.0f, 0.1f, 0.2f, 0.4f, 0.5f, 0.6f, 0.8f, 0.9f, 1.0f, 2.0f});
  float const expected[] = {1, 1, 1.5f, 2, 4, 6, 8, 16, 24, 32, 32};
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_NEAR(seen[3 * i + 2], expected[i], 1e-4f) << i;
  }
}

}  // namespace
}  // namespace numbers_test
