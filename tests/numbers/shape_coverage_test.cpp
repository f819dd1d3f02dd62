// How much of a pixel shapes cover, and what hexagonal tiling blends: functions of the library with the width
// of a pixel, against areas.

#include <gtest/gtest.h>

#include "tests/numbers/device_fragment.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {
namespace {

// Pixels along each side of the picture from -1 to 1.
constexpr int kSide = 96;
constexpr int kPoints = 16;  // along each side of a pixel

struct Shape {
  std::string distance;
  double area = 0.0;
  std::function<double(Vec2)> border;
};

std::vector<Shape> shapes() {
  double const root3 = std::sqrt(3.0);
  return {
      {"sfg_circleDistance(q, 0.6)", kPi * 0.36, [](Vec2 p) { return length(p) - 0.6; }},
      {"sfg_hexagonDistance(q, 0.6)", 2.0 * root3 * 0.36,
       [root3](Vec2 p) {
         return std::max(std::fabs(p.x), std::fabs(p.x) / 2.0 + std::fabs(p.y) * root3 / 2.0) - 0.6;
       }},
      // A square and a half disc on each of its sides.
      {"sfg_cloverleafDistance(q, 0.6)", 0.36 * (1.0 + kPi / 2.0),
       [](Vec2 p) {
         double const far = std::max(std::fabs(p.x), std::fabs(p.y));
         double const near = std::min(std::fabs(p.x), std::fabs(p.y));
         return length(Vec2{far - 0.3, near}) - 0.3;
       }},
      // A rectangle and two half discs.
      {"sfg_segmentDistance(q, float2(-0.5, -0.4), float2(0.6, 0.3)) - 0.1",
       0.2 * length(Vec2{1.1, 0.7}) + kPi * 0.01,
       [](Vec2 p) {
         Vec2 const from{-0.5, -0.4};
         Vec2 const along{1.1, 0.7};
         return length(p - from - along * clamp01(dot(p - from, along) / dot(along, along))) - 0.1;
       }},
  };
}

DeviceFragment coverageOf(Shape const& shape) {
  Function function;
  function.code = includeText("sfg_shapes.h") +
                  "float numbers_covered(float2 q, float pixel)\n{\n    return " + "sfg_coverage(" +
                  shape.distance + ", pixel);\n}\n";
  function.call = "result = numbers_covered(q, pixel);";
  function.inputs = {{{"q", "float2"}, false}, {{"pixel", "float"}, false}};
  function.outputs = {{"result", "float"}};
  return DeviceFragment(function);
}

double coveredOf(Shape const& shape, Vec2 middle, double pixel) {
  int inside = 0;
  for (int i = 0; i < kPoints * kPoints; ++i) {
    Vec2 const offset{(i % kPoints + 0.5) / kPoints - 0.5, (i / kPoints + 0.5) / kPoints - 0.5};
    inside += shape.border(middle + offset * pixel) < 0.0 ? 1 : 0;
  }
  return static_cast<double>(inside) / (kPoints * kPoints);
}

class ShapeCoverage : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }
};

TEST_F(ShapeCoverage, IsTheShareOfThePixel) {
  VulkanCompute compute;
  constexpr double kPixel = 2.0 / kSide;
  for (Shape const& shape : shapes()) {
    SCOPED_TRACE(shape.distance);
    std::vector<float> samples;
    for (int i = 0; i < kSide * kSide; ++i) {
      samples.push_back(static_cast<float>((i % kSide + 0.5) * kPixel - 1.0));
      samples.push_back(static_cast<float>((i / kSide + 0.5) * kPixel - 1.0));
      samples.push_back(static_cast<float>(kPixel));
    }
    std::vector<float> const covered = coverageOf(shape).run(compute, samples);
    double sum = 0.0;
    double squares = 0.0;
    double worst = 0.0;
    int between = 0;
    for (std::size_t i = 0; i < covered.size(); ++i) {
      Vec2 const middle{static_cast<double>(samples[3 * i]), static_cast<double>(samples[3 * i + 1])};
      double const is = static_cast<double>(covered[i]);
      double const off = std::fabs(is - coveredOf(shape, middle, kPixel));
      worst = std::max(worst, off);
      squares += off * off;
      sum += is;
      between += is > 0.0 && is < 1.0 ? 1 : 0;
    }
    std::printf("area off by %.4f, a pixel by at most %.3f: %s\n", sum * kPixel * kPixel - shape.area, worst,
                shape.distance.c_str());
    EXPECT_NEAR(sum * kPixel * kPixel, shape.area, 0.002 * shape.area);
    EXPECT_LE(worst, 0.3);  // at corners
    EXPECT_LE(std::sqrt(squares / between), 0.06);
    EXPECT_GE(between, kSide);
  }
}

TEST_F(ShapeCoverage, OfHexTilingAddsUpToOne) {
  Function function;
  function.code = includeText("sfg_hex_tiling.h") + R"(
float4 numbers_tiled(float2 q, float3 brightness, float contrast, float sharpness)
{
    sfg_HexCorners corners = sfg_hexCorners(q);
    float3 weights = sfg_hexWeights(corners.shares, brightness, contrast, sharpness);
    float2 place = sfg_hexCentre(corners.first) * corners.shares.x + sfg_hexCentre(corners.second) * corners.shares.y +
        sfg_hexCentre(corners.third) * corners.shares.z;
    return float4(place, corners.shares.x + corners.shares.y + corners.shares.z, weights.x + weights.y + weights.z);
}
)";
  function.call = "result = numbers_tiled(q, brightness, contrast, sharpness);";
  function.inputs = {{{"q", "float2"}, false},
                     {{"brightness", "float3"}, false},
                     {{"contrast", "float"}, false},
                     {{"sharpness", "float"}, false}};
  function.outputs = {{"result", "float4"}};
  std::vector<float> samples;
  for (std::size_t i = 0; i < 2048; ++i) {
    Vec2 const p = evenPoint(i, 2048);
    Vec2 const c = evenPoint((i * 37) % 2048, 2048);
    for (double const value : {p.x * 20.0 - 10.0, p.y * 20.0 - 10.0, c.x, c.y, p.y, c.x, 1.0 + 10.0 * c.y}) {
      samples.push_back(static_cast<float>(value));
    }
  }
  VulkanCompute compute;
  std::vector<float> const outputs = DeviceFragment(function).run(compute, samples);
  for (std::size_t i = 0; i < 2048; ++i) {
    // The shares are those of the corners about the place: their mean is the place.
    EXPECT_NEAR(outputs[4 * i], samples[7 * i], 2e-5f);
    EXPECT_NEAR(outputs[4 * i + 1], samples[7 * i + 1], 2e-5f);
    EXPECT_NEAR(outputs[4 * i + 2], 1.0f, 1e-5f);
    EXPECT_NEAR(outputs[4 * i + 3], 1.0f, 1e-5f);
  }
}

}  // namespace
}  // namespace numbers_test
