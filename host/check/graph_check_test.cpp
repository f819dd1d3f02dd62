#include "host/check/graph_check.h"

#include "host/check/check_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class GraphCheckTest : public CompilingCheckFixture {
protected:
  GraphCheckTest() {
    write("lamp.h", "struct Lamp { float3 color; };\n");
    write("lib.fraglib", R"json({
  "lamp": {"profiles": [
    {"name": "Lamp", "language": ["dx11"], "includes": ["lamp.h"],
     "implementation": ["void lamp1(out Lamp light)", "{ light.color = float3(1.0, 1.0, 1.0); }"]}]},
  "matte": {"profiles": [
    {"language": ["dx11"],
     "implementation": ["void matte1(float3 albedo, out float3 result)", "{ result = albedo; }"]},
    {"name": "Lamp", "language": ["dx11"], "includes": ["lamp.h"],
     "implementation": ["void matte1(float3 albedo, out float3 result)",
       "{ result = albedo * sfg_currentLight.color; }"]}]},
  "broken": {"profiles": [
    {"language": ["dx11"],
     "implementation": ["void broken1(float3 albedo, out float3 result)", "{ result = albedo; }"]},
    {"name": "Lamp", "language": ["dx11"], "includes": ["lamp.h"],
     "implementation": ["void broken1(float3 albedo, out float3 result)",
       "{ result = albedo * sfg_currentLight.colr; }"]}]},
  "two": {"language": ["dx11"], "implementation": ["void two1(out float2 result)", "{ result = 2.0; }"]},
  "frame": {"language": ["dx11"],
    "implementation": ["void frame1(float3 color, out float3 pixel)", "{ pixel = color; }"]},
  "post": {"language": ["dx11"],
    "implementation": ["void post1(float3 color, out float3 result)", "{ result = color; }"]}
})json");
  }
};

constexpr const char* kMatte =
    R"json({"outputs": [{"name": "color", "type": "float3", "node": "n"}],
 "nodes": [{"name": "n", "fragment": "matte", "inputs": {"albedo": {"value": [1, 1, 1]}}}]})json";

TEST_F(GraphCheckTest, RightGraphIsNotTold) { EXPECT_EQ(checkGraph(kMatte), ""); }

TEST_F(GraphCheckTest, UnknownKeyIsAnError) {
  EXPECT_EQ(checkGraph(R"json({"outputs": [{"name": "color", "type": "float3", "node": "n"}],
 "nodes": [{"name": "n", "fragment": "matte", "inputs": {"albedo": {"value": [1, 1, 1]}}, "inptus": {}}]})json"),
            "graph.json:2:91: error: unknown key `inptus` of a node; did you mean `inputs`? [unknown-key]\n");
}

TEST_F(GraphCheckTest, WireTypesKeepItFromBeingCompiled) {
  EXPECT_EQ(
      checkGraph(R"json({"outputs": [{"name": "color", "type": "float3", "node": "n"}], "nodes": [
 {"name": "t", "fragment": "two"},
 {"name": "n", "fragment": "matte", "inputs": {"albedo": {"node": "t"}}}]})json"),
      "graph.json:3:58: error: output `result` of node `t` of type `float2` does not fit input `albedo` of "
      "node `n` of type `float3` [wire-type]\n");
}

TEST_F(GraphCheckTest, LitGraphIsCompiledUnderALightOfTheLibraries) {
  const std::string told = checkGraph(R"json({"outputs": [{"name": "color", "type": "float3", "node": "n"}],
 "nodes": [{"name": "n", "fragment": "broken", "inputs": {"albedo": {"value": [1, 1, 1]}}}]})json");
  EXPECT_EQ(told.substr(0, told.find('\n')),
            "lib.fraglib:16:46: error: the structure has no member `colr` [compile-error]");
}

TEST_F(GraphCheckTest, GivenEnvironmentLightsTheGraph) {
  CheckOptions given = options();
  given.environment =
      Document::fromText(R"json({"lights": [{"fragment": "lamp", "profile": "Other"}]})json", "scene.json");
  EXPECT_EQ(textOf(Checker(given).checkGraph(Document::fromText(kMatte, "graph.json"))),
            "scene.json:1:45: error: light `light0` asks for the profile `Other`, which its fragment `lamp` "
            "does not have; known are `Lamp` [light-profile]\n"
            "scene.json:1:45: note: the generator says \"Failed to set light profile Other.\" [generator]\n");
}

