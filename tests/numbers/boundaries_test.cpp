// What fragments answer at the ends of their ranges and beyond: where a formula divides by nothing, jumps, or
// was made for smaller numbers.

#include <gtest/gtest.h>

#include "tests/numbers/device_fragment.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {
namespace {

struct Answer {
  std::vector<float> inputs;
  std::vector<float> outputs;
};

class Boundaries : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }

  std::vector<float> run(std::string const& fragment, std::vector<Input> const& inputs,
                         std::vector<float> const& samples) {
    return DeviceFragment({fragment, "default", 100.0}, inputs).run(compute_, samples);
  }

  void check(std::string const& fragment, std::vector<Input> const& inputs,
             std::vector<Answer> const& answers, float tolerance = 1e-5f) {
    SCOPED_TRACE(fragment);
    std::vector<float> samples;
    for (Answer const& answer : answers) {
      samples.insert(samples.end(), answer.inputs.begin(), answer.inputs.end());
    }
    std::vector<float> const outputs = run(fragment, inputs, samples);
    std::size_t at = 0;
    for (std::size_t i = 0; i < answers.size(); ++i) {
      for (float const expected : answers[i].outputs) {
        EXPECT_NEAR(outputs.at(at++), expected, tolerance) << "answer " << i;
      }
    }
    EXPECT_EQ(at, outputs.size());
  }

  VulkanCompute compute_;
};

TEST_F(Boundaries, ToonStepsReachBothEnds) {
  std::vector<Input> const inputs = {number("value", 0, 1), number("steps", 1, 16), number("softness", 0, 1)};
  check("toonSteps", inputs,
        {{{0, 3, 0}, {0}}, {{0.99f, 3, 0}, {1}}, {{1, 3, 0}, {1}}, {{0.5f, 3, 0}, {0.5f}}, {{1, 1, 0}, {1}}});
}

TEST_F(Boundaries, TriplanarWeightsAddUpToOne) {
  std::vector<Input> const inputs = {vector3("normal", -1, 1), number("sharpness", 0, 64)};
  float const third = 1.0f / 3.0f;
  check("triplanarWeights", inputs,
        {{{0.57735f, 0.57735f, 0.57735f, 64}, {third, third, third}},
         {{0.001f, 0, 0.001f, 4}, {0.5f, 0, 0.5f}},
         {{0, 30, 0, 20}, {0, 1, 0}},
         {{0, 0, 0, 4}, {third, third, third}}});
}

TEST_F(Boundaries, BrushedMetalWithoutTangentIsBrushedAlongAnyAxis) {
  std::vector<Input> const inputs = {unit3("normal"),
                                     unit3("tangent"),
                                     unit3("light"),
                                     unit3("view"),
                                     vector3("reflectance", 0, 1),
                                     number("roughnessAlong", 0, 1),
                                     number("roughnessAcross", 0, 1)};
  auto const seenWith = [&](std::vector<float> const& tangent) {
    std::vector<float> sample = {0, 0, 1};
    sample.insert(sample.end(), tangent.begin(), tangent.end());
    sample.insert(sample.end(), {0.6f, 0, 0.8f, -0.48f, 0.36f, 0.8f, 0.9f, 0.8f, 0.7f, 0.4f, 0.4f});
    return run("ggxAnisotropic", inputs, sample);
  };
  std::vector<float> const expected = seenWith({1, 0, 0});
  for (std::vector<float> const& tangent : {std::vector<float>{0, 0, 0}, {0, 0, 1}, {0, 0, -3}}) {
    std::vector<float> const seen = seenWith(tangent);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR(seen[i], expected[i], 1e-4f);
    }
  }
}

TEST_F(Boundaries, OfTextureCoordinates) {
  Input const uv = vector2("uv", -2, 2);
  Input const center = vector2("center", 0, 1);
  check("rotateUv", {uv, center, number("angle", -4, 4)}, {{{1, 0, 0, 0, 1.5707963f}, {0, 1}}}, 1e-3f);
  check("twirlUv", {uv, center, number("radius", 0, 1), number("angle", -4, 4)},
        {{{1, 0.5f, 0, 0, 0, 3}, {1, 0.5f}}, {{1, 0.5f, 0, 0, -1, 3}, {1, 0.5f}}});
  // The last place of a frame is not the first of the next one.
  std::vector<float> const flipped =
      run("flipbookUv", {uv, number("columns", 1, 8), number("rows", 1, 8), number("frame", 0, 9)},
          {1, 1, 4, 2, 1, 1, 1, 4, 2, 7});
  EXPECT_EQ(std::floor(flipped[0] * 4), 1);
  EXPECT_EQ(std::floor(flipped[1] * 2), 0);
  EXPECT_EQ(std::floor(flipped[2] * 4), 3);
  EXPECT_EQ(std::floor(flipped[3] * 2), 1);
  check("polarUv", {uv, center}, {{{0.5f, 0.5f, 0.5f, 0.5f}, {0, 0.5f}}});
  check("sphericalUv", {vector3("position", -1, 1)}, {{{0, 1, 0}, {0.5f, 0}}, {{0, -1, 0}, {0.5f, 1}}},
        1e-4f);
  check("cylindricalUv", {vector3("position", -1, 1), number("height", 0, 1)},
        {{{0, 0.5f, 0, 1}, {0.5f, 0}}});
  std::vector<float> const tiled = run("tileUv", {uv, vector2("count", 1, 8)}, {-1e-9f, 0.25f, 1, 1});
  EXPECT_LT(tiled[0], 1);
  EXPECT_EQ(tiled[1], 0.25f);
  EXPECT_EQ(tiled[2], -1);
}

