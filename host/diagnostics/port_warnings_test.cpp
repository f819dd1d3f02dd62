#include "host/diagnostics/port_warnings.h"

#include "host/diagnostics/lit_chain_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class PortWarningsTest : public LitChainFixture {};

TEST_F(PortWarningsTest, TellInoutInputsThatNothingIsWiredTo) {
  const auto made = collapsed(chain({"change"}));
  WarningList warnings(*made);
  warnOfInoutPorts(CollapseFacts(*made), warnings);
  EXPECT_EQ(
      textOf(warnings.take()),
      "graph.json:2:1: input `x` of node `a` is `inout`, but nothing is wired to it that could be written\n");
}

TEST_F(PortWarningsTest, TellEachGraphInputOfALightLoopOnce) {
  const std::string graph = R"({ "inputs": [ { "name": "i", "type": "float" } ],
    "outputs": [ { "name": "o", "type": "float", "node": "b" } ],
    "nodes": [ { "name": "a", "fragment": "pass", "inputs": { "x": { "graphInput": "i" } } },
               { "name": "b", "fragment": "pass", "inputs": { "x": { "graphInput": "i" } } } ] })";
  for (const CollapseTool tool : {CollapseTool::standard, CollapseTool::lightLoop}) {
    const auto made = collapsed(graph, tool);
    WarningList warnings(*made);
    warnOfGraphInputs(CollapseFacts(*made), warnings);
    EXPECT_EQ(warnings.take().size(), tool == CollapseTool::lightLoop ? 1u : 0u);
  }
}

class UnconnectedInputTest : public JobFixture {
protected:
  std::string told(const std::string& ports, const std::string& inputs,
                   const std::string& body = "result = x;",
                   const std::string& interface = std::string()) const {
    writeLibrary("{" + fragment("pass", "float x, float y, out float result", body, ports) + "}");
    const auto made = collapsed(R"({ "outputs": [ { "name": "o", "type": "float", "node": "a" } ], "nodes": [
{ "name": "a", "fragment": "pass", )" +
                                interface + "\"inputs\": {" + inputs + "} } ] }");
    WarningList warnings(*made);
    warnOfUnconnectedInputs(CollapseFacts(*made), warnings);
    return textOf(warnings.take());
  }
};

constexpr const char* kUnconnectedY = "graph.json:2:1: input `y` of node `a` is wired to nothing and has no "
                                      "value, so it is 0: wire it, give it a "
                                      "`value` here, or one in the `ports` of fragment `pass`\n";

TEST_F(UnconnectedInputTest, TellsInputsThatNothingGivesAValue) {
  EXPECT_EQ(told("", R"("x": { "value": 0 })"), kUnconnectedY);
  EXPECT_EQ(told(R"("ports": { "x": { "value": 0 }, "y": "a text" }, )", ""), kUnconnectedY);
  EXPECT_EQ(told("", R"("x": { "value": 0 })", "result = x;", R"("interface": {
    "inputs": [ { "name": "x", "type": "float" }, { "name": "y", "type": "float" } ],
    "outputs": [ { "name": "result", "type": "float" } ] }, )"),
            kUnconnectedY);
}

TEST_F(UnconnectedInputTest, TakesAnyValue) {
  EXPECT_EQ(told(R"("ports": { "x": { "value": 0 } }, )", R"("y": { "constant": 0 })"), "");
  EXPECT_EQ(told("", "", "result = x;", R"("interface": {
    "inputs": [ { "name": "x", "type": "float", "value": 0 }, { "name": "y", "type": "float", "value": 1 } ],
    "outputs": [ { "name": "result", "type": "float" } ] }, )"),
            "");
}

TEST_F(UnconnectedInputTest, TakesInputsWhoseCodeAsks) {
  EXPECT_EQ(told("", R"("x": { "value": 0 })", "result = sfg_isConnected( y ) ? y : x;"), "");
}

TEST_F(UnconnectedInputTest, LeavesTexturesToTheHost) {
  writeLibrary("{" + fragment("look", "sfg_sampler2D image, out float result", "result = 1;") + "}");
  const auto made = collapsed(R"({ "outputs": [ { "name": "o", "type": "float", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "look" } ] })");
  WarningList warnings(*made);
  warnOfUnconnectedInputs(CollapseFacts(*made), warnings);
  EXPECT_EQ(textOf(warnings.take()), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