TEST_F(GraphCheckTest, OnlyTheGivenTool) {
  const std::string graph = R"json({"outputs": [{"name": "color", "type": "float3", "node": "n"}],
 "nodes": [{"name": "n", "fragment": "matte", "inputs": {"albedo": {"value": [1, 1, 1]}}}],
 "postprocess": ["post"]})json";
  EXPECT_EQ(checkGraph(graph), "");
  CheckOptions given = options();
  given.tool = CollapseTool::standard;
  EXPECT_EQ(textOf(Checker(given).checkGraph(Document::fromText(graph, "graph.json"))),
            "graph.json:3:18: warning: post-process fragment `post` does nothing: only the light loop "
            "(`--tool lightloop`) evaluates it [idle-postprocess]\n");
}

TEST_F(GraphCheckTest, LoopIsToldAtTheWireThatClosesIt) {
  EXPECT_EQ(checkGraph(R"json({"outputs": [{"name": "color", "type": "float3", "node": "a"}], "nodes": [
 {"name": "a", "fragment": "matte", "inputs": {"albedo": {"node": "b"}}},
 {"name": "b", "fragment": "matte", "inputs": {"albedo": {"node": "a"}}}]})json"),
            "graph.json:3:58: error: input `albedo` of node `b` closes a loop through node `a` [loop]\n"
            "graph.json:3:58: note: the generator says \"sfgError : circular loop: matte!\" [generator]\n");
}

TEST_F(GraphCheckTest, BrokenDocumentIsOneError) {
  EXPECT_EQ(checkGraph("{\"nodes\": ["),
            "graph.json:1:12: error: expected a value or `]`, found the end of the text [malformed-json]\n");
}

TEST_F(GraphCheckTest, LintsOfTheGraphAreTold) {
  EXPECT_EQ(checkGraph(R"json({"outputs": [{"name": "color", "type": "float3", "node": "n"}], "nodes": [
 {"name": "n", "fragment": "matte", "inputs": {"albedo": {"value": [1, 1, 1]}}},
 {"name": "idle", "fragment": "two"}]})json"),
            "graph.json:3:11: warning: no output of the graph depends on node `idle` [unused-node]\n");
}

TEST_F(GraphCheckTest, EnvironmentIsCompiledWithALitNode) {
  EXPECT_EQ(
      checkEnvironment(R"json({"lights": [{"name": "key", "fragment": "lamp", "profile": "Lamp"}]})json"),
      "");
  EXPECT_EQ(checkEnvironment(R"json({"lights": [], "output": "frame"})json"), "");
  EXPECT_EQ(
      checkEnvironment(R"json({"lights": [{"fragment": "lamp", "profile": "Lamp"}], "output": "frame"})json"),
      "");
}

TEST_F(GraphCheckTest, UnknownProfileOfALight) {
  EXPECT_EQ(
      checkEnvironment(R"json({"lights": [{"name": "key", "fragment": "lamp", "profile": "Lmap"}]})json"),
      "scene.json:1:60: error: the fragment `lamp` has no profile `Lmap`; did you mean `Lamp`? "
      "[light-profile]\n");
}

TEST_F(GraphCheckTest, UnknownFragmentOfALight) {
  EXPECT_EQ(checkEnvironment(R"json({"lights": [{"fragment": "lmap", "profile": "Lamp"}]})json"),
            "scene.json:1:26: error: unknown fragment `lmap`; did you mean `lamp`? [unknown-fragment]\n");
}

TEST_F(GraphCheckTest, UnknownKeyOfAnEnvironmentIsAnError) {
  EXPECT_EQ(checkEnvironment(R"json({"ligths": [{"fragment": "lamp", "profile": "Lamp"}]})json"),
            "scene.json:1:2: error: unknown key `ligths` of an environment; did you mean `lights`? "
            "[unknown-key]\n");
}

TEST_F(GraphCheckTest, NameOfALightThatCannotBeInCode) {
  EXPECT_EQ(checkEnvironment(
                R"json({"lights": [{"name": "key light", "fragment": "lamp", "profile": "Lamp"}]})json"),
            "scene.json:1:22: error: the name of the light `key light` goes into names of the code, which "
            "hold letters, "
            "digits and `_` only [bad-name]\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
