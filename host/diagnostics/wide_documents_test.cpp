// What the host does with many parts of one kind takes time in proportion to them.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <string>

#include "host/diagnostics/warnings.h"
#include "host/job/called_expressions.h"
#include "host/shader/shader_assembly.h"
#include "sfg/host/source_map.h"
#include "tests/support/cost.h"
#include "tests/support/job_files.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

namespace fs = std::filesystem;

/// `part` for each number below `count`, with the number for every `#` and the next one for every `@`.
std::string repeated(std::size_t count, const std::string& part, const std::string& separator = ", ") {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (i != 0) text += separator;
    for (const char c : part) {
      if (c == '#' || c == '@') {
        text += std::to_string(c == '#' ? i : i + 1);
      } else {
        text += c;
      }
    }
  }
  return text;
}

struct Documents {
  std::string library;
  std::string graph;
  std::string environment;  ///< empty for the default tool
};

/// The files of one scene while it lives.
class Scene {
public:
  explicit Scene(const Documents& documents) {
    std::string pattern = (fs::temp_directory_path() / "sfg_wide_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    fs::create_directory(folder_ / "lib");
    std::ofstream(folder_ / "lib" / "wide.fraglib") << documents.library;
    std::ofstream(folder_ / "graph.json") << documents.graph;
    settings_.graphFile = (folder_ / "graph.json").string();
    settings_.libraryFolders = {(folder_ / "lib").string()};
    if (documents.environment.empty()) return;
    std::ofstream(folder_ / "environment.json") << documents.environment;
    settings_.environmentFile = (folder_ / "environment.json").string();
    settings_.tool = CollapseTool::lightLoop;
  }
  ~Scene() { fs::remove_all(folder_); }
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  const JobFiles& settings() const { return settings_; }

private:
  fs::path folder_;
  JobFiles settings_;
};

using MakeDocuments = Documents (*)(std::size_t count);

struct WideCase {
  const char* name;
  MakeDocuments make;
  std::size_t warnings = 0;
  std::size_t size = 1000;  ///< the smaller one of two; less where the collapse before is quadratic
};

std::ostream& operator<<(std::ostream& out, const WideCase& wide) { return out << wide.name; }

/// One node `a` of the fragment `f`, which has these members beside its function, and these inputs.
Documents oneNode(const std::string& members, const std::string& parameters = {},
                  const std::string& nodeMembers = {}) {
  return {R"({ "f": { "language": ["dx11"], )" + members + R"("implementation": [ "void f()" + parameters +
              R"json(out float4 result)", "{", "result = 1;", "}" ] } })json",
          R"({ "outputs": [ { "name": "color", "type": "float4", "node": "a" } ],
               "nodes": [ { "name": "a", "fragment": "f")" +
              nodeMembers + " } ] }",
          {}};
}

