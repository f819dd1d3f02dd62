#include "sfg/host/document.h"

#include <gtest/gtest.h>

#include <limits>

#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(DocumentTest, WritesAGraphAsTheCommandReadsIt) {
  Graph graph;
  graph.inputs = {{"uv", "float2", "", {}, false, "TEXCOORD"}};
  graph.outputs = {{{"color", "struct", "Surface", {}, false, ""}, {"shade", "result"}}};
  graph.uniforms = {{"gain", "float", "", 0.1, true, ""}, {"on", "bool", "", true, false, ""}};
  graph.nodes = {{"shade",
                  "phong",
                  {{"uv", GraphInput{"uv"}},
                   {"albedo", NodeOutput{"noise", ""}},
                   {"scale", Value(4.0)},
                   {"axis", Constant{std::vector<double>{1, -0.5}}}},
                  NodeInterface{{{"uv", "float2", "", {}, false, ""}}, {}}}};
  graph.preprocess = {"before"};
  EXPECT_EQ(toJson(graph), R"({
  "inputs": [
    {
      "name": "uv",
      "type": "float2",
      "semantic": "TEXCOORD"
    }
  ],
  "outputs": [
    {
      "name": "color",
      "type": "struct",
      "struct": "Surface",
      "node": "shade",
      "output": "result"
    }
  ],
  "uniforms": [
    {
      "name": "gain",
      "type": "float",
      "value": 0.1,
      "constant": true
    },
    {
      "name": "on",
      "type": "bool",
      "value": true
    }
  ],
  "nodes": [
    {
      "name": "shade",
      "fragment": "phong",
      "interface": {
        "inputs": [
          {
            "name": "uv",
            "type": "float2"
          }
        ],
        "outputs": []
      },
      "inputs": {
        "uv": {
          "graphInput": "uv"
        },
        "albedo": {
          "node": "noise"
        },
        "scale": {
          "value": 4.0
        },
        "axis": {
          "constant": [
            1.0,
            -0.5
          ]
        }
      }
    }
  ],
  "preprocess": [
    "before"
  ],
  "postprocess": []
}
)");
}

TEST(DocumentTest, WritesAnEnvironmentWithItsDefaults) {
  const Environment environment{{{"", "pointLight", ""}, {"key", "spotLight", "sfg_Light"}}, "tone"};
  EXPECT_EQ(toJson(environment), R"({
  "lights": [
    {
      "fragment": "pointLight"
    },
    {
      "name": "key",
      "fragment": "spotLight",
      "profile": "sfg_Light"
    }
  ],
  "output": "tone"
}
)");
  EXPECT_EQ(toJson(Environment()), "{\n  \"lights\": []\n}\n");
}

std::string refusal(const NodeInput& first, const NodeInput& second) {
  Graph graph;
  graph.nodes = {{"n", "f", {first, second}, std::nullopt}};
  try {
    toJson(graph);
  } catch (const InputError& error) {
    return error.what();
  }
  return "(nothing thrown)";
}

TEST(DocumentTest, RefusesWhatJsonCannotHold) {
  const NodeInput good{"a", Value(1.0)};
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(refusal(good, {"b", Value(infinity)}), "a value of `n.b` is not a finite number");
  EXPECT_EQ(refusal(good, {"b", Constant{std::vector<double>{0, infinity}}}),
            "a value of `n.b` is not a finite number");
  EXPECT_EQ(refusal(good, {"a", Value(2.0)}), "input `a` of node `n` is given twice");
}

TEST(DocumentTest, ReplacesIllFormedText) {
  EXPECT_EQ(toJson(Environment{{}, "a\xff"}), "{\n  \"lights\": [],\n  \"output\": \"a\xEF\xBF\xBD\"\n}\n");
}

TEST(DocumentTest, KnowsWhetherItIsAFileAndHasPlaces) {
  const Document file = Document::fromFile("some/graph.json");
  EXPECT_EQ(file.name(), "some/graph.json");
  EXPECT_TRUE(file.isFile());
  EXPECT_TRUE(file.hasPlaces());
  const Document text = Document::fromText("{}", "editor");
  EXPECT_EQ(text.name(), "editor");
  EXPECT_FALSE(text.isFile());
  EXPECT_EQ(text.text(), "{}");
  EXPECT_TRUE(text.hasPlaces());
  EXPECT_FALSE(Document::from(Environment()).hasPlaces());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
