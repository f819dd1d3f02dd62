// The ranges that the descriptions of the noises give, and that none of them shows the lattice it is made of.

#include <cstdio>
#include <random>

#include <gtest/gtest.h>

#include "tests/numbers/device_fragment.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {
namespace {

constexpr std::size_t kPlaces = 131072;

// A noise with the range in its description, and the range of its middle 98 percent.
struct Noise {
  std::string fragment;
  bool isPlane = true;
  std::vector<Input> rest;
  std::vector<double> setting;
  double low = 0.0;
  double high = 1.0;
  double usualLow = 0.0;
  double usualHigh = 1.0;
};

std::vector<Noise> noises() {
  std::vector<Input> const fractal = {wholeInt("octaves", 0, 12), number("lacunarity", 0, 4),
                                      number("gain", 0, 1)};
  std::vector<double> const six = {6, 2, 0.5};
  return {
      {"randomCell2", true, {}, {}, 0, 1, 0, 1},
      {"randomCell3", false, {}, {}, 0, 1, 0, 1},
      {"valueNoise2", true, {}, {}, 0, 1, 0.05, 0.95},
      {"valueNoise3", false, {}, {}, 0, 1, 0.07, 0.93},
      {"perlinNoise2", true, {}, {}, -1, 1, -0.7, 0.7},
      {"perlinNoise3", false, {}, {}, -1.04, 1.04, -0.6, 0.6},
      {"fbmNoise2", true, fractal, six, -1, 1, -0.42, 0.42},
      {"fbmNoise3", false, fractal, six, -1, 1, -0.37, 0.37},
      {"turbulenceNoise3", false, fractal, six, 0, 1, 0.05, 0.47},
      {"ridgedNoise3", false, {fractal[0], fractal[1]}, {6, 2}, 0, 1, 0.15, 0.9},
      {"warpedNoise3", false, {number("warp", 0, 4), fractal[0]}, {1, 6}, -1, 1, -0.35, 0.35},
      {"brushedScratches",
       true,
       {number("density", 1, 1), number("stretch", 1, 1)},
       {1, 1},
       0,
       1,
       0.18,
       0.82},
      {"terrainHeight", true, {number("scale", 1, 1), fractal[0]}, {1, 7}, 0, 1, 0.05, 0.8},
  };
}

double quantile(std::vector<double>& values, double share) {
  auto const at =
      values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), at, values.end());
  return *at;
}

class NoiseRanges : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }

  // The noise at places that `place` gives by their number.
  template <typename Place>
  std::vector<double> at(Noise const& noise, Place const& place) {
    std::string const name = noise.fragment == "brushedScratches" ? "uv" : "position";
    std::vector<Input> inputs = {noise.isPlane ? vector2(name, -1, 1) : vector3(name, -1, 1)};
    inputs.insert(inputs.end(), noise.rest.begin(), noise.rest.end());
    DeviceFragment const device({noise.fragment, "default", 100.0}, inputs);
    std::vector<float> samples;
    for (std::size_t i = 0; i < kPlaces; ++i) {
      Vec3 const p = place(i);
      samples.push_back(static_cast<float>(p.x));
      samples.push_back(static_cast<float>(p.y));
      if (!noise.isPlane) {
        samples.push_back(static_cast<float>(p.z));
      }
      for (double const value : noise.setting) {
        samples.push_back(static_cast<float>(value));
      }
    }
    std::vector<float> const outputs = device.run(compute_, samples);
    return {outputs.begin(), outputs.end()};
  }

  std::vector<double> anywhere(Noise const& noise) {
    std::mt19937 random(3);
    auto const next = [&random] { return (static_cast<double>(random()) / 4294967296.0 - 0.5) * 400.0; };
    return at(noise, [&](std::size_t) {
      double const x = next();
      double const y = next();
      return Vec3{x, y, next()};
    });
  }

  // The points of the lattice on the plane z = 0.
  std::vector<double> onLattice(Noise const& noise) {
    return at(noise, [](std::size_t i) {
      return Vec3{static_cast<double>(i % 360) - 180.0, static_cast<double>(i / 360) - 180.0, 0.0};
    });
  }

  VulkanCompute compute_;
};

TEST_F(NoiseRanges, AreAsDescribed) {
  for (Noise const& noise : noises()) {
    SCOPED_TRACE(noise.fragment);
    std::vector<double> values = anywhere(noise);
    double const low = quantile(values, 0.01);
    double const high = quantile(values, 0.99);
    auto const [least, most] = std::minmax_element(values.begin(), values.end());
    std::printf("%s: %.3f to %.3f, 98 percent %.3f to %.3f\n", noise.fragment.c_str(), *least, *most, low,
                high);
    EXPECT_GE(*least, noise.low);
    EXPECT_LE(*most, noise.high);
    EXPECT_GE(low, noise.usualLow);
    EXPECT_LE(high, noise.usualHigh);
    // The range is not far too large either.
    double const margin = 0.1 * (noise.usualHigh - noise.usualLow);
    EXPECT_LE(low, noise.usualLow + margin);
    EXPECT_GE(high, noise.usualHigh - margin);
  }
}

double spreadOf(std::vector<double> const& values) {
  double sum = 0.0;
  double squares = 0.0;
  for (double const value : values) {
    sum += value;
    squares += value * value;
  }
  double const mean = sum / static_cast<double>(values.size());
  return std::sqrt(squares / static_cast<double>(values.size()) - mean * mean);
}

TEST_F(NoiseRanges, OfFractalSumsAreThoseOnThePointsOfTheirLattice) {
  for (Noise const& noise : noises()) {
    if (noise.setting.size() < 2 || noise.fragment == "brushedScratches") {
      continue;
    }
    SCOPED_TRACE(noise.fragment);
    double const spread = spreadOf(anywhere(noise));
    double const latticeSpread = spreadOf(onLattice(noise));
    std::printf("%s: spread %.3f, on the lattice %.3f\n", noise.fragment.c_str(), spread, latticeSpread);
    EXPECT_GT(latticeSpread, 0.8 * spread);
    EXPECT_LT(latticeSpread, 1.25 * spread);
  }
}

// The thresholds of examples/materials/terrain.json.
TEST_F(NoiseRanges, OfTheTerrainReachFromWaterToSnow) {
  std::vector<double> const heights = anywhere(noises().back());
  double water = 0.0;
  double snow = 0.0;
  for (double const height : heights) {
    water += height < 0.25 ? 1.0 / kPlaces : 0.0;
    snow += height > 0.62 ? 1.0 / kPlaces : 0.0;
  }
  std::printf("terrain: %.3f water, %.3f above the snow line\n", water, snow);
  EXPECT_GT(water, 0.05);
  EXPECT_LT(water, 0.35);
  EXPECT_GT(snow, 0.05);
  EXPECT_LT(snow, 0.35);
}

}  // namespace
}  // namespace numbers_test
