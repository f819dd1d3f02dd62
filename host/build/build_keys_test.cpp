#include "host/build/build_keys.h"

#include "host/build/build_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class Keys : public BuildFixture {
protected:
  Reached reached(const std::string& graph, const std::string& environment = {}) const {
    const LibraryKeys keys(LibrarySet::load({{path("lib")}, {path("lib")}}));
    return keys.reached(graph, environment);
  }
};

TEST_F(Keys, PartsAreNotMixedUp) {
  EXPECT_NE(KeyText().add("a").add("bc").hash(), KeyText().add("ab").add("c").hash());
  EXPECT_NE(KeyText().add("a").add("").hash(), KeyText().add("").add("a").hash());
}

TEST_F(Keys, FilesAreThoseOfTheFragmentsReached) {
  const std::vector<std::string> red = {path("lib/test.fraglib")};
  const std::vector<std::string> dim = {path("lib/deep.h"), path("lib/half.h"), path("lib/test.fraglib")};
  EXPECT_EQ(reached(redGraph()).files, red);
  EXPECT_EQ(reached(dimGraph(1)).files, dim);
  EXPECT_EQ(reached(R"({"postprocess": ["dim"]})").files, dim);
  EXPECT_EQ(reached("{}", R"({"lights": [{"fragment": "red"}], "output": "dim"})").files, dim);
  EXPECT_EQ(reached("{ broken").files, std::vector<std::string>());
}

TEST_F(Keys, EveryOptionOfATaskCounts) {
  const BuildTask plain;
  std::set<std::string> texts = {collapseText(plain, "dx11") + outputText(plain)};
  std::size_t changes = 0;
  const auto change = [&](const auto& edit) {
    BuildTask task;
    edit(task);
    texts.insert(collapseText(task, "dx11") + outputText(task));
    ++changes;
  };
  change([](BuildTask& task) { task.environment = "sun.json"; });
  change([](BuildTask& task) { task.collapse.tool = CollapseTool::lightLoop; });
  change([](BuildTask& task) { task.collapse.surfaceLod = 1; });
  change([](BuildTask& task) { task.collapse.lightLod = 1; });
  change([](BuildTask& task) { task.collapse.functionName = "f"; });
  change([](BuildTask& task) { task.collapse.profileName = "f"; });
  change([](BuildTask& task) { task.collapse.constants = {{"a", "b", 1.0}}; });
  change([](BuildTask& task) { task.collapse.constants = {{"a", "b", true}}; });
  change([](BuildTask& task) { task.collapse.constants = {{"a", "b", std::vector<double>{1, 2}}}; });
  change([](BuildTask& task) { task.stage = ShaderStage::compute; });
  change([](BuildTask& task) { task.stage = ShaderStage::vertex; });
  change([](BuildTask& task) {
    task.stage = ShaderStage::vertex;
    task.mesh.color = false;
  });
  change([](BuildTask& task) { task.names = NameStyle::generated; });
  change([](BuildTask& task) { task.target = std::nullopt; });
  change([](BuildTask& task) { task.target = ShaderTarget::glsl; });
  change([](BuildTask& task) {
    task.target = ShaderTarget::glsl;
    task.compile.glslVersion = GlslVersion::glsl330;
  });
  change([](BuildTask& task) { task.target = ShaderTarget::hlsl; });
  change([](BuildTask& task) {
    task.target = ShaderTarget::hlsl;
    task.compile.shaderModel = ShaderModel::sm60;
  });
  change([](BuildTask& task) { task.compile.optimization = Optimization::none; });
  change([](BuildTask& task) { task.compile.debug = true; });
  change([](BuildTask& task) { task.reflection = "x.json"; });
  EXPECT_EQ(texts.size(), changes + 1);
  EXPECT_NE(collapseText(plain, "dx11"), collapseText(plain, "dx12"));
}

TEST_F(Keys, WhatATargetDoesNotLookAtCountsForNothing) {
  BuildTask task;
  const std::string plain = collapseText(task, "dx11") + outputText(task);
  task.graph = "moved.json";
  task.output = "moved.spv";
  task.compile.glslVersion = GlslVersion::glsl330;
  task.compile.shaderModel = ShaderModel::sm60;
  task.mesh.color = false;
  EXPECT_EQ(collapseText(task, "dx11") + outputText(task), plain);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
