#include "host/job/shader_options.h"

#include "host/job/tint_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class ShaderOptionsTest : public TintFixture {};

TEST_F(ShaderOptionsTest, AnswerConstantsOnly) {
  const auto made = job(kGraph);
  AValue value(TypeID_float);
  EXPECT_TRUE(made->options().getConstValue(value, made->document().node(0).getInput(0)));
  EXPECT_EQ(toShaderText(value), L"0.5");
  EXPECT_FALSE(made->options().getConstValue(value, made->document().node(0).getInput(1)));
  EXPECT_FALSE(made->options().getConstValue(value, nullptr));
}

TEST_F(ShaderOptionsTest, TellTheProfileOfEachLight) {
  const auto made =
      job(kGraph, CollapseTool::lightLoop,
          R"({ "lights": [ { "fragment": "tint" }, { "fragment": "tint", "profile": "Sun" } ] })");
  const ShadingEnvironment& environment = made->environment();
  const ShaderOptions options(UString(L"dx11"), 30.0f, 40.0f, &environment);
  EXPECT_EQ(options.getLightProfile(environment.getLight(0))->getProfilename(), L"default");
  EXPECT_EQ(options.getLightProfile(environment.getLight(1))->getProfilename(), L"Sun");
  EXPECT_EQ(options.getLightProfile(nullptr), nullptr);
  EXPECT_EQ(options.getLanguage(), UString(L"dx11"));
  EXPECT_EQ(options.getSurfaceLOD(), 30.0f);
  EXPECT_EQ(options.getLightLOD(), 40.0f);
  const ShaderOptions dark(UString(L"dx11"), 30.0f, 40.0f, nullptr);
  EXPECT_EQ(dark.getLightProfile(environment.getLight(0)), nullptr);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
