#include "host/shader/module_names.h"

#include <gtest/gtest.h>

#include "host/modules/shader_compiler.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(ModuleNames, StayWhenGivenAgain) {
  const std::vector<std::uint32_t> module =
      compileToSpirv("cbuffer sfg_Uniforms : register(b0) { float4 tint; };\n"
                     "struct In { float4 a : A; };\nstruct Out { float4 color : SV_Target0; };\n"
                     "Out main(In sfg_in) { Out o; o.color = sfg_in.a * tint; return o; }",
                     "main", ShaderStage::pixel);
  EXPECT_EQ(nameModuleInterface(module), module);
  const std::string text = translate(module, ShaderStage::pixel, ShaderTarget::glsl);
  EXPECT_NE(text.find("sfg_out_color = sfg_in_a * sfg_uniforms.tint;"), std::string::npos) << text;
}

TEST(ModuleNames, OfWordsThatAreNoModuleAreNone) {
  EXPECT_TRUE(nameModuleInterface({}).empty());
  EXPECT_EQ(nameModuleInterface({1, 2, 3}).size(), 3u);
  // A length of nothing, and one beyond the end.
  EXPECT_EQ(nameModuleInterface({1, 2, 3, 4, 5, 0}).size(), 5u);
  EXPECT_EQ(nameModuleInterface({1, 2, 3, 4, 5, 0x00090005u, 1}).size(), 5u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
