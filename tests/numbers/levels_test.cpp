// Levels of detail look alike from afar: the mean brightness of a surface or a pattern does not jump.

#include <cstdio>
#include <random>

#include <gtest/gtest.h>

#include "tests/numbers/device_fragment.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {
namespace {

constexpr std::size_t kPixels = 4096;
constexpr double kMostApart = 0.1;

double radians(double degrees) { return degrees * kPi / 180.0; }

// A surface of a sphere that fills the picture of a far camera at (0, 0, 10).
struct LeveledSurface {
  std::string fragment;
  std::string note;
  std::vector<Input> ports;
  std::vector<double> setting;
  bool hasTangent = false;
  bool hasFlakes = false;  // a normal and an amount for each pixel, in front of the last port
};

Input color(std::string const& name) { return vector3(name, 0, 1); }
Input scalar(std::string const& name) { return number(name, 0, 1); }

std::vector<LeveledSurface> leveledSurfaces() {
  std::vector<LeveledSurface> all;
  for (double const sigma : {0.3, 0.8, 1.5}) {
    all.push_back({"orenNayarSurface",
                   "sigma " + std::to_string(sigma),
                   {color("albedo"), scalar("sigma")},
                   {0.9, 0.5, 0.2, sigma}});
  }
  for (double const roughness : {0.2, 0.5, 0.9}) {
    std::string const rough = ", roughness " + std::to_string(roughness);
    std::vector<Input> const ports = {color("albedo"), scalar("metallic"), scalar("roughness")};
    all.push_back({"ggxSurface", "copper" + rough, ports, {0.95, 0.64, 0.54, 1, roughness}});
    all.push_back({"ggxSurface", "plastic" + rough, ports, {0.6, 0.3, 0.1, 0, roughness}});
  }
  for (std::vector<double> const& roughnesses :
       {std::vector<double>{0.9, 0.2}, {0.2, 0.9}, {0.15, 0.45}, {0.5, 0.3}}) {
    all.push_back(
        {"brushedMetalSurface",
         "roughness " + std::to_string(roughnesses[0]) + " across " + std::to_string(roughnesses[1]),
         {color("albedo"), scalar("roughnessAlong"), scalar("roughnessAcross")},
         {0.9, 0.88, 0.85, roughnesses[0], roughnesses[1]},
         true});
  }
  for (double const coat : {0.08, 0.4}) {
    all.push_back({"carPaintSurface",
                   "coat roughness " + std::to_string(coat),
                   {color("baseColor"), color("flakeColor"), color("flakeNormal"), scalar("flakeAmount"),
                    scalar("coatRoughness")},
                   {0.25, 0.01, 0.02, 0.95, 0.45, 0.35, coat},
                   false,
                   true});
  }
  for (double const roughness : {0.1, 0.3, 0.5, 1.0}) {
    all.push_back({"clothSurface",
                   "velvet, roughness " + std::to_string(roughness),
                   {color("albedo"), color("sheen"), scalar("roughness")},
                   {0.3, 0.02, 0.1, 0.8, 0.5, 0.6, roughness}});
  }
  return all;
}

// What lights the sphere: the sun at an angle from the camera, or an even sky.
struct Lighting {
  std::string name;
  std::string environment;
  Vec3 toSun = {};
};

std::vector<Lighting> lightings() {
  std::vector<Lighting> all = {{"sky", "sky.json"}};
  for (double const degrees : {0.0, 45.0, 90.0}) {
    all.push_back(
        {"sun at " + std::to_string(static_cast<int>(degrees)),
         "sun.json",
         {std::sin(radians(degrees)) * 0.8, std::sin(radians(degrees)) * 0.6, std::cos(radians(degrees))}});
  }
  return all;
}

class Levels : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }

  double meanBrightness(LeveledSurface const& surface, double lod, Lighting const& lighting) {
    std::vector<Input> inputs = {unit3("normal"), vector3("sfg_worldPosition", 0, 0),
                                 vector3("sfg_eyePosition", 0, 0)};
    if (surface.hasTangent) {
      inputs.push_back(unit3("tangent"));
    }
    inputs.insert(inputs.end(), surface.ports.begin(), surface.ports.end());
    if (lighting.environment == "sky.json") {
      inputs.insert(inputs.end(), {color("light_skySky"), color("light_groundSky")});
    } else {
      inputs.insert(inputs.end(),
                    {unit3("light_axisSun"), color("light_colorSun"), scalar("light_intensitySun")});
    }
    DeviceFragment const device({surface.fragment, "sfg_Light", lod}, inputs, lighting.environment);
    std::vector<float> const outputs = device.run(compute_, pixels(surface, lod, lighting));
    double sum = 0.0;
    for (float const channel : outputs) {
      sum += static_cast<double>(channel);
    }
    return sum / static_cast<double>(outputs.size());
  }

  VulkanCompute compute_;

