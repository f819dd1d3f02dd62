#include "host/diagnostics/warnings.h"

#include "host/diagnostics/lit_chain_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class WarningsTest : public LitChainFixture {};

TEST_F(WarningsTest, GraphInputsOfALightLoopAreToldOfAResultThatIsNotAssembled) {
  const std::string graph = R"({ "inputs": [ { "name": "i", "type": "float" } ],
    "outputs": [ { "name": "o", "type": "float", "node": "a" } ],
    "nodes": [ { "name": "a", "fragment": "lit", "inputs": { "x": { "graphInput": "i" } } } ] })";
  const auto made = collapsed(graph, CollapseTool::lightLoop, kTwoLamps);
  EXPECT_EQ(textOf(findWarnings(*made, true)), "");
  EXPECT_EQ(
      textOf(findWarnings(*made, false)),
      "graph.json:3:67: the light-loop function has no parameter for the graph input `i`; only the complete "
      "shader (`--format shader`) declares it\n");
}

TEST_F(WarningsTest, EachIsAWarningAtItsPlaceInTheLibrary) {
  const auto made = collapsed(chain({"helped", "helped"}));
  const std::vector<Diagnostic> warnings = findWarnings(*made, true);
  for (const Diagnostic& warning : warnings) {
    EXPECT_EQ(warning.severity, Severity::warning);
    EXPECT_EQ(warning.file, path("lib.fraglib"));
    EXPECT_EQ(warning.line, 8u);
  }
  EXPECT_EQ(warnings.size(), 1u) << textOf(warnings);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
