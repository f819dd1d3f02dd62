#include "host/diagnostics/chain_warnings.h"

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class ChainWarningsTest : public JobFixture {
protected:
  ChainWarningsTest() {
    writeLibrary("{" + fragment("one", "out float result", "result = 1;") + "," +
                 fragment("half", "float result, out float halved", "halved = result * 0.5;") + "," +
                 fragment("twice", "float halved, out float doubled", "doubled = halved * 2;") + "}");
  }
  std::string warningsOf(const std::string& chains, CollapseTool tool) const {
    const auto made = collapsed(R"({ "outputs": [ { "name": "o", "type": "float", "node": "a" } ],
      "nodes": [ { "name": "a", "fragment": "one" } ])" +
                                    chains + " }",
                                tool);
    WarningList warnings(*made);
    warnOfChains(CollapseFacts(*made), warnings);
    return textOf(warnings.take());
  }
};

TEST_F(ChainWarningsTest, TellThatTheDefaultToolEvaluatesNoPostprocessFragments) {
  const std::string chain = ",\n\"postprocess\": [ \"half\",\n\"twice\" ]";
  EXPECT_EQ(
      warningsOf(chain, CollapseTool::standard),
      "graph.json:3:18: post-process fragment `half` does nothing: only the light loop (`--tool lightloop`) "
      "evaluates it\n"
      "graph.json:4:1: post-process fragment `twice` does nothing: only the light loop (`--tool lightloop`) "
      "evaluates it\n");
}

TEST_F(ChainWarningsTest, TellNothingWhereChainsAreEvaluated) {
  EXPECT_EQ(warningsOf(", \"postprocess\": [ \"half\" ]", CollapseTool::lightLoop), "");
  EXPECT_EQ(warningsOf(", \"preprocess\": [ \"one\" ]", CollapseTool::standard), "");
  EXPECT_EQ(warningsOf("", CollapseTool::standard), "");
}

class EncodingWarningsTest : public JobFixture {
protected:
  EncodingWarningsTest() {
    const auto space = [](const std::string& port, const std::string& name) {
      return "\"" + port + "\": { \"kind\": \"color\", \"space\": \"" + name + "\" }";
    };
    const auto filter = [&](const std::string& name, const std::string& ports) {
      return fragment(name, "float3 color, out float3 result", "result = color;",
                      "\"ports\": { " + ports + " }, ");
    };
    writeLibrary("{" + fragment("red", "out float3 result", "result = float3(1, 0, 0);") + "," +
                 filter("encode", space("color", "linear") + ", " + space("result", "srgb")) + "," +
                 filter("bare", space("result", "srgb")) + "," +
                 filter("tone", space("color", "linear") + ", " + space("result", "linear")) + "," +
                 filter("grain", space("color", "srgb") + ", " + space("result", "srgb")) + "," +
                 filter("decode", space("color", "srgb") + ", " + space("result", "linear")) + "," +
                 filter("pass", "") + "}");
  }
  std::string warningsOf(const std::string& node, const std::string& chain, const std::string& output = {},
                         CollapseTool tool = CollapseTool::lightLoop) const {
    const auto made = collapsed(R"({ "outputs": [ { "name": "o", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": "red" },
    { "name": "b", "fragment": ")" + node +
                                    R"(", "inputs": { "color": { "node": "a" } } } ],
  "postprocess": [)" + chain + "] }",
                                tool, output.empty() ? "{}" : "{ \"output\": \"" + output + "\" }");
    WarningList warnings(*made);
    warnOfChains(CollapseFacts(*made), warnings);
    return textOf(warnings.take());
  }
};

TEST_F(EncodingWarningsTest, TellOfColorsThatAreEncodedTwice) {
  EXPECT_EQ(
      warningsOf("pass", R"("encode", "tone", "pass", "encode")"),
      "graph.json:4:45: post-process fragment `encode` encodes colours as sRGB that post-process fragment "
      "`encode` gives as sRGB already; leave out one of the two\n");
  EXPECT_EQ(
      warningsOf("encode", R"("bare")"),
      "graph.json:4:19: post-process fragment `bare` encodes colours as sRGB that node `b` gives as sRGB "
      "already; leave out one of the two\n");
}

TEST_F(EncodingWarningsTest, TellOfAnOutputFragmentAtTheEnvironment) {
  EXPECT_EQ(warningsOf("pass", R"("encode")", "encode"),
            "scene.json:1:13: output fragment `encode` encodes colours as sRGB that post-process fragment "
            "`encode` gives as sRGB already; leave out one of the two\n");
  EXPECT_EQ(warningsOf("encode", "", "encode", CollapseTool::standard),
            "scene.json:1:13: output fragment `encode` encodes colours as sRGB that node `b` gives as sRGB "
            "already; leave out one of the two\n");
}

TEST_F(EncodingWarningsTest, TellNothingOfColorsThatAreEncodedOnce) {
  EXPECT_EQ(warningsOf("pass", R"("tone", "encode", "grain", "pass")", "grain"), "");
  EXPECT_EQ(warningsOf("encode", R"("decode", "tone", "encode")"), "");
  EXPECT_EQ(warningsOf("tone", "", "encode"), "");
  EXPECT_EQ(warningsOf("encode", R"("pass")", "pass"), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
