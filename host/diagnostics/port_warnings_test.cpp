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

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