TEST_F(Boundaries, OfNumbers) {
  check("arcTangentFloat", {number("y", -1, 1), number("x", -1, 1)}, {{{0, 0}, {0}}});
  std::vector<Input> const step = {number("low", -1, 1), number("high", -1, 1), number("a", -1, 1)};
  for (char const* const fragment : {"smoothstepFloat", "smootherstepFloat"}) {
    check(
        fragment, step,
        {{{0.5f, 0.5f, 0.4f}, {0}}, {{0.5f, 0.5f, 0.5f}, {1}}, {{0.5f, 0.5f, 0.6f}, {1}}, {{1, 0, 0}, {1}}});
  }
  check("remapFloat",
        {number("a", -1, 1), number("fromLow", -1, 1), number("fromHigh", -1, 1), number("toLow", -1, 1),
         number("toHigh", -1, 1)},
        {{{0.9f, 0.5f, 0.5f, 2, 3}, {2}}, {{0.1f, 0.5f, 0.5f, 2, 3}, {2}}});
  EXPECT_LT(run("fractFloat", {number("a", -1, 1)}, {-1e-9f})[0], 1);
}

TEST_F(Boundaries, ATurnAboutNoAxisTurnsNothing) {
  check("rotationMatrix", {vector3("axis", -1, 1), number("angle", -4, 4)},
        {{{0, 0, 0, 2}, {1, 0, 0, 0, 1, 0, 0, 0, 1}}});
}

TEST_F(Boundaries, OfColours) {
  Input const color = vector3("color", -1, 8);
  std::vector<float> const hue = run("rgbToHsv", {color}, {1, 0, 1e-9f, 1, -1, 0.5f, 4, 2, 2});
  EXPECT_GE(hue[0], 0);
  EXPECT_LT(hue[0], 1);
  EXPECT_LE(hue[4], 1);  // the saturation of a colour with a negative channel
  EXPECT_EQ(hue[8], 4);
  check("gammaDecode", {color, number("gamma", -4, 4)}, {{{0.5f, 1, 0, -2}, {0.999307f, 1, 0}}});
  check("invertColor", {color}, {{{0.25f, 1, 3}, {0.75f, 0, 0}}});
  check("desaturate", {color, number("amount", -2, 2)}, {{{1, 0, 0, -1}, {1.7874f, 0, 0}}});
  check("cosinePalette",
        {vector3("base", 0, 1), vector3("amplitude", 0, 1), vector3("frequency", 0, 1),
         vector3("phase", 0, 1), number("position", 0, 1)},
        {{{0.5f, 0.5f, 0.5f, 1, 1, 0.5f, 1, 1, 1, 0, 0, 0, 0.5f}, {0, 0, 0}}}, 1e-3f);
  check("brightnessContrast", {color, number("brightness", -1, 1), number("contrast", 0, 4)},
        {{{0.18f, 0.36f, 0.01f, 0, 2}, {0.18f, 0.54f, 0}}});
}

