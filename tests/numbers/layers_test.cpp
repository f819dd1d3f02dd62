// Layers and hair in the white furnace, what a body scatters, and what lights of a size bring, all
// integrated.

#include <cstdio>

#include <gtest/gtest.h>

#include "tests/numbers/device_fragment.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {
namespace {

constexpr double kMost = 1.01;

Vec3 direction(double cosine, double azimuth) {
  double const sine = std::sqrt(std::max(1.0 - cosine * cosine, 0.0));
  return {sine * std::cos(azimuth), sine * std::sin(azimuth), cosine};
}

class Layers : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }

  VulkanCompute compute_;
};

// Each layer over white diffuse paint.
TEST_F(Layers, OverWhitePaintReflectNoMoreThanArrives) {
  constexpr std::size_t kPoints = 16384;
  for (std::string const name : {"coatLayer", "sheenLayer"}) {
    DeviceFragment const device({name, "default", 100.0},
                                {unit3("normal"), unit3("light"), unit3("view"), number("strength", 0, 1),
                                 number("roughness", 0, 1)});
    double least = 1.0;
    double most = 0.0;
    for (double const strength : {0.5, 1.0}) {
      for (double const roughness : {0.3, 0.5, 0.8, 1.0}) {
        for (double const degrees : {0.0, 45.0, 70.0, 85.0}) {
          Vec3 const view = direction(std::cos(degrees * kPi / 180.0), 0.3);
          std::vector<float> samples;
          for (std::size_t i = 0; i < kPoints; ++i) {
            Vec2 const point = evenPoint(i, kPoints);
            append(samples, {0, 0, 1});
            append(samples, direction(std::sqrt(point.x), 2.0 * kPi * point.y));
            append(samples, view);
            samples.push_back(static_cast<float>(strength));
            samples.push_back(static_cast<float>(roughness));
          }
          std::vector<float> const out = device.run(compute_, samples);
          double sum = 0.0;
          for (std::size_t i = 0; i < kPoints; ++i) {
            sum += static_cast<double>(out[2 * i]) * kPi + static_cast<double>(out[2 * i + 1]);
          }
          double const albedo = sum / static_cast<double>(kPoints);
          least = std::min(least, albedo);
          most = std::max(most, albedo);
          EXPECT_LE(albedo, kMost) << name << " of " << strength << ", roughness " << roughness << " at "
                                   << degrees;
        }
      }
    }
    std::printf("albedo %.3f to %.3f: %s over white\n", least, most, name.c_str());
    EXPECT_GE(least, 0.75) << name;
  }
}

// Light from the whole sphere: a hair has no side that is turned away.
TEST_F(Layers, OfHairSendOutNoMoreThanArrives) {
  constexpr std::size_t kPoints = 65536;
  DeviceFragment const device({"hairReflection", "default", 100.0},
                              {unit3("tangent"), unit3("light"), unit3("view"), vector3("color", 0, 1),
                               number("tilt", 0, 1), number("width", 0, 1)});
  for (double const width : {0.05, 0.15, 0.4}) {
    for (double const degrees : {0.0, 30.0, 60.0, 80.0}) {
      double const angle = degrees * kPi / 180.0;
      std::vector<float> samples;
      for (std::size_t i = 0; i < kPoints; ++i) {
        Vec2 const point = evenPoint(i, kPoints);
        append(samples, {0, 0, 1});
        append(samples, direction(2.0 * point.x - 1.0, 2.0 * kPi * point.y));
        append(samples, {std::cos(angle), 0, std::sin(angle)});
        append(samples, {1.0, 0.5, 0.0});
        samples.push_back(0.05f);
        samples.push_back(static_cast<float>(width));
      }
      std::vector<float> const out = device.run(compute_, samples);
      Vec3 sum;
      for (std::size_t i = 0; i < kPoints; ++i) {
        sum = sum + Vec3{static_cast<double>(out[3 * i]), static_cast<double>(out[3 * i + 1]),
                         static_cast<double>(out[3 * i + 2])};
      }
      sum = sum * (4.0 * kPi / static_cast<double>(kPoints));
      std::printf("hair of width %.2f at %.0f degrees: white %.3f, grey %.3f, black %.3f\n", width, degrees,
                  sum.x, sum.y, sum.z);
      EXPECT_LE(sum.x, kMost);
      EXPECT_LT(sum.y, sum.x);
      EXPECT_LT(sum.z, 0.2);
      EXPECT_GE(sum.x, degrees < 45.0 && width < 0.2 ? 0.85 : 0.35);
    }
  }
}

