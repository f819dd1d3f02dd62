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
  EXPECT_EQ(toJson(Environment{{}, "", "sky"}), "{\n  \"lights\": [],\n  \"image\": \"sky\"\n}\n");
  EXPECT_EQ(toJson(Environment()), "{\n  \"lights\": []\n}\n");
}

TEST(DocumentTest, WritesAnEnvironmentAsItIsRead) {
  const Environment environment{
      {{"", "pointLight", ""}, {"key", "spotLight", "sfg_Light"}}, "tone", "stadium.hdr"};
  const Environment read = readEnvironment(Document::from(environment));
  EXPECT_EQ(toJson(read), toJson(environment));
  ASSERT_EQ(read.lights.size(), 2u);
  EXPECT_EQ(read.lights[0].name, "");
  EXPECT_EQ(read.lights[0].fragment, "pointLight");
  EXPECT_EQ(read.lights[0].profile, "");
  EXPECT_EQ(read.lights[1].name, "key");
  EXPECT_EQ(read.lights[1].profile, "sfg_Light");
  EXPECT_EQ(read.output, "tone");
  EXPECT_EQ(read.image, "stadium.hdr");
  EXPECT_EQ(readEnvironment(Document::fromText("{}", "scene")).image, "");
}

std::string refusal(const std::string& environment) {
  try {
    readEnvironment(Document::fromText(environment, "scene"));
  } catch (const InputError& error) {
    return error.place() + ": " + error.what();
  }
  return "(nothing thrown)";
}

TEST(DocumentTest, RefusesAMalformedEnvironmentAtItsPlace) {
  EXPECT_EQ(refusal("{ \"lights\": [],\n  \"image\": 5 }"),
            "scene:2:12: `image` must be a string that is not empty");
  EXPECT_EQ(refusal("{ \"lights\": [],\n  \"image\": \"\" }"),
            "scene:2:12: `image` must be a string that is not empty");
  EXPECT_EQ(refusal("{ \"lights\": [\n{ \"name\": \"key\" } ] }"), "scene:2:1: `fragment` is missing");
  EXPECT_EQ(refusal("{ \"nodes\": [], \"outputs\": [] }"), "scene:1:1: this is a graph, not an environment");
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
