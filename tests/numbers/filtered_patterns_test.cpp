// Patterns that are averaged over the pixel, against averages of many points. A compute stage has no pixels,
// so the functions of the library are called with the width of one.

#include <cstdio>
#include <random>

#include <gtest/gtest.h>

#include "tests/numbers/device_fragment.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {
namespace {

constexpr int kPoints = 200;  // along each side of a pixel

// A call with q (two numbers), the width of the pixel (two numbers) and up to three settings.
struct Filtered {
  std::string call;
  std::vector<double> setting;
  std::function<double(Vec2 q, std::vector<double> const& setting)> plain;
  double tolerance = 0.0;   // everywhere
  double tolerance4 = 0.0;  // for pixels of four periods and more
};

double toNearestWhole(double v) { return std::fabs(v - std::round(v)); }

double stripe(double q, double width, double softness) {
  return 1.0 - clamp01((1.0 - 2.0 * toNearestWhole(q) - width) / std::max(softness, 1e-6));
}

double hermite(double t) { return t * t * (3.0 - 2.0 * t); }

double brick(Vec2 q, std::vector<double> const& setting) {
  double const mortar = setting[0];
  double const aspect = setting[1];  // width of a brick over its height
  double const x = q.x + (std::fabs(std::fmod(std::floor(q.y), 2.0)) == 1.0 ? setting[2] : 0.0);
  double const border = std::min(toNearestWhole(x) * aspect, toNearestWhole(q.y));
  return hermite(clamp01((border - mortar / 2.0) / (mortar / 8.0)));
}

double ring(Vec2 q, std::vector<double> const&) {
  double const year = fraction(q.x);
  return hermite(clamp01(year / 0.8)) * (1.0 - hermite(clamp01((year - 0.85) / 0.15)));
}

std::vector<Filtered> filtered() {
  auto const stripes = [](Vec2 q, std::vector<double> const& s) { return stripe(q.x, s[0], s[1]); };
  auto const dots = [](Vec2 q, std::vector<double> const& s) {
    double const d = length(Vec2{0.5 - toNearestWhole(q.x), 0.5 - toNearestWhole(q.y)});
    return 1.0 - clamp01((d - s[0]) / s[1]);
  };
  auto const grid = [](Vec2 q, std::vector<double> const& s) {
    return std::min(toNearestWhole(q.x), toNearestWhole(q.y)) < s[0] / 2.0 ? 1.0 : 0.0;
  };
  return {
      {"sfg_stripes(q.x, s.x, s.y, pixel.x)", {0.5, 0.1, 0}, stripes, 0.01, 0.01},
      {"sfg_stripes(q.x, s.x, s.y, pixel.x)", {0.1, 0.0, 0}, stripes, 0.02, 0.01},
      {"sfg_stripes(q.x, s.x, s.y, pixel.x)", {0.7, 0.6, 0}, stripes, 0.01, 0.01},
      {"sfg_gridLines(q, s.x, pixel)", {0.1, 0, 0}, grid, 0.02, 0.01},
      {"sfg_dots(q, s.x, s.y, pixel)", {0.3, 0.05, 0}, dots, 0.14, 0.03},
      {"sfg_woodRing(q.x, pixel.x)", {0, 0, 0}, ring, 0.01, 0.01},
      {"sfg_brickWallFiltered(q * float2(0.25, 0.25 / s.y), float2(4.0, 4.0 * s.y), s.x, s.z, pixel).x",
       {0.12, 3, 0.5},
       brick,
       0.08,
       0.03},
  };
}

Function functionOf(Filtered const& pattern) {
  Function function;
  function.code = includeText("sfg_patterns.h") +
                  "float numbers_filtered(float2 q, float2 pixel, float3 s)\n{\n" + "    return " +
                  pattern.call + ";\n}\n";
  function.call = "result = numbers_filtered(q, pixel, s);";
  function.inputs = {{{"q", "float2"}, false}, {{"pixel", "float2"}, false}, {{"s", "float3"}, false}};
  function.outputs = {{"result", "float"}};
  return function;
}

double meanOf(Filtered const& pattern, Vec2 q, Vec2 pixel) {
  double sum = 0.0;
  for (int y = 0; y < kPoints; ++y) {
    for (int x = 0; x < kPoints; ++x) {
      Vec2 const offset{(x + 0.5) / kPoints - 0.5, (y + 0.5) / kPoints - 0.5};
      sum += pattern.plain(q + pixel * offset, pattern.setting);
    }
  }
  return sum / (kPoints * kPoints);
}

TEST(FilteredPatterns, AreMeansOfThePixel) {
  if (isVulkanSkipped()) {
    GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
  }
  VulkanCompute compute;
  for (Filtered const& pattern : filtered()) {
    SCOPED_TRACE(pattern.call);
    std::mt19937 random(5);
    auto const next = [&random] { return static_cast<double>(random()) / 4294967296.0; };
    std::vector<float> samples;
    for (double const width : {0.0, 0.07, 0.2, 0.5, 1.0, 2.5, 4.0, 17.0}) {
      for (int i = 0; i < 12; ++i) {
        // Squares and, as at a horizon, long pixels; away from the whole numbers where cells of 0 width jump.
        double const longer = i % 2 == 0 ? 1.0 : 0.3;
        for (double const value : {next() * 20.0 - 10.0, next() * 20.0 - 10.0, width * longer, width}) {
          samples.push_back(static_cast<float>(value));
        }
        for (double const value : pattern.setting) {
          samples.push_back(static_cast<float>(value));
        }
      }
    }
    std::vector<float> const outputs = DeviceFragment(functionOf(pattern)).run(compute, samples);
    double worst = 0.0;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
      auto const at = [&](std::size_t c) { return static_cast<double>(samples[i * 7 + c]); };
      Vec2 const pixel{at(2), at(3)};
      double const off = std::fabs(static_cast<double>(outputs[i]) - meanOf(pattern, {at(0), at(1)}, pixel));
      double const allowed = pixel.y >= 4.0 ? pattern.tolerance4 : pattern.tolerance;
      EXPECT_LE(off, allowed) << "at " << at(0) << " " << at(1) << ", pixel of " << pixel.x << " " << pixel.y;
      worst = std::max(worst, off);
    }
    std::printf("off by at most %.3f: %s\n", worst, pattern.call.c_str());
  }
}

}  // namespace
}  // namespace numbers_test