// The surface sends out of a lamp what the formula says, and of even light what it does of lamps all around,
// seen from the side.
TEST_F(Layers, OfHairAreThoseOfTheSurface) {
  std::vector<Input> const state = {vector3("sfg_worldPosition", 0, 0),
                                    vector3("sfg_eyePosition", 0, 0),
                                    unit3("tangent"),
                                    vector3("albedo", 0, 1),
                                    number("tilt", 0, 1),
                                    number("width", 0, 1)};
  std::vector<Input> sunny = state;
  sunny.insert(sunny.end(),
               {unit3("light_axisSun"), vector3("light_colorSun", 0, 1), number("light_intensitySun", 0, 1)});
  std::vector<Input> even = state;
  even.insert(even.end(),
              {unit3("sfg_worldNormal"), vector3("light_skySky", 0, 1), vector3("light_groundSky", 0, 1)});
  DeviceFragment const formula({"hairReflection", "default", 100.0},
                               {unit3("tangent"), unit3("light"), unit3("view"), vector3("color", 0, 1),
                                number("tilt", 0, 1), number("width", 0, 1)});
  DeviceFragment const lamp({"hairSurface", "sfg_Light", 100.0}, sunny, "sun.json");
  DeviceFragment const sky({"hairSurface", "sfg_Light", 100.0}, even, "sky.json");
  constexpr std::size_t kPoints = 16384;
  std::vector<float> plain;
  std::vector<float> lit;
  Vec3 const color{1.0, 0.5, 0.0};
  for (std::size_t i = 0; i < kPoints; ++i) {
    Vec2 const point = evenPoint(i, kPoints);
    Vec3 const light = direction(2.0 * point.x - 1.0, 2.0 * kPi * point.y);
    for (Vec3 const v : {Vec3{0, 0, 1}, light, Vec3{1, 0, 0}, color}) {
      append(plain, v);
    }
    plain.insert(plain.end(), {0.05f, 0.15f});
    for (Vec3 const v : {Vec3{}, Vec3{1, 0, 0}, Vec3{0, 0, 1}, color}) {
      append(lit, v);
    }
    lit.insert(lit.end(), {0.05f, 0.15f});
    append(lit, -light);
    append(lit, splat(1.0));
    lit.push_back(1.0f);
  }
  std::vector<float> const expected = formula.run(compute_, plain);
  std::vector<float> const seen = lamp.run(compute_, lit);
  double sums[3] = {0.0, 0.0, 0.0};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    ASSERT_NEAR(seen[i], expected[i], 1e-3f + 2e-3f * expected[i]) << i;
    sums[i % 3] += static_cast<double>(seen[i]) * 4.0 * kPi / kPoints;
  }
  std::vector<float> around;
  for (Vec3 const v : {Vec3{}, Vec3{1, 0, 0}, Vec3{0, 0, 1}, color}) {
    append(around, v);
  }
  around.insert(around.end(), {0.05f, 0.15f});
  for (Vec3 const v : {Vec3{0, 1, 0}, splat(1.0), splat(1.0)}) {
    append(around, v);
  }
  std::vector<float> const inSky = sky.run(compute_, around);
  for (std::size_t c = 0; c < 3; ++c) {
    std::printf("hair under lamps all around %.3f, under a sky %.3f\n", sums[c],
                static_cast<double>(inSky[c]));
    EXPECT_NEAR(static_cast<double>(inSky[c]), sums[c], 0.08);
    EXPECT_LE(static_cast<double>(inSky[c]), kMost);
  }
}

