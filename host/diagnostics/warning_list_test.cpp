#include "host/diagnostics/warning_list.h"

#include "host/diagnostics/lit_chain_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class WarningListTest : public LitChainFixture {};

TEST_F(WarningListTest, PutsWarningsWhereTheirSubjectsStand) {
  const auto made = collapsed(chain({"lit"}), CollapseTool::lightLoop, kTwoLamps);
  WarningList warnings(*made);
  warnings.atGraph(Finding::litFeedsLit, made->document().node(0).position(),
                   named(made->document().node(0)) + " is odd");
  warnings.atLight(Finding::unofferedProfile, made->environment().lights()[1], "dim");
  warnings.atFragment(Finding::repeatedStatement, *made->graph()->getFragment(0), "long");
  const std::vector<Diagnostic> told = warnings.take();
  EXPECT_EQ(textOf(told), "graph.json:2:1: node `a` is odd\n"
                          "scene.json:2:3: dim\n" +
                              path("lib.fraglib") + ":4:10: fragment `lit`: long\n");
  for (const Diagnostic& warning : told) EXPECT_EQ(warning.severity, Severity::warning);
  EXPECT_TRUE(warnings.take().empty());
}

TEST_F(WarningListTest, KnowsNoPlaceOfAFragmentThatNoFileHolds) {
  const auto made = collapsed(chain({"pass"}));
  const RefPtr<AShaderFragment> strange = makeRef<AShaderFragment>();
  strange->key() = L"strange";
  WarningList warnings(*made);
  warnings.atFragment(Finding::repeatedStatement, *strange, "odd");
  EXPECT_EQ(textOf(warnings.take()), ": fragment `strange`: odd\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