private:
  static std::vector<float> pixels(LeveledSurface const& surface, double lod, Lighting const& lighting) {
    std::mt19937 random(7);
    auto const next = [&] { return static_cast<double>(random() % 65536) / 65536.0; };
    std::vector<float> samples;
    for (std::size_t i = 0; i < kPixels; ++i) {
      Vec2 const point = evenPoint(i, kPixels);
      double const angle = 2.0 * kPi * point.y;
      Vec3 const normal{std::sqrt(point.x) * std::cos(angle), std::sqrt(point.x) * std::sin(angle),
                        std::sqrt(1.0 - point.x)};
      append(samples, normal);
      append(samples, normal);
      append(samples, {normal.x, normal.y, 10.0});
      Vec3 const tangent = unit(cross(Vec3{0, 1, 0}, normal));
      if (surface.hasTangent) {
        append(samples, tangent);
      }
      auto setting = surface.setting;
      if (surface.hasFlakes) {
        // What paintFlakes says at this level of detail of a spread of 0.6 and a coverage of 0.3.
        Vec2 const tilt{(next() - 0.5) * 0.6, (next() - 0.5) * 0.6};
        bool const isFlake = next() < 0.3;
        Vec3 const flake = unit(normal + tangent * tilt.x + cross(normal, tangent) * tilt.y);
        Vec3 const shown = lod == 0.0 ? normal : flake;
        double const amount = lod == 0.0 ? 0.3 : isFlake ? 1.0 : 0.0;
        setting.insert(setting.end() - 1, {shown.x, shown.y, shown.z, amount});
      }
      for (double const value : setting) {
        samples.push_back(static_cast<float>(value));
      }
      if (lighting.environment == "sky.json") {
        append(samples, splat(1.0));
        append(samples, splat(1.0));
      } else {
        append(samples, -lighting.toSun);
        append(samples, splat(1.0));
        samples.push_back(3.0f);
      }
    }
    return samples;
  }
};

TEST_F(Levels, OfSurfacesAreEquallyBright) {
  for (LeveledSurface const& surface : leveledSurfaces()) {
    SCOPED_TRACE(surface.fragment + ", " + surface.note);
    std::printf("low over high:");
    for (Lighting const& lighting : lightings()) {
      double const high = meanBrightness(surface, 100.0, lighting);
      double const low = meanBrightness(surface, 0.0, lighting);
      std::printf(" %s %.2f,", lighting.name.c_str(), low / high);
      EXPECT_NEAR(low / high, 1.0, kMostApart) << "under the " << lighting.name;
    }
    std::printf(" %s, %s\n", surface.fragment.c_str(), surface.note.c_str());
  }
}

// Along a beam, from a tenth of the range to its end and beyond, white paper that faces the lamp.
TEST_F(Levels, OfLampsAreEquallyBright) {
  for (std::string const kind : {"lantern", "torch"}) {
    Row row;
    row.fragment = "lambertSurface";
    row.inputs = {unit3("normal"),          vector3("sfg_worldPosition", 0, 0),
                  color("albedo"),          vector3("light_positionLamp", 0, 0),
                  color("light_colorLamp"), scalar("light_intensityLamp"),
                  scalar("light_rangeLamp")};
    std::vector<double> rest = {0, 0, 0, 1, 1, 1, 1, 8};
    if (kind == "torch") {
      row.inputs.insert(row.inputs.end(),
                        {unit3("light_axisLamp"), scalar("light_innerLamp"), scalar("light_outerLamp")});
      rest.insert(rest.end(), {0, 0, 1, 0.3, 0.6});
    }
    constexpr std::size_t kSteps = 128;
    std::vector<float> samples;
    for (std::size_t i = 0; i < kSteps; ++i) {
      append(samples, {0, 0, -1});
      append(samples, {0, 0, 0.8 + 8.0 * static_cast<double>(i) / kSteps});
      append(samples, splat(1.0));
      for (double const value : rest) {
        samples.push_back(static_cast<float>(value));
      }
    }
    std::vector<std::vector<float>> levels;
    for (double const lod : {100.0, 0.0}) {
      DeviceFragment const device(litFunction({"lambertSurface", "sfg_Light", 100.0}, row,
                                              "tests/numbers/environments/" + kind + ".json", lod));
      levels.push_back(device.run(compute_, samples));
    }
    // Brightness without the square of the distance, which would hide the end of the range.
    double high = 0.0;
    double low = 0.0;
    for (std::size_t i = 0; i < kSteps; ++i) {
      double const distance = 0.8 + 8.0 * static_cast<double>(i) / kSteps;
      high += static_cast<double>(levels[0][3 * i]) * distance * distance;
      low += static_cast<double>(levels[1][3 * i]) * distance * distance;
      EXPECT_NEAR(levels[1][3 * i] * distance * distance, levels[0][3 * i] * distance * distance, 0.1 / kPi)
          << kind << " at distance " << distance;
    }
    std::printf("low over high: %.3f, %s\n", low / high, kind.c_str());
    EXPECT_NEAR(low / high, 1.0, kMostApart) << kind;
  }
}

