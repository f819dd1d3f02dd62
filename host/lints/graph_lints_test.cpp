// What stands in a graph document for nothing, or contradicts the code.

#include "host/lints/graph_lints.h"

#include "host/lints/lint_fixture.h"
#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class GraphLintTest : public LintFixture {
protected:
  GraphLintTest() {
    writeLibrary("{ " + fragment("half", "float x, out float r", "r = x * 0.5;") + ",\n" +
                 fragment("glow", "float2 uv, inout float3 tint, out Glow r", "r.a = uv.x * tint.x;",
                          "\"predefine\": [\"struct Glow { float a; };\"], ") +
                 ",\n\"twice\": { \"language\": [\"dx11\"], \"mode\": \"inline\", \"implementation\": "
                 "[\"{{a}} + {{a}} + {{b}}\"] } }");
  }
  /// A graph of one node with that interface.
  std::string interfaceOf(const std::string& fragment, const std::string& interface) const {
    return lintsOfGraph(
        "{ \"outputs\": [ { \"name\": \"o\", \"type\": \"float\", \"node\": \"n\" } ],\n\"nodes\": [ "
        "{ \"name\": \"n\", \"fragment\": \"" +
        fragment + "\", \"interface\":\n" + interface + " } ] }");
  }
};

using UnusedGraphInput = GraphLintTest;

TEST_F(UnusedGraphInput, IsToldAtItsName) {
  EXPECT_EQ(lintsOfGraph(R"json({ "inputs": [
  { "name": "uv", "type": "float2" }, { "name": "age", "type": "float" } ],
  "outputs": [ { "name": "o", "type": "float", "node": "n" } ],
  "nodes": [ { "name": "n", "fragment": "half", "inputs": { "x": { "graphInput": "age" } } } ] })json"),
            "graph.json:2:13: nothing takes the graph input `uv` [unused-graph-input]\n");
}

TEST_F(UnusedGraphInput, IsToldOfEach) {
  EXPECT_EQ(lintsOfGraph(R"json({ "inputs": [ { "name": "a", "type": "float2" },
 { "name": "b", "type": "float" } ] })json"),
            "graph.json:1:25: nothing takes the graph input `a` [unused-graph-input]\n"
            "graph.json:2:12: nothing takes the graph input `b` [unused-graph-input]\n");
}

TEST_F(UnusedGraphInput, IsNoneThatIsTakenTwice) {
  EXPECT_EQ(lintsOfGraph(R"json({ "inputs": [ { "name": "x", "type": "float" } ],
  "outputs": [ { "name": "o", "type": "float", "node": "n" }, { "name": "p", "type": "float", "node": "m" } ],
  "nodes": [ { "name": "n", "fragment": "half", "inputs": { "x": { "graphInput": "x" } } },
    { "name": "m", "fragment": "half", "inputs": { "x": { "graphInput": "x" } } } ] })json"),
            "");
}

TEST_F(UnusedGraphInput, IsNoneOfBrokenDocuments) {
  for (const char* text :
       {"", "{", "[]", "3", "{ \"inputs\": 3, \"nodes\": {}, \"outputs\": [ null, 1 ] }",
        "{ \"inputs\": [ { \"name\": 3 }, [] , null ], \"nodes\": [ { \"inputs\": [ 1 ] } ] }"}) {
    EXPECT_EQ(lintsOfGraph(text), "") << text;
  }
}

using UnusedNode = GraphLintTest;

TEST_F(UnusedNode, IsToldAtItsName) {
  EXPECT_EQ(lintsOfGraph(R"json({ "outputs": [ { "name": "o", "type": "float", "node": "n" } ],
  "nodes": [ { "name": "n", "fragment": "half" },
    { "name": "spare", "fragment": "half", "inputs": { "x": { "node": "n" } } } ] })json"),
            "graph.json:3:15: no output of the graph depends on node `spare` [unused-node]\n");
}

TEST_F(UnusedNode, IsToldOfAllThatOnlyFeedEachOther) {
  EXPECT_EQ(lintsOfGraph(R"json({ "outputs": [ { "name": "o", "type": "float", "node": "n" } ],
  "nodes": [ { "name": "n", "fragment": "half" },
    { "name": "a", "fragment": "half", "inputs": { "x": { "node": "b" } } },
    { "name": "b", "fragment": "half", "inputs": { "x": { "node": "n" } } } ] })json"),
            "graph.json:3:15: no output of the graph depends on node `a` [unused-node]\n"
            "graph.json:4:15: no output of the graph depends on node `b` [unused-node]\n");
}