TEST_F(Boundaries, BlendingStaysInOrderAboveOne) {
  std::vector<Input> const inputs = {vector3("backdrop", 0, 4), vector3("layer", 0, 4),
                                     number("opacity", -1, 2)};
  check("blendScreen", inputs, {{{2, 2, 0.5f, 2, 0.5f, 2, 1}, {3, 2, 2}}});
  check("blendHardLight", inputs,
        {{{2, 2, 2, 0.5f, 1, 0, 1}, {2, 2, 0}}, {{0.5f, 0.5f, 0.5f, 2, 1, -1, 1}, {3, 1, 0}}});
  check("blendOverlay", inputs, {{{2, 2, 2, 0.5f, 1, 0, 1}, {2, 2, 2}}});
  check("blendSoftLight", inputs,
        {{{2, 2, 2, 0.5f, 1, 0, 1}, {2, 2, 2}}, {{0.25f, 0.25f, 1, 1, 3, 3, 1}, {0.5f, 0.5f, 1}}});
  for (char const* const mode : {"Normal", "Add", "Multiply", "Screen", "Difference", "Darken", "Lighten",
                                 "HardLight", "Overlay", "SoftLight"}) {
    std::string const fragment = std::string("blend") + mode;
    std::vector<float> const all = run(fragment, inputs, {0.5f, 0.25f, 0.75f, 0.25f, 0.75f, 1, 1});
    check(fragment, inputs,
          {{{0.5f, 0.25f, 0.75f, 0.25f, 0.75f, 1, 2}, all},
           {{0.5f, 0.25f, 0.75f, 0.25f, 0.75f, 1, -1}, {0.5f, 0.25f, 0.75f}}});
  }
}

TEST_F(Boundaries, OfNoise) {
  std::vector<Input> const sum = {vector3("position", -4, 4), wholeInt("octaves", 1, 12),
                                  number("lacunarity", 1, 4), number("gain", -1, 1)};
  for (char const* const fragment : {"fbmNoise3", "turbulenceNoise3"}) {
    // A negative gain counts as none.
    DeviceFragment const device({fragment, "default", 100.0}, sum);
    std::vector<float> const seen =
        device.run(compute_, {0.3f, 0.4f, 0.8f, 6, 2, -0.9f, 0.3f, 0.4f, 0.8f, 6, 2, 0, 0, 0, 0, 6, 2, 0.5f});
    EXPECT_EQ(seen[0], seen[1]) << fragment;
    EXPECT_GT(std::fabs(seen[2]), 0.01f) << fragment << " at the origin";
  }
  // Cells beyond the range of whole numbers are all the last one.
  check("randomCell2", {vector2("position", -1, 1)},
        {{{4e9f, -5e12f}, run("randomCell2", {vector2("position", -1, 1)}, {2147483520.0f, -2147483648.0f})}},
        0);
  check("randomCell3", {vector3("position", -1, 1)},
        {{{4e9f, -5e12f, 0},
          run("randomCell3", {vector3("position", -1, 1)}, {2147483520.0f, -2147483648.0f, 0})}},
        0);
  check("randomColor", {number("seed", -1, 1)},
        {{{4e9f}, run("randomColor", {number("seed", -1, 1)}, {2147483520.0f})}}, 0);
}

TEST_F(Boundaries, OfPostProcessing) {
  Input const color = vector4("color", 0, 4);
  check("postSaturation", {color, number("saturation_amount", 0, 4)},
        {{{1, 0, 0, 0.5f, 2}, {1.7874f, 0, 0, 0.5f}}});
  check("postContrast", {color, number("contrast_amount", 0, 4), number("contrast_middle", 0, 1)},
        {{{0.18f, 0.36f, 0.01f, 1, 2, 0.18f}, {0.18f, 0.54f, 0, 1}}});
  std::vector<float> const grain = run(
      "postGrain",
      {color, number("grain_amount", 0, 1), vector4("sfg_screenPosition", 0, 99), number("sfg_time", 0, 9)},
      {0, 0, 0, 1, 1, 3, 4, 0, 1, 0, 0, 0, 0, 1, 1, 8, 4, 0, 1, 0, 0, 0, 0, 1, 1, 9, 4, 0, 1, 0});
  for (float const value : grain) {
    EXPECT_GE(value, 0);
  }
  // As dark in the corners of a wide picture as in those of a square one, and lighter at all its edges; never
  // negative.
  std::vector<Input> const vignette = {color, number("vignette_strength", 0, 2),
                                       number("vignette_inner", 0, 1), vector2("sfg_viewportSize", 1, 999),
                                       vector4("sfg_screenPosition", 0, 999)};
  std::vector<float> const dark =
      run("postVignette", vignette, {1, 1, 1, 1, 1, 0.5f, 100, 100, 0,   0,  0, 1,    // a corner of a square
                                     1, 1, 1, 1, 1, 0.5f, 200, 100, 0,   0,  0, 1,    // a corner
                                     1, 1, 1, 1, 1, 0.5f, 200, 100, 200, 50, 0, 1,    // an edge
                                     1, 1, 1, 1, 3, 0.5f, 200, 100, 0,   0,  0, 1});  // too strong
  EXPECT_NEAR(dark[4], dark[0], 1e-5f);
  EXPECT_GT(dark[8], dark[4] + 0.02f);
  EXPECT_GE(dark[12], 0);
}

}  // namespace
}  // namespace numbers_test