// A pattern or noise with levels of detail, over a stretch of space; outputs that may be negative are no
// brightness.
struct LeveledPattern {
  std::string fragment;
  std::vector<Input> inputs;  // the first is the position, the others have one value: their lower end
  std::vector<double> lods;
};

std::vector<LeveledPattern> leveledPatterns() {
  auto const is = [](std::string const& name, double value) { return number(name, value, value); };
  auto const octaves = [](int count) { return wholeInt("octaves", count, count); };
  auto const tint = [](std::string const& name, double value) { return vector3(name, value, value); };
  Input const plane = vector2("position", -40, 40);
  Input const space = vector3("position", -40, 40);
  return {
      {"worleyNoise2", {plane, is("jitter", 1)}, {0}},
      {"worleyNoise3", {space, is("jitter", 1)}, {0}},
      {"turbulenceNoise3", {space, octaves(6), is("lacunarity", 2), is("gain", 0.5)}, {0}},
      {"ridgedNoise3", {space, octaves(6), is("lacunarity", 2)}, {0}},
      {"checkerFiltered", {vector2("uv", -40, 40), vector2("count", 3.3, 3.3)}, {0}},
      {"brickColor",
       {vector2("uv", -40, 40), vector2("count", 4, 4), is("mortar", 0.12), tint("brickTint", 0.8),
        tint("mortarTint", 0.2), is("variation", 0.5)},
       {0}},
      {"woodColor",
       {space, is("rings", 12), is("distortion", 0.6), is("grain", 0.4), tint("earlyTint", 0.5),
        tint("lateTint", 0.1)},
       {0}},
      {"marbleColor",
       {space, is("veins", 2), is("distortion", 1.5), is("sharpness", 4), tint("stoneTint", 0.9),
        tint("veinTint", 0.1)},
       {0}},
      {"terrainHeight", {plane, is("scale", 1), octaves(7)}, {0}},
  };
}

std::vector<double> means(LeveledPattern const& pattern, double lod, VulkanCompute& compute) {
  DeviceFragment const device({pattern.fragment, "default", lod}, pattern.inputs);
  std::mt19937 random(11);
  std::vector<float> samples;
  constexpr std::size_t kPlaces = 65536;
  for (std::size_t i = 0; i < kPlaces; ++i) {
    for (Input const& input : pattern.inputs) {
      std::size_t const count = input.type == "float3" ? 3 : input.type == "float2" ? 2 : 1;
      for (std::size_t c = 0; c < count; ++c) {
        double const share = static_cast<double>(random()) / 4294967296.0;
        samples.push_back(static_cast<float>(input.low + (input.high - input.low) * share));
      }
    }
  }
  std::vector<float> const outputs = device.run(compute, samples);
  std::vector<double> sums(device.outputCount());
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    sums[i % sums.size()] += static_cast<double>(outputs[i]) / kPlaces;
  }
  return sums;
}

TEST_F(Levels, OfPatternsAreEquallyBright) {
  for (LeveledPattern const& pattern : leveledPatterns()) {
    std::vector<double> const high = means(pattern, 100.0, compute_);
    for (double const lod : pattern.lods) {
      std::vector<double> const low = means(pattern, lod, compute_);
      std::printf("low over high:");
      for (std::size_t i = 0; i < high.size(); ++i) {
        std::printf(" %.3f,", low[i] / high[i]);
        EXPECT_NEAR(low[i] / high[i], 1.0, kMostApart) << pattern.fragment << ", output component " << i;
      }
      std::printf(" %s\n", pattern.fragment.c_str());
    }
  }
}

}  // namespace
}  // namespace numbers_test
