#include "host/diagnostics/collapse_facts.h"

#include "host/diagnostics/lit_chain_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class CollapseFactsTest : public LitChainFixture {};

TEST_F(CollapseFactsTest, TellLitNodesAndTheirNeighbours) {
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

TEST_F(CollapseFactsTest, CountUsesAndInoutInputs) {
  const auto made = collapsed(chain({"change", "change", "pass"}));
  const CollapseFacts facts(*made);
  EXPECT_FALSE(facts.isLightLoop());
  EXPECT_EQ(facts.uses().at(L"change").count, 2u);
  EXPECT_EQ(facts.uses().at(L"change").profiles.size(), 1u);
  EXPECT_EQ(facts.fragmentOf(0).inoutInputs, std::vector<std::size_t>{0});
  EXPECT_EQ(&facts.fragmentOf(0), &facts.fragmentOf(1));
  EXPECT_TRUE(facts.fragmentOf(2).inoutInputs.empty());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
