#include "host/diagnostics/warnings.h"

#include "host/diagnostics/collapse_facts.h"
#include "host/diagnostics/light_warnings.h"
#include "host/diagnostics/port_warnings.h"
#include "host/diagnostics/warning_list.h"
#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr const char* kLit = R"json(
  "lamp": { "name": "Lamp", "language": ["dx11"], "predefine": ["struct Lamp { float c; };"], "implementation": [
    "void lamp(out Lamp light)", "{", "light.c = 1;", "}" ] },
  "lit": { "profiles": [
    { "name": "default", "language": ["dx11"], "implementation": [
      "void lit(float x, out float result)", "{", "result = x;", "}" ] },
    { "name": "Lamp", "language": ["dx11"], "implementation": [
      "void lit(float x, out float result)", "{", "result = x * sfg_currentLight.c;", "}" ] } ] },)json";
constexpr const char* kTwoLamps = R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" },
  { "name": "fill", "fragment": "lamp", "profile": "Lamp" } ] })";

class WarningsTest : public JobFixture {
protected:
  WarningsTest() {
    writeLibrary(
        "{" + std::string(kLit) + fragment("pass", "float x, out float result", "result = x;") + "," +
        fragment("change", "inout float x, out float result", "result = x;") + "," +
        fragment("helped", "float x, out float result", "result = x;", "\"predefine\": [\"int n = 3;\"], ") +
        "}");
  }
};

/// A chain of nodes `a`, `b`, .. of these fragments, each fed by the one before; the last is the output.
std::string chain(const std::vector<std::string>& fragments) {
  std::string nodes;
  for (std::size_t i = 0; i < fragments.size(); ++i) {
    const std::string name(1, static_cast<char>('a' + i));
    const std::string source(1, static_cast<char>('a' + i - 1));
    nodes += std::string(i == 0 ? "" : ",") + "\n{ \"name\": \"" + name + "\", \"fragment\": \"" +
             fragments[i] + "\", \"inputs\": { " +
             (i == 0 ? "" : "\"x\": { \"node\": \"" + source + "\" } ") + "} }";
  }
  const std::string last(1, static_cast<char>('a' + fragments.size() - 1));
  return R"({ "outputs": [ { "name": "o", "type": "float", "node": ")" + last + "\" } ], \"nodes\": [" +
         nodes + "] }";
}

TEST_F(WarningsTest, FactsTellLitNodesAndTheirNeighbours) {
  const auto made = collapsed(chain({"lit", "pass", "lit", "pass"}), CollapseTool::lightLoop, kTwoLamps);
  const CollapseFacts facts(*made);
  std::string table;
  for (std::size_t i = 0; i < facts.nodeCount(); ++i) {
    table += facts.isLit(i) ? 'L' : '-';
    table += facts.isBelowLit(i) ? 'b' : '-';
    table += facts.feedsLit(i) ? 'f' : '-';
    table += facts.isAccumulated(i) ? "a " : "- ";
  }
  EXPECT_EQ(table, "L-f- -bf- Lb-a -b-- ");
  EXPECT_TRUE(facts.isLightLoop());
  EXPECT_EQ(facts.reached().size(), 2u);
  EXPECT_EQ(facts.uses().at(L"pass").count, 2u);
  EXPECT_EQ(facts.uses().at(L"lamp").count, 2u);
}

TEST_F(WarningsTest, LightsAloneTellWhatIsBetweenLitNodes) {
  const auto made = collapsed(chain({"lit", "pass", "lit"}), CollapseTool::lightLoop, kTwoLamps);
  WarningList warnings(*made);
  warnOfLights(CollapseFacts(*made), warnings);
  EXPECT_EQ(
      textOf(warnings.take()),
      "graph.json:3:1: node `b` keeps its value of the first light: it is not lit, but stands between lit "
      "nodes\n");
}

TEST_F(WarningsTest, PortsAloneTellInoutInputsThatNothingIsWiredTo) {
  const auto made = collapsed(chain({"change"}));
  WarningList warnings(*made);
  warnOfInoutPorts(CollapseFacts(*made), warnings);
  EXPECT_EQ(
      textOf(warnings.take()),
      "graph.json:2:1: input `x` of node `a` is `inout`, but nothing is wired to it that could be written\n");
}

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
