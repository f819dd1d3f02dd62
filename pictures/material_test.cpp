#include "pictures/material.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "pictures/test_folder.h"

namespace pictures {
namespace {

namespace host = TolmSDK::Graphics::sfg::host;

constexpr const char* kLibrary = R"json({ "tinted": { "language": ["dx11"], "implementation": [
  "void tinted(float3 tint, float gain, out float4 result)", "{", "result = float4(tint * gain, 1.0);", "}" ] } })json";
constexpr const char* kGraph = R"json({ "inputs": [ { "name": "tint", "type": "float3" } ],
  "outputs": [ { "name": "color", "type": "float4", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tinted",
    "inputs": { "tint": { "graphInput": "tint" }, "gain": { "value": 0.5 } } } ] })json";

class MaterialTest : public testing::Test {
protected:
  void SetUp() override {
    const char* const skip = std::getenv("SFG_SKIP_VULKAN_TESTS");
    if (skip != nullptr && *skip != '\0' && std::string_view(skip) != "0") GTEST_SKIP();
    folder_.write("lib.fraglib", kLibrary);
    host::Job job(host::LibrarySet::load({{folder_.path()}, {}}),
                  host::Document::fromText(kGraph, "graph.json"));
    job.collapse();
    material_ = compileMaterial(job);
    device_.emplace();
  }
  View makeView(const Settings& settings) const {
    return {*device_, material_, makeShape("sphere"), {}, settings, {{16, 16}, 1, false}};
  }
  /// In the middle of the picture.
  static std::array<float, 3> seen(View& view) {
    const Shot shot = view.shoot({cameraFor(makeShape("sphere"), 0, 0), {}, 0});
    const float* const color = shot.colors.at(8, 8);
    // Interpolation rounds.
    const auto near = [](float value) { return std::round(value * 1000) / 1000; };
    return {near(color[0]), near(color[1]), near(color[2])};
  }
  static std::string refusal(View& view, const Settings& settings) {
    try {
      view.set(settings);
    } catch (const host::PackError& error) {
      return error.what();
    }
    return "(nothing thrown)";
  }

  TestFolder folder_;
  Material material_;
  std::optional<render::Device> device_;
};

using Color = std::array<float, 3>;

TEST_F(MaterialTest, NextPictureCompilesNothing) {
  View view = makeView({{"tint", {1, 0.5, 0}}});
  EXPECT_EQ(seen(view), (Color{0.5f, 0.25f, 0}));
  const Compilations before = compilations();
  view.set({{"a.gain", {2}}});
  EXPECT_EQ(seen(view), (Color{2, 1, 0}));
  view.set({{"a.gain", {1}}});
  EXPECT_EQ(seen(view), (Color{1, 0.5f, 0}));
  EXPECT_EQ(compilations(), before);
}

TEST_F(MaterialTest, InputsOfTheGraphAreSetAnew) {
  View view = makeView({{"tint", {1, 0.5, 0}}});
  view.set({{"tint", {0, 1, 4}}});
  EXPECT_EQ(seen(view), (Color{0, 0.5f, 2}));
  view.set({{"a.gain", {1}}, {"tint", {3, 0, 0}}});
  EXPECT_EQ(seen(view), (Color{3, 0, 0}));
}

TEST_F(MaterialTest, RefusedValuesLeaveThePictureAsItIs) {
  View view = makeView({{"tint", {1, 0.5, 0}}});
  EXPECT_EQ(refusal(view, {{"a.gain", {4}}, {"tint", {1, 2}}}),
            "the graph's input `tint` takes 3 numbers, not 2");
  EXPECT_NE(refusal(view, {{"tint", {1, 1, 1}}, {"a.gain", {1, 2}}}), "(nothing thrown)");
  EXPECT_EQ(refusal(view, {{"a.gian", {4}}}), "the shader has no value `a.gian`; did you mean `a.gain`?");
  EXPECT_EQ(seen(view), (Color{0.5f, 0.25f, 0}));
}

TEST_F(MaterialTest, CountsWhatIsCompiled) {
  const Compilations before = compilations();
  makeView({{"tint", {1, 1, 1}}});
  EXPECT_EQ(compilations(), (Compilations{before.stages, before.pipelines + 1}));
  host::Job job(host::LibrarySet::load({{folder_.path()}, {}}),
                host::Document::fromText(kGraph, "graph.json"));
  job.collapse();
  compileMaterial(job);
  EXPECT_EQ(compilations(), (Compilations{before.stages + 2, before.pipelines + 1}));
}

TEST_F(MaterialTest, VertexStageIsCompiledOnceForMaterialsThatShareIt) {
  const auto compiled = [&](const std::string& factor, Modules& known) {
    std::string graph = kGraph;
    graph.replace(graph.find("{ \"value\": 0.5 }"), 16, "{ \"constant\": " + factor + " }");
    host::Job job(host::LibrarySet::load({{folder_.path()}, {}}), host::Document::fromText(graph, "graph"));
    job.collapse();
    const std::size_t before = compilations().stages;
    const Material made = compileMaterial(job, {}, &known);
    return std::pair(compilations().stages - before, made.vertex.module);
  };
  Modules known;
  Modules none;
  const auto [first, firstStage] = compiled("0.5", known);
  EXPECT_EQ(first, 2u);
  EXPECT_EQ(known.size(), 1u);
  const auto [next, nextStage] = compiled("0.25", known);
  EXPECT_EQ(next, 1u);
  EXPECT_EQ(nextStage, compiled("0.25", none).second);
}

}  // namespace
}  // namespace pictures