TEST_F(UnusedNode, IsNoneThatFeedsAnotherOrALoop) {
  EXPECT_EQ(lintsOfGraph(R"json({ "outputs": [ { "name": "o", "type": "float", "node": "n" } ],
  "nodes": [ { "name": "n", "fragment": "half", "inputs": { "x": { "node": "b" } } },
    { "name": "b", "fragment": "half", "inputs": { "x": { "node": "n", "output": "r" } } } ] })json"),
            "");
}

TEST_F(UnusedNode, IsNoneOfAGraphWithoutOutputs) {
  EXPECT_EQ(lintsOfGraph(R"json({ "nodes": [ { "name": "n", "fragment": "half" } ] })json"), "");
}

TEST_F(UnusedNode, IsNoneWhereAnOutputIsWiredToNothing) {
  EXPECT_EQ(lintsOfGraph(R"json({ "outputs": [ { "name": "o", "type": "float", "node": "gone" } ],
  "nodes": [ { "name": "n", "fragment": "half" } ] })json"),
            "");
  EXPECT_EQ(lintsOfGraph(R"json({ "outputs": [ { "name": "o", "type": "float" } ],
  "nodes": [ { "name": "n", "fragment": "half" } ] })json"),
            "");
}

TEST_F(UnusedNode, IsFoundInLinearTimeWithoutAStack) {
  const auto libraries = load();
  EXPECT_LT(test::costGrowth(
                200,
                [&](std::size_t count) {
                  std::string text =
                      R"({ "outputs": [ { "name": "o", "type": "float", "node": "n0" } ], "nodes": [ )";
                  for (std::size_t i = 0; i < count; ++i) {
                    text += (i == 0 ? "" : ", ") + ("{ \"name\": \"n" + std::to_string(i));
                    text += "\", \"fragment\": \"half\", \"inputs\": { \"x\": { \"node\": \"n";
                    text += std::to_string(i + 1) + "\" } } }";
                  }
                  text += " ] }";
                  EXPECT_TRUE(lintGraph(*libraries, Document::fromText(text, "g")).empty());
                }),
            test::kLinearGrowth);
}

using InterfaceMismatch = GraphLintTest;

TEST_F(InterfaceMismatch, IsToldOfAName) {
  EXPECT_EQ(interfaceOf("half", R"json({ "inputs": [ { "name": "amount", "type": "float" } ],
"outputs": [ { "name": "result", "type": "float" } ] })json"),
            "graph.json:3:25: input 1 of the code of fragment `half` is called `x`, not `amount` "
            "[interface-mismatch]\n"
            "graph.json:4:24: output 1 of the code of fragment `half` is called `r`, not `result` "
            "[interface-mismatch]\n");
}

TEST_F(InterfaceMismatch, IsToldOfPlaceholdersInAnotherOrder) {
  EXPECT_EQ(
      interfaceOf("twice", R"json({ "inputs": [ { "name": "b", "type": "float" },
 { "name": "a", "type": "float" } ], "outputs": [ { "name": "any", "type": "float" } ] })json"),
      "graph.json:3:25: input 1 of the code of fragment `twice` is called `a`, not `b` [interface-mismatch]\n"
      "graph.json:4:12: input 2 of the code of fragment `twice` is called `b`, not `a` "
      "[interface-mismatch]\n");
}

TEST_F(InterfaceMismatch, IsNoneOfTheCodesOwnPorts) {
  EXPECT_EQ(interfaceOf("glow", R"json({ "inputs": [ { "name": "uv", "type": "fvec2" },
 { "name": "tint", "type": "float3" } ], "outputs": [ { "name": "r", "type": "struct", "struct": "Glow" } ] })json"),
            "");
}

TEST_F(InterfaceMismatch, IsNoneOfAnExpressionOfAnyType) {
  EXPECT_EQ(interfaceOf("twice", R"json({ "inputs": [ { "name": "a", "type": "float3" },
 { "name": "b", "type": "float" } ], "outputs": [ { "name": "any", "type": "float3" } ] })json"),
            "");
}

TEST_F(InterfaceMismatch, IsNoneWhereTheNumberOfPortsDiffers) {
  EXPECT_EQ(
      interfaceOf("half", R"json({ "inputs": [ ], "outputs": [ { "name": "r", "type": "float" } ] })json"),
      "");
  EXPECT_EQ(interfaceOf("gone", R"json({ "inputs": [ { "name": "q", "type": "float" } ] })json"), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
