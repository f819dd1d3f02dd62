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

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