// Scattered light comes out somewhere else, and as much of it: around the edge of the shadow where it is
// wide.
TEST_F(Layers, ScatterAroundTheEdgeOfTheShadow) {
  DeviceFragment const device({"scatteringSurface", "sfg_Light", 100.0},
                              {unit3("normal"), vector3("sfg_worldPosition", 0, 0),
                               vector3("sfg_eyePosition", 0, 0), vector3("albedo", 0, 1),
                               vector3("scatter", 0, 1), number("roughness", 0, 1), unit3("light_axisSun"),
                               vector3("light_colorSun", 0, 1), number("light_intensitySun", 0, 1)},
                              "sun.json");
  auto const sent = [&](Vec3 const& width, std::vector<Vec3> const& lights) {
    std::vector<float> samples;
    for (Vec3 const light : lights) {
      for (Vec3 const v : {Vec3{0, 0, 1}, Vec3{}, Vec3{0, 0.6, 0.8}, Vec3{1.0, 0.5, 0.8}, width}) {
        append(samples, v);
      }
      samples.push_back(0.6f);
      append(samples, -light);
      append(samples, splat(1.0));
      samples.push_back(1.0f);
    }
    return device.run(compute_, samples);
  };
  Vec3 const wide{1.0, 0.5, 0.0};

  std::vector<float> const below = sent(wide, {direction(std::cos(1.8), 0.3), direction(std::cos(2.4), 0.3)});
  // Cosines of -0.227 and -0.737: red comes out at both, green at the first, which is within its width.
  double const white =
      static_cast<double>(below[0]) / (1.0 - 0.2272) * 4.0;  // at a cosine of 1 without a width
  EXPECT_GT(white, 0.2);
  EXPECT_NEAR(static_cast<double>(below[1]), 0.5 * white * (0.5 - 0.2272) / 2.25, 1e-4);
  EXPECT_EQ(below[2], 0.0f);
  EXPECT_NEAR(static_cast<double>(below[3]), white * (1.0 - 0.7374) / 4.0, 1e-4);
  EXPECT_EQ(below[4], 0.0f);
  EXPECT_EQ(below[5], 0.0f);

  constexpr std::size_t kPoints = 16384;
  std::vector<Vec3> lights;
  for (std::size_t i = 0; i < kPoints; ++i) {
    Vec2 const point = evenPoint(i, kPoints);
    lights.push_back(direction(2.0 * point.x - 1.0, 2.0 * kPi * point.y));
  }
  std::vector<float> const scattered = sent(wide, lights);
  std::vector<float> const plain = sent({}, lights);
  double sums[2] = {0.0, 0.0};
  for (std::size_t i = 0; i < scattered.size(); i += 3) {
    sums[0] += static_cast<double>(scattered[i]) * 4.0 * kPi / kPoints;
    sums[1] += static_cast<double>(plain[i]) * 4.0 * kPi / kPoints;
  }
  std::printf("all around, red: %.4f scattered, %.4f not\n", sums[0], sums[1]);
  EXPECT_NEAR(sums[0], sums[1], 0.002);
  EXPECT_GT(sums[1], 0.8);
}

TEST_F(Layers, ScatterTheirAlbedo) {
  DeviceFragment const device(
      {"diffusionProfile", "default", 100.0},
      {number("distance", 0, 1), number("albedo", 0, 1), number("meanFreePath", 0, 1)});
  constexpr std::size_t kSteps = 16384;
  for (double const albedo : {0.1, 0.5, 0.8, 1.0}) {
    for (double const path : {0.1, 1.0}) {
      std::vector<float> samples;
      for (std::size_t i = 0; i < kSteps; ++i) {
        samples.push_back(static_cast<float>((static_cast<double>(i) + 0.5) / kSteps * 40.0 * path));
        samples.push_back(static_cast<float>(albedo));
        samples.push_back(static_cast<float>(path));
      }
      std::vector<float> const out = device.run(compute_, samples);
      double sum = 0.0;
      for (std::size_t i = 0; i < kSteps; ++i) {
        sum += static_cast<double>(out[i] * samples[3 * i]) * 2.0 * kPi * 40.0 * path / kSteps;
      }
      EXPECT_NEAR(sum, albedo, 0.005 * albedo) << "mean free path " << path;
    }
  }
}

// Irradiance on a surface with the normal (0, 0, 1) at the origin.
struct AreaLight {
  std::string make;  // over `place` and `normal`
  std::function<Vec3(Vec2)> pointOf;
  std::function<double(Vec3 point, Vec3 towards)>
      emitted;  // for each unit of area and solid angle, with its cosine
  double area = 1.0;
};

double irradianceOf(AreaLight const& light, Vec3 receiver, Vec3 n) {
  constexpr std::size_t kPoints = 40000;
  double sum = 0.0;
  for (std::size_t i = 0; i < kPoints; ++i) {
    Vec3 const point = light.pointOf(evenPoint(i, kPoints));
    Vec3 const to = point - receiver;
    Vec3 const l = unit(to);
    sum += std::max(dot(n, l), 0.0) * std::max(light.emitted(point, -l), 0.0) / dot(to, to);
  }
  return sum * light.area / kPoints;
}

