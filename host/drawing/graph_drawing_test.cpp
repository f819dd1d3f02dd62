#include "host/drawing/graph_drawing.h"

#include "host/diagnostics/lit_chain_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Kind = DrawnNode::Kind;

std::string textOf(const std::vector<DrawnPort>& ports) {
  std::string text;
  for (const DrawnPort& port : ports)
    text += " " + port.name + ":" + port.type + (port.value.empty() ? "" : ":" + port.value);
  return text;
}

std::string textOf(const GraphDrawing& drawing) {
  const char* const kinds[] = {"node", "inputs", "outputs", "uniforms", "light", "pre", "post", "output"};
  std::string text;
  for (const DrawnNode& node : drawing.nodes) {
    text += std::string(kinds[static_cast<std::size_t>(node.kind)]) + " " + node.name + " " + node.fragment +
            (node.isLit ? " lit" : "") + (node.isBelowLit ? " below" : "") + (node.isUnused ? " unused" : "");
    for (const std::string& profile : node.profiles) text += " [" + profile + "]";
    text += " |" + textOf(node.inputs) + " |" + textOf(node.outputs) + "\n";
  }
  for (const DrawnWire& wire : drawing.wires) {
    text += std::to_string(wire.from) + "." + std::to_string(wire.output) + " -> " + std::to_string(wire.to) +
            "." + std::to_string(wire.input) + "\n";
  }
  return text;
}

class GraphDrawingTest : public LitChainFixture {};

TEST_F(GraphDrawingTest, ShowsNodesWithTheirValuesAndWires) {
  writeLibrary("{" +
               fragment("mix", "float2 a, float b, out float2 low, out float high",
                        "low = a * b * gain; high = b;",
                        R"("uniforms": [ { "name": "gain", "type": "float", "value": 2 } ],)") +
               "," + fragment("spare", "float x, out float y", "y = x;") + "}");
  const auto made = collapsed(R"({ "inputs": [ { "name": "uv", "type": "float2" } ],
  "outputs": [ { "name": "o", "type": "float2", "node": "m" }, { "name": "p", "type": "float2", "node": "m" } ],
  "uniforms": [ { "name": "fade", "type": "float", "value": 0.25 } ],
  "nodes": [ { "name": "m", "fragment": "mix", "inputs": { "a": { "graphInput": "uv" }, "b": { "constant": 4 } } },
    { "name": "s", "fragment": "spare", "inputs": { "x": { "node": "m", "output": "high" } } } ] })");
  EXPECT_EQ(
      textOf(drawGraph(*made)),
      "node m mix [default, level 100] | a:float2 b:float:= 4.0 gain:float:2.0 | low:float2 high:float\n"
      "node s spare unused | x:float | y:float\n"
      "inputs inputs  | | uv:float2\n"
      "outputs outputs  | o:float2 p:float2 |\n"
      "uniforms uniforms  | fade:float:0.25 |\n"
      "2.0 -> 0.0\n"
      "0.1 -> 1.0\n"
      "0.0 -> 3.0\n"
      "0.0 -> 3.1\n");
}

TEST_F(GraphDrawingTest, TellsLitNodesAndTheProfileThatEachLightTakes) {
  const auto made = collapsed(chain({"pass", "lit", "pass"}), CollapseTool::lightLoop, kTwoLamps);
  EXPECT_EQ(textOf(drawGraph(*made)), "node a pass [default, level 100] | x:float:0.0 | result:float\n"
                                      "node b lit lit [Lamp, level 100] | x:float | result:float\n"
                                      "node c pass below [default, level 100] | x:float | result:float\n"
                                      "outputs outputs  | o:float |\n"
                                      "light key lamp [Lamp, level 100] | | light:Lamp\n"
                                      "light fill lamp [Lamp, level 100] | | light:Lamp\n"
                                      "0.0 -> 1.0\n"
                                      "1.0 -> 2.0\n"
                                      "2.0 -> 3.0\n");
}

TEST_F(GraphDrawingTest, ShowsChainsInTheOrderInWhichTheyRun) {
  writeLibrary("{" + fragment("one", "out float result", "result = 1;") + "," +
               fragment("half", "float result, out float halved", "halved = result * by;",
                        R"("uniforms": [ { "name": "by", "type": "float", "value": 0.5 } ],)") +
               "," + fragment("twice", "float halved, out float doubled", "doubled = halved * 2;") + "}");
  const auto made = collapsed(R"({ "outputs": [ { "name": "result", "type": "float", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "one" } ], "postprocess": [ "half", "twice" ] })",
                              CollapseTool::lightLoop);
  EXPECT_EQ(textOf(drawGraph(*made)),
            "node a one [default, level 100] | | result:float\n"
            "outputs outputs  | result:float |\n"
            "post half half [default, level 100] | result:float by:float:0.5 | halved:float\n"
            "post twice twice [default, level 100] | halved:float | doubled:float\n"
            "0.0 -> 1.0\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
