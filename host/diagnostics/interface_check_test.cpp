#include "host/diagnostics/interface_check.h"

#include "host/diagnostics/wire_types.h"
#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class InterfaceCheckTest : public JobFixture {
protected:
  InterfaceCheckTest() {
    writeLibrary(
        "{" + fragment("tint", "float3 color, float amount, out float3 result", "result = color;") +
        R"(, "twice": { "mode": "inline", "language": ["dx11"], "implementation": ["{{x}} * 2"] } })");
  }
  /// What is told of one node with these ports.
  std::string told(const std::string& name, const std::string& inputs, const std::string& outputs) const {
    const auto made =
        job("{ \"nodes\": [ { \"name\": \"a\", \"fragment\": \"" + name +
            "\", \"interface\": {\n\"inputs\": [" + inputs + "],\n\"outputs\": [" + outputs + "] } } ] }");
    std::vector<Diagnostic> found;
    for (const MismatchedPort& mismatched : findMismatchedPorts(*made, Severity::error))
      found.push_back(mismatched.told);
    return textOf(found);
  }
};

std::string port(const std::string& name, const std::string& type) {
  return R"({ "name": ")" + name + R"(", "type": ")" + type + "\" }";
}

TEST_F(InterfaceCheckTest, TakesWhatFits) {
  EXPECT_EQ(told("tint", port("color", "float") + "," + port("amount", "int"), port("r", "float3")), "");
  EXPECT_EQ(told("twice", port("x", "float4x4"), port("r", "int")), "");
}

TEST_F(InterfaceCheckTest, TellsInputsThatDoNotFit) {
  EXPECT_EQ(told("tint", port("tone", "float2") + "," + port("amount", "float"), port("result", "float3")),
            "graph.json:2:38: input `tone` of node `a` is of type `float2` here, but of type `float3`, as "
            "`color` in the code of fragment `tint`\n");
}

TEST_F(InterfaceCheckTest, TellsOutputsOfAnyOtherType) {
  EXPECT_EQ(
      told("tint", port("color", "float3") + "," + port("amount", "float"), port("result", "float4")),
      "graph.json:3:41: output `result` of node `a` is of type `float4` here, but of type `float3` in the "
      "code of fragment `tint`\n");
}

TEST_F(InterfaceCheckTest, TakesOutputsOfTheProfilesForOtherLights) {
  writeLibrary(R"json({ "lamp": { "profiles": [
    { "language": ["dx11"], "implementation": ["void lamp(out float3 light)", "{", "light = 1;", "}"] },
    { "name": "Ray", "language": ["dx11"], "implementation": ["void lamp(out Ray light)", "{", "}"] } ] } })json");
  EXPECT_EQ(told("lamp", "", R"({ "name": "light", "type": "struct", "struct": "Ray" })"), "");
  EXPECT_EQ(told("lamp", "", port("light", "float2")), "graph.json:3:40: output `light` of node `a` is of "
                                                       "type `float2` here, but of type `float3` in the code "
                                                       "of fragment `lamp`\n");
}

TEST_F(InterfaceCheckTest, TakesInputsOfLaterProfiles) {
  writeLibrary(R"json({ "lamp": { "profiles": [
    { "language": ["dx11"], "implementation": ["void lamp(float3 from, float3 to, out float3 light)", "{", "light = from;", "}"] },
    { "name": "Ray", "language": ["dx11"], "implementation": ["void lamp(Ray from, float3 to, out float3 light)", "{", "}"] } ] } })json");
  const auto structPort = [](const std::string& name, const std::string& type) {
    return R"({ "name": ")" + name + R"(", "type": "struct", "struct": ")" + type + "\" }";
  };
  const std::string to = "," + port("to", "float3");
  const std::string result = port("light", "float3");
  EXPECT_EQ(told("lamp", structPort("from", "Ray") + to, result), "");
  EXPECT_EQ(
      told("lamp", structPort("from", "Beam") + to, result),
      "graph.json:2:38: input `from` of node `a` is of type `Beam` here, but of type `float3` in the code "
      "of fragment `lamp`\n");
  EXPECT_EQ(
      told("lamp", structPort("start", "Ray") + to, result),
      "graph.json:2:39: input `start` of node `a` is of type `Ray` here, but of type `float3`, as `from` "
      "in the code of fragment `lamp`\n");
  // Not at another place.
  EXPECT_EQ(
      told("lamp", port("start", "float3") + "," + structPort("from", "Ray"), result),
      "graph.json:2:76: input `from` of node `a` is of type `Ray` here, but of type `float3`, as `to` in "
      "the code of fragment `lamp`\n");
}

TEST_F(InterfaceCheckTest, LeavesTheNumberOfPortsToTheCollapse) {
  EXPECT_EQ(told("tint", port("color", "float3"), port("result", "float3") + "," + port("s", "float")), "");
}

TEST_F(InterfaceCheckTest, TellsNoWireToSuchAPort) {
  const auto made = job(R"({ "inputs": [ { "name": "i", "type": "float3" } ],
    "nodes": [ { "name": "a", "fragment": "tint", "interface": {
      "inputs": [ { "name": "color", "type": "float2" }, { "name": "amount", "type": "float" } ] },
      "inputs": { "color": { "graphInput": "i" }, "amount": { "graphInput": "i" } } } ] })");
  EXPECT_EQ(
      textOf(findTypeErrors(*made, Severity::error)),
      "graph.json:3:46: input `color` of node `a` is of type `float2` here, but of type `float3` in the code "
      "of fragment `tint`\n"
      "graph.json:4:61: graph input `i` of type `float3` does not fit input `amount` of node `a` of type "
      "`float`\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
