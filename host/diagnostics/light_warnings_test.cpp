#include "host/diagnostics/light_warnings.h"

#include "host/diagnostics/lit_chain_fixture.h"
#include "host/diagnostics/warning_list.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class LightWarningsTest : public LitChainFixture {
protected:
  static std::string warningsOf(const CollapseJob& job) {
    WarningList warnings(job);
    warnOfLights(CollapseFacts(job), warnings);
    return textOf(warnings.take());
  }
};

TEST_F(LightWarningsTest, TellWhatIsBetweenLitNodes) {
  const auto made = collapsed(chain({"lit", "pass", "lit"}), CollapseTool::lightLoop, kTwoLamps);
  EXPECT_EQ(
      warningsOf(*made),
      "graph.json:3:1: node `b` keeps its value of the first light: it is not lit, but stands between lit "
      "nodes\n");
}

TEST_F(LightWarningsTest, TellOfLitNodesThatNoLightReaches) {
  writeLibrary("{" + fragment("lit", "float x, out float result", "result = x * sfg_currentLight.c;") + "}");
  EXPECT_EQ(warningsOf(*collapsed(chain({"lit"}))), "graph.json:2:1: node `a` reads the current light, but "
                                                    "only the light loop (`--tool lightloop`) has one\n");
  EXPECT_EQ(warningsOf(*collapsed(chain({"lit"}), CollapseTool::lightLoop)),
            "graph.json:2:1: node `a` reads the current light, but the environment has no lights\n");
}

TEST_F(LightWarningsTest, TellNothingOfUnlitGraphs) {
  EXPECT_EQ(warningsOf(*collapsed(chain({"pass"}))), "");
  EXPECT_EQ(warningsOf(*collapsed(chain({"pass"}), CollapseTool::lightLoop, kTwoLamps)), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
