// What must follow when something moves: a pattern in the body goes with it, light and picture turn together.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

#include "pictures/material.h"

namespace pictures {
namespace {

namespace host = TolmSDK::Graphics::sfg::host;

constexpr std::uint32_t kSize = 64;
constexpr double kPi = 3.14159265358979323846;

class Movement : public testing::Test {
protected:
  void SetUp() override {
    const char* const skip = std::getenv("SFG_SKIP_VULKAN_TESTS");
    if (skip != nullptr && *skip != '\0' && std::string_view(skip) != "0") GTEST_SKIP();
    device_.emplace();
  }

  View viewOf(const host::Document& graph, const char* shape,
              const std::optional<host::Document>& lights = {}, const Settings& settings = {}) const {
    host::CollapseOptions options;
    if (lights) options.tool = host::CollapseTool::lightLoop;
    host::Job job(libraries_, graph, options, lights);
    job.collapse();
    return {*device_, compileMaterial(job), makeShape(shape), {}, settings, {{kSize, kSize}, 1, false}};
  }

  const std::shared_ptr<const host::LibrarySet> libraries_ =
      host::LibrarySet::load({{"library"}, {"library"}});
  std::optional<render::Device> device_;
};

Picture colorsOf(View& view, const Vector& place, const Matrix& turn = {}) {
  Moment moment;
  moment.camera = cameraFor(makeShape("cube"), 30, 20);
  moment.world = turn;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    moment.camera.target[axis] += place[axis];
    moment.world.at(axis, 3) = place[axis];
  }
  return view.shoot(moment).colors;
}

/// The share of the pixels in which two pictures of one size are further apart than rounding brings them.
double changed(const Picture& a, const Picture& b) {
  std::size_t count = 0;
  for (std::size_t pixel = 0; pixel < a.texels.size(); pixel += 4) {
    bool isChanged = false;
    for (std::size_t i = 0; i < 4; ++i)
      isChanged = isChanged || std::abs(a.texels[pixel + i] - b.texels[pixel + i]) > 0.02f;
    count += isChanged ? 1 : 0;
  }
  return static_cast<double>(count) / static_cast<double>(a.texels.size() / 4);
}

/// A fragment's first output as the colour, of a place that `position` gives.
std::string solidGraph(const std::string& fragment, const std::string& position) {
  return R"json({ "outputs": [ { "name": "color", "type": "float3", "node": "color" } ], "nodes": [
    { "name": "where", "fragment": ")json" +
         position + R"json(" },
    { "name": "wide", "fragment": "scaleFloat3", "inputs": { "a": { "node": "where" }, "factor": { "value": 2.3 } } },
    { "name": "pattern", "fragment": ")json" +
         fragment + R"json(", "inputs": { "position": { "node": "wide" } } },
    { "name": "color", "fragment": "combineFloat3", "inputs": { "x": { "node": "pattern" }, "y": { "node": "pattern" },
      "z": { "node": "pattern" } } } ] })json";
}

TEST_F(Movement, OfTheObjectLeavesSolidTexturesUnchanged) {
  for (const char* const pattern : {"perlinNoise3", "fbmNoise3", "warpedNoise3", "worleyNoise3"}) {
    View inBody = viewOf(host::Document::fromText(solidGraph(pattern, "objectPosition"), "solid"), "cube");
    const Picture still = colorsOf(inBody, {});
    EXPECT_LE(changed(still, colorsOf(inBody, {3, -2, 1.5})), 0.01) << pattern;
    View inWorld = viewOf(host::Document::fromText(solidGraph(pattern, "worldPosition"), "world"), "cube");
    EXPECT_LE(changed(still, colorsOf(inWorld, {})), 0.01) << pattern;
    EXPECT_GT(changed(still, colorsOf(inWorld, {3.3, -2.2, 1.5})), 0.2)
        << pattern << " in the world stays there";
  }
}

TEST_F(Movement, OfTheObjectLeavesMarbleAndWoodUnchanged) {
  for (const char* const name : {"marble", "wood"}) {
    // Without lamps, the one at the eye comes along.
    View view = viewOf(host::Document::fromFile(std::string("examples/materials/") + name + ".json"), "cube");
    const Picture still = colorsOf(view, {});
    EXPECT_LE(changed(still, colorsOf(view, {3, -2, 1.5})), 0.01) << name;
    EXPECT_GT(changed(still, colorsOf(view, {}, turnedAroundY(0.5))), 0.1) << name << " turned";
  }
}

/// The picture a quarter further against the clock.
Picture turned(const Picture& picture) {
  Picture result(picture.height, picture.width);
  for (std::uint32_t y = 0; y < picture.height; ++y)
    for (std::uint32_t x = 0; x < picture.width; ++x)
      std::copy_n(picture.at(x, y), 4, result.at(y, picture.width - 1 - x));
  return result;
}

TEST_F(Movement, OfTheLightTurnsThePicture) {
  const auto lamp = host::Document::fromText(
      R"({ "lights": [ { "name": "sun", "fragment": "directionalLight", "profile": "sfg_Light" } ] })",
      "sun");
  for (const char* const surface : {"lambertSurface", "ggxSurface", "scatteringSurface", "clothSurface"}) {
    const auto graph = host::Document::fromText(
        R"({ "outputs": [ { "name": "color", "type": "float3", "node": "s" } ], "nodes": [ { "name": "s", "fragment": ")" +
            std::string(surface) + R"(" } ] })",
        surface);
    const auto shoot = [&](double degrees) {
      // Towards the eye's side of the ball, from around the picture.
      const double angle = degrees * kPi / 180;
      View view = viewOf(graph, "sphere", lamp,
                         {{"sun.light_axis", {-0.8 * std::cos(angle), -0.8 * std::sin(angle), -0.6}}});
      Moment moment;
      moment.camera = cameraFor(makeShape("sphere"), 0, 0);
      return view.shoot(moment).colors;
    };
    Picture expected = shoot(20);
    for (const double degrees : {110.0, 200.0, 290.0}) {
      expected = turned(expected);
      const Picture seen = shoot(degrees);
      EXPECT_LE(changed(expected, seen), 0.02) << surface << " at " << degrees;
      EXPECT_GT(changed(turned(expected), seen), 0.2) << surface << " at " << degrees;
    }
  }
}

}  // namespace
}  // namespace pictures
