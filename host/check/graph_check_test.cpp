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
     "implementation": ["void lamp1(out Lamp light)", "{ light.color = float3(1.0, 1.0, 1.0); }"]
    }]
    }
    , "matte" : {
      "profiles" : [
        {
          "language" : ["dx11"],
          "implementation" : [ "void matte1(float3 albedo, out float3 result)", "{ result = albedo; }" ]
        },
        {
          "name" : "Lamp",
          "language" : ["dx11"],
          "includes" : ["lamp.h"],
          "implementation" : [
            "void matte1(float3 albedo, out float3 result)", "{ result = albedo * sfg_currentLight.color; }"
          ]
        }
      ]
    },
                "broken"
        : {
          "profiles" : [
            {
              "language" : ["dx11"],
              "implementation" :
                  [ "void broken1(float3 albedo, out float3 result)", "{ result = albedo; }" ]
            },
            {
              "name" : "Lamp",
              "language" : ["dx11"],
              "includes" : ["lamp.h"],
              "implementation" :
                  [ "void broken1(float3 albedo, out float3 result)",
                    "{ result = sfg_currentLight.colr; }" ]
            }
          ]
        },
          "two"
        : {"language" : ["dx11"], "implementation" : [ "void two1(out float2 result)", "{ result = 2.0; }" ]},
          "frame" : {
            "language" : ["dx11"],
            "implementation" : [ "void frame1(float3 color, out float3 pixel)", "{ pixel = color; }" ]
          },
                    "post" : {
      "language" : ["dx11"],
                   "implementation" : [ "void post1(float3 color, out float3 result)", "{ result = color; }" ]
    }
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
  EXPECT_EQ(checkGraph(R"json({"outputs": [{"name": "color", "type": "float3", "node": "n"}], "nodes": [
 {"name": "t", "fragment": "two"},
 {"name": "n", "fragment": "matte", "inputs": {"albedo": {"node": "t"}}}]})json"),
            "graph.json:3:58: error: output `result` of node `t` is a float2, input `albedo` of node `n` "
            "a float3 "
            "[wire-type]\n");
}

TEST_F(GraphCheckTest, LitGraphIsCompiledUnderALightOfTheLibraries) {
  const std::string told = checkGraph(R"json({"outputs": [{"name": "color", "type": "float3", "node": "n"}],
 "nodes": [{"name": "n", "fragment": "broken", "inputs": {"albedo": {"value": [1, 1, 1]}}}]})json");
  EXPECT_EQ(told.substr(0, told.find('\n')),
            "lib.fraglib:12:97: error: no such field in structure [compile-error]");
}

TEST_F(GraphCheckTest, GivenEnvironmentLightsTheGraph) {
  CheckOptions given = options();
  given.environment =
      Document::fromText(R"json({"lights": [{"fragment": "lamp", "profile": "Other"}]})json", "scene.json");
  EXPECT_EQ(textOf(Checker(given).checkGraph(Document::fromText(kMatte, "graph.json"))), "");
}

TEST_F(GraphCheckTest, OnlyTheGivenTool) {
  const std::string graph = R"json({"outputs": [{"name": "color", "type": "float3", "node": "n"}],
 "nodes": [{"name": "n", "fragment": "matte", "inputs": {"albedo": {"value": [1, 1, 1]}}}], "postprocess": ["post"]})json";
  EXPECT_EQ(checkGraph(graph), "");
  CheckOptions given = options();
  given.tool = CollapseTool::standard;
  EXPECT_EQ(textOf(Checker(given).checkGraph(Document::fromText(graph, "graph.json"))), "");
}

TEST_F(GraphCheckTest, RefusalIsToldAtItsPlace) {
  EXPECT_EQ(checkGraph(R"json({"outputs": [{"name": "color", "type": "float3", "node": "a"}], "nodes": [
 {"name": "a", "fragment": "matte", "inputs": {"albedo": {"node": "b"}}},
 {"name": "b", "fragment": "matte", "inputs": {"albedo": {"node": "a"}}}]})json"),
            "");
}

TEST_F(GraphCheckTest, BrokenDocumentIsOneError) { EXPECT_EQ(checkGraph("{\"nodes\": ["), ""); }

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
      "");
}

TEST_F(GraphCheckTest, UnknownFragmentOfALight) {
  EXPECT_EQ(checkEnvironment(R"json({"lights": [{"fragment": "lmap", "profile": "Lamp"}]})json"), "");
}

TEST_F(GraphCheckTest, UnknownKeyOfAnEnvironmentIsAnError) {
  EXPECT_EQ(checkEnvironment(R"json({"ligths": [{"fragment": "lamp", "profile": "Lamp"}]})json"), "");
}

TEST_F(GraphCheckTest, NameOfALightThatCannotBeInCode) {
  EXPECT_EQ(checkEnvironment(
                R"json({"lights": [{"name": "key light", "fragment": "lamp", "profile": "Lamp"}]})json"),
            "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