Documents manyHelpers(std::size_t count) {
  return oneNode(R"("predefine": [ )" + repeated(count, R"("float h#_() { return 1; }")") + " ], ");
}

Documents manyUniforms(std::size_t count) {
  return oneNode(R"("uniforms": [ )" + repeated(count, R"({ "name": "u#_", "type": "float" })") + " ], ");
}

Documents manyStructures(std::size_t count) {
  return oneNode(R"("predefine": [ )" + repeated(count, R"("struct S#_ { float x; };")") +
                 R"( ], "uniforms": [ )" +
                 repeated(count, R"({ "name": "u#_", "type": "struct", "struct": "S#_" })") + " ], ");
}

/// Each structure holds the one before it; a uniform is of the last.
Documents nestedStructures(std::size_t count) {
  const std::string last = std::to_string(count);
  std::string structures = R"("struct S0 { float x; };")";
  for (std::size_t i = 1; i <= count; ++i) {
    structures += ", \"struct S" + std::to_string(i) + " { S" + std::to_string(i - 1) + " x; };\"";
  }
  return oneNode(R"("predefine": [ )" + structures +
                 R"( ], "uniforms": [ { "name": "whole_", "type": "struct", "struct": "S)" + last +
                 R"(" } ], )");
}

Documents manyInputs(std::size_t count) {
  return oneNode({}, repeated(count, "float i#_") + ", ",
                 R"(, "inputs": { )" + repeated(count, R"("i#_": { "value": 1 })") + " }");
}

/// Nodes that each have a key which is near to another.
Documents manyMistypedKeys(std::size_t count) {
  Documents documents = oneNode({});
  documents.graph =
      R"({ "nodes": [ )" + repeated(count, R"({ "name": "n#", "fragment": "f", "input": {} })") + " ] }";
  return documents;
}

Documents manyPortsOfAnInterface(std::size_t count) {
  return oneNode({}, repeated(count, "float i#_") + ", ",
                 R"(, "interface": { "inputs": [ )" +
                     repeated(count, R"({ "name": "i#_", "type": "float" })") +
                     R"( ], "outputs": [ { "name": "result", "type": "float4" } ] })");
}

Documents manyOutputs(std::size_t count) {
  return {R"({ "f": { "language": ["dx11"], "implementation": [ "void f()" +
              repeated(count, "out float o#_") + R"json()", "{", "o0_ = 1;", "}" ] } })json",
          R"({ "outputs": [ )" +
              repeated(count, R"({ "name": "g#", "type": "float", "node": "a", "output": "o#_" })") +
              R"( ], "nodes": [ { "name": "a", "fragment": "f" } ] })",
          {}};
}

/// Fragments that each have a helper and feed the next.
Documents manyFunctions(std::size_t count) {
  return {
      "{ " +
          repeated(count,
                   R"json("f#": { "language": ["dx11"], "predefine": [ "float h#_(float x) { return x; }" ],
                "uniforms": [ { "name": "u#_", "type": "float" } ], "implementation": [
                "void f#(float4 a, out float4 result)", "{", "result = a * h#_(u#_);", "}" ] })json") +
          " }",
      R"({ "outputs": [ { "name": "c", "type": "float4", "node": "a)" + std::to_string(count) +
          R"(" } ], "nodes": [ { "name": "a0", "fragment": "f0" })" +
          repeated(count, R"(, { "name": "a@", "fragment": "f#", "inputs": { "a": { "node": "a#" } } })",
                   "") +
          " ] }",
      {}};
}

/// Nodes that each feed an output, and lights that each ask for a profile of its own.
Documents manyLightProfiles(std::size_t count) {
  return {
      R"json({ "lamp": { "language": ["dx11"], "implementation": [ "void lamp(out float light)", "{", "light = 1;", "}" ] },
              "f": { "profiles": [
                { "language": ["dx11"], "implementation": [ "void f(out float4 result)", "{", "result = 1;", "}" ] }, )json" +
          repeated(count, R"json({ "name": "P#_", "language": ["dx11"], "implementation": [
                "void f(out float4 result)", "{", "result = 1;", "}" ] })json") +
          " ] } }",
      R"({ "outputs": [ )" + repeated(count, R"({ "name": "c#", "type": "float4", "node": "a#" })") +
          R"( ], "nodes": [ )" + repeated(count, R"({ "name": "a#", "fragment": "f" })") + " ] }",
      R"({ "lights": [ )" + repeated(count, R"({ "fragment": "lamp", "profile": "P#_" })") + " ] }"};
}

/// Nodes that each call another, and lights that each ask for a profile of its own.
Documents manyWiresAndLightProfiles(std::size_t count) {
  Documents documents = manyLightProfiles(count);
  const std::string caller = R"json("g": { "language": ["dx11"], "implementation": [
      "void g(float4 a, out float4 result)", "{", "sfg_shader(a, result, result);", "}" ] })json";
  documents.library = "{ " + caller + ", " + documents.library.substr(1);
  documents.graph =
      R"({ "outputs": [ )" + repeated(count, R"({ "name": "c#", "type": "float4", "node": "a#" })") +
      R"( ], "nodes": [ )" +
      repeated(count, R"({ "name": "a#", "fragment": "g", "inputs": { "a": { "node": "b#" } } })") + ", " +
      repeated(count, R"({ "name": "b#", "fragment": "f" })") + " ] }";
  return documents;
}

/// Nodes with a wired `inout` input, and lights that each ask for a profile of its own.
Documents manyInoutWires(std::size_t count) {
  const auto fragment = [](const std::string& name) {
    return R"json({ "name": ")json" + name + R"json(", "language": ["dx11"], "implementation": [
      "void f(inout float4 a, out float4 result)", "{", "result = a;", "}" ] })json";
  };
  Documents documents = manyLightProfiles(count);
  const std::string lamp = documents.library.substr(0, documents.library.find(R"("f":)"));
  documents.library = lamp + R"("f": { "profiles": [ )" + fragment("default") + ", " +
                      repeated(count, fragment("P#_")) + " ] } }";
  documents.graph =
      R"({ "inputs": [ { "name": "x", "type": "float4" } ], "outputs": [ )" +
      repeated(count, R"({ "name": "c#", "type": "float4", "node": "a#" })") + R"( ], "nodes": [ )" +
      repeated(count, R"({ "name": "a#", "fragment": "f", "inputs": { "a": { "graphInput": "x" } } })") +
      " ] }";
  return documents;
}

/// Fragments whose default profile is not lit, and lights whose type has the name of the profile that they
/// ask for, which no fragment has.
Documents manyLightsOfAType(std::size_t count) {
  const auto profile = [](const std::string& name, const std::string& value) {
    return R"json({ "name": ")json" + name + R"json(", "language": ["dx11"], "implementation": [
      "void f(out float4 result)", "{", "result = )json" +
           value + R"json(;", "}" ] })json";
  };
  return {
      R"json({ "lamp": { "language": ["dx11"], "implementation": [ "void lamp(out P light)", "{", "}" ] }, )json" +
          repeated(count, R"("f#": { "profiles": [ )" + profile("default", "1") + ", " +
                              profile("Q", "sfg_currentLight.x") + " ] }") +
          " }",
      R"({ "outputs": [ )" + repeated(count, R"({ "name": "c#", "type": "float4", "node": "a#" })") +
          R"( ], "nodes": [ )" + repeated(count, R"({ "name": "a#", "fragment": "f#" })") + " ] }",
      R"({ "lights": [ )" + repeated(count, R"({ "fragment": "lamp", "profile": "P" })") + " ] }"};
}

/// How the processor time of a phase grows with the scene, without the time of what goes before.
double growth(MakeDocuments make, const std::function<std::clock_t(const Scene&)>& timeOf,
              std::size_t size = 1000) {
  return test::timeGrowth(size, [&](std::size_t count) { return timeOf(Scene(make(count))); });
}

class LoadingCostTest : public testing::TestWithParam<WideCase> {};
TEST_P(LoadingCostTest, GrowsWithTheDocument) {
  const auto time = [](const Scene& scene) {
    return test::processorTime([&] { CollapseJob job = makeJob(scene.settings()); });
  };
  EXPECT_LT(growth(GetParam().make, time), test::kLinearGrowth);
}
INSTANTIATE_TEST_SUITE_P(All, LoadingCostTest,
                         testing::Values(WideCase{"Inputs", manyInputs}, WideCase{"Outputs", manyOutputs},
                                         WideCase{"Interface", manyPortsOfAnInterface},
                                         WideCase{"MistypedKeys", manyMistypedKeys}),
                         testing::PrintToStringParamName());

class WarningCostTest : public testing::TestWithParam<WideCase> {};
TEST_P(WarningCostTest, GrowsWithTheDocument) {
  const auto time = [](const Scene& scene) {
    CollapseJob job = makeJob(scene.settings());
    job.run();
    return test::processorTime([&] { EXPECT_EQ(findWarnings(job, true).size(), GetParam().warnings); });
  };
  EXPECT_LT(growth(GetParam().make, time, GetParam().size), test::kLinearGrowth);
}
INSTANTIATE_TEST_SUITE_P(All, WarningCostTest,
                         testing::Values(WideCase{"Helpers", manyHelpers}, WideCase{"Uniforms", manyUniforms},
                                         WideCase{"Structures", manyStructures},
                                         WideCase{"ProfilesOfANode", manyInoutWires, 0, 250},
                                         WideCase{"LightsOfAType", manyLightsOfAType, 1, 250}),
                         testing::PrintToStringParamName());

TEST(IncludeCostTest, GrowsWithTheFilesThatAreMissing) {
  constexpr std::size_t kTold = 1000;  // the others are counted
  const auto time = [](std::size_t count) {
    const Scene scene(oneNode(R"("includes": [ )" + repeated(count, R"("gone#.h")") + " ], "));
    JobFiles settings = scene.settings();
    settings.includeFolders = settings.libraryFolders;
    CollapseJob job = makeJob(settings);
    job.run();
    return test::processorTime(
        [&] { EXPECT_EQ(findWarnings(job, true).size(), std::min(count, kTold + 1)); });
  };
  EXPECT_LT(test::timeGrowth(kTold, time), test::kLinearGrowth);
}

class SurfaceCostTest : public testing::TestWithParam<WideCase> {};
TEST_P(SurfaceCostTest, GrowsWithTheDocument) {
  const auto time = [](const Scene& scene) {
    CollapseJob job = makeJob(scene.settings());
    return test::processorTime([&] { EXPECT_TRUE(findCalledExpressions(job).empty()); });
  };
  EXPECT_LT(growth(GetParam().make, time), test::kLinearGrowth);
}
INSTANTIATE_TEST_SUITE_P(All, SurfaceCostTest,
                         testing::Values(WideCase{"Profiles", manyLightProfiles},
                                         WideCase{"Wires", manyWiresAndLightProfiles}),
                         testing::PrintToStringParamName());

class AssemblyCostTest : public testing::TestWithParam<WideCase> {};
TEST_P(AssemblyCostTest, GrowsWithTheShader) {
  const auto time = [](const Scene& scene) {
    CollapseJob job = makeJob(scene.settings());
    job.run();
    return test::processorTime(
        [&] { EXPECT_FALSE(assembleShader(job, ShaderStage::compute).sections.empty()); });
  };
  EXPECT_LT(growth(GetParam().make, time), test::kLinearGrowth);
}
INSTANTIATE_TEST_SUITE_P(All, AssemblyCostTest,
                         testing::Values(WideCase{"Structures", manyStructures},
                                         WideCase{"NestedStructures", nestedStructures},
                                         WideCase{"Uniforms", manyUniforms},
                                         WideCase{"Outputs", manyOutputs}),
                         testing::PrintToStringParamName());

class OriginCostTest : public testing::TestWithParam<WideCase> {};
TEST_P(OriginCostTest, GrowsWithTheShaderHoweverManyPlacesAreAsked) {
  const auto time = [](const Scene& scene) {
    CollapseJob job = makeJob(scene.settings());
    job.run();
    const AssembledShader assembled = assembleShader(job, ShaderStage::compute);
    return test::processorTime([&] {
      const SourceMap map(job, assembled);
      std::size_t known = 0;
      for (std::size_t line = 1; line <= assembled.sections.back().lastLine; ++line) {
        if (map.find(line, 1).kind != SourcePlace::Kind::unknown) ++known;
      }
      EXPECT_EQ(known, assembled.sections.back().lastLine);
    });
  };
  EXPECT_LT(growth(GetParam().make, time, 250), test::kLinearGrowth);
}
INSTANTIATE_TEST_SUITE_P(All, OriginCostTest,
                         testing::Values(WideCase{"Helpers", manyHelpers}, WideCase{"Uniforms", manyUniforms},
                                         WideCase{"Functions", manyFunctions}),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
