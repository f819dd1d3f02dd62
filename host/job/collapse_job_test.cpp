#include "host/job/collapse_job.h"

#include "host/job/called_expressions.h"
#include "host/job/tint_fixture.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class CollapseJobTest : public TintFixture {};

TEST_F(CollapseJobTest, CollapsesWhatItHasRead) {
  const std::unique_ptr<CollapseJob> made = job(kGraph);
  EXPECT_EQ(made->graph(), nullptr);
  EXPECT_EQ(made->result(), nullptr);
  made->run();
  ASSERT_NE(made->result(), nullptr);
  EXPECT_EQ(made->graph()->getNumFragments(), 1u);
  EXPECT_EQ(made->result()->getProfile(0)->getFunctionName(), L"CollapsedFunction");
}

TEST_F(CollapseJobTest, TakesNamesFromItsOptions) {
  CollapseOptions options;
  options.functionName = "shade";
  options.profileName = "Surface";
  CollapseJob named(load(), Document::fromText(kGraph, "g"), std::nullopt, options);
  named.run();
  EXPECT_EQ(named.result()->getProfile(0)->getFunctionName(), L"shade");
  EXPECT_EQ(named.result()->getProfile(0)->getProfilename(), L"Surface");
}

TEST_F(CollapseJobTest, IsAsBeforeWhenTheGeneratorRefuses) {
  const std::unique_ptr<CollapseJob> made = job(R"({ "outputs": [ { "name": "x", "type": "float" } ] })");
  EXPECT_THROW(made->run(), Exception);
  EXPECT_EQ(made->graph(), nullptr);
  EXPECT_EQ(made->result(), nullptr);
}

TEST_F(CollapseJobTest, GivesConstantsToTheCode) {
  const std::unique_ptr<CollapseJob> made = collapsed(kGraph);
  EXPECT_NE(made->result()->getProfile(0)->getFunctionBody().find(L"0.5"), WString::npos);
  AValue value(TypeID_float);
  EXPECT_TRUE(made->options().getConstValue(value, made->document().node(0).getInput(0)));
  EXPECT_EQ(toShaderText(value), L"0.5");
  EXPECT_FALSE(made->options().getConstValue(value, made->document().node(0).getInput(1)));
  EXPECT_FALSE(made->options().getConstValue(value, nullptr));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