TEST_F(Layers, AreLitByAllOfALight) {
  double const radius = 0.8;
  AreaLight const ball{"sfg_makeBallLight(float3(0.0, 0.0, 2.0), 0.8, float3(5.0, 5.0, 5.0), place, normal)",
                       [radius](Vec2 p) {
                         return direction(2.0 * p.x - 1.0, 2.0 * kPi * p.y) * radius + Vec3{0, 0, 2};
                       },
                       [radius](Vec3 point, Vec3 towards) {
                         return 5.0 / (kPi * radius * radius) * dot(unit(point - Vec3{0, 0, 2}), towards);
                       },
                       4.0 * kPi * radius * radius};
  // Shines down: right x up = (1, 0, 0) x (0, -0.6, 0) points to -z.
  AreaLight const rectangle{
      "sfg_makeRectangleLight(float3(0.0, 0.0, 2.0), float3(1.0, 0.0, 0.0), float3(0.0, -0.6, 0.0), "
      "float3(3.0, 3.0, 3.0), place, normal)",
      [](Vec2 p) {
        return Vec3{2.0 * p.x - 1.0, 1.2 * p.y - 0.6, 2.0};
      },
      [](Vec3, Vec3 towards) { return -3.0 * towards.z; }, 4.0 * 0.6};
  for (AreaLight const& light : {ball, rectangle}) {
    SCOPED_TRACE(light.make);
    Function function;
    function.code = includeText("sfg_area_lights.h") +
                    "float3 numbers_lit(float3 place, float3 normal)\n{\n    return sfg_lightIrradiance(" +
                    light.make + ", normal);\n}\n";
    function.call = "result = numbers_lit(place, normal);";
    function.inputs = {{{"place", "float3"}, false}, {{"normal", "float3"}, false}};
    function.outputs = {{"result", "float3"}};
    std::vector<Vec3> places;
    std::vector<Vec3> normals;
    std::vector<bool> whole;  // above the horizon
    for (Vec3 const place : {Vec3{0, 0, 0}, Vec3{1.5, 0, 0}, Vec3{-1, 2, 0.5}, Vec3{0.3, 0.2, 0.7}}) {
      places.insert(places.end(), 3, place);
      normals.insert(normals.end(), {Vec3{0, 0, 1}, unit(Vec3{0.3, -0.2, 1})});
      whole.insert(whole.end(), {true, true});
      normals.push_back(unit(Vec3{1, 0, 0.1}));
      whole.push_back(place.x < -0.5);
    }
    // Behind the light nothing arrives of the rectangle.
    std::vector<float> samples;
    for (std::size_t i = 0; i < places.size(); ++i) {
      append(samples, places[i]);
      append(samples, normals[i]);
    }
    std::vector<float> const out = DeviceFragment(function).run(compute_, samples);
    double brightest = 0.0;
    double worst = 0.0;
    for (std::size_t i = 0; i < places.size(); ++i) {
      double const expected = irradianceOf(light, places[i], normals[i]);
      double const seen = static_cast<double>(out[3 * i]);
      brightest = std::max(brightest, expected);
      worst = std::max(worst, std::fabs(seen - expected));
      if (whole[i]) {
        EXPECT_NEAR(seen, expected, 0.01 * expected) << "sample " << i;
      }
    }
    std::printf("off by at most %.3f of %.3f\n", worst, brightest);
    EXPECT_LE(worst, 0.05 * brightest);
  }
  Function behind;
  behind.code = includeText("sfg_area_lights.h") + "float3 numbers_behind(float3 place)\n{\n    return " +
                "sfg_makeRectangleLight(float3(0.0, 0.0, 2.0), float3(1.0, 0.0, 0.0), float3(0.0, 0.6, 0.0), "
                "float3(3.0, 3.0, 3.0), place, float3(0.0, 0.0, 1.0)).color;\n}\n";
  behind.call = "result = numbers_behind(place);";
  behind.inputs = {{{"place", "float3"}, false}};
  behind.outputs = {{"result", "float3"}};
  EXPECT_EQ(DeviceFragment(behind).run(compute_, {0, 0, 0}), (std::vector<float>{0, 0, 0}));
}

// A lamp that shines down, with angles about it from x towards axis x reference.
TEST_F(Layers, AreLitByTheTableOfALamp) {
  Function function;
  function.code = includeText("sfg_area_lights.h");
  function.call = "result = sfg_photometricUv(axis, reference, leaving);";
  function.inputs = {
      {{"axis", "float3"}, false}, {{"reference", "float3"}, false}, {{"leaving", "float3"}, false}};
  function.outputs = {{"result", "float2"}};
  std::vector<float> samples;
  for (Vec3 const leaving :
       {Vec3{0, -1, 0}, Vec3{1, 0, 0}, Vec3{0, 0, 1}, Vec3{-1, 0, 0}, Vec3{0, 0.8, -0.6}}) {
    append(samples, {0, -2, 0});
    append(samples, {3, 1, 0});
    append(samples, leaving);
  }
  std::vector<float> const out = DeviceFragment(function).run(compute_, samples);
  float const up = static_cast<float>(std::acos(-0.8) / kPi);
  std::vector<float> const expected = {0, 0, 0, 0.5f, 0.25f, 0.5f, 0.5f, 0.5f, 0.75f, up};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(out[i], expected[i], 1e-3f) << i;
  }
}

}  // namespace
}  // namespace numbers_test
