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

TEST(ModuleNames, OfFunctionsCanBeDropped) {
  CompileOptions options;
  options.optimization = Optimization::none;
  const std::vector<std::uint32_t> module =
      compileToSpirv("cbuffer sfg_Uniforms : register(b0) { float4 tint; };\n"
                     "float4 shade(float4 light) { float4 sum = light * tint; return sum; }\n"
                     "struct In { float4 a : A; };\nstruct Out { float4 color : SV_Target0; };\n"
                     "Out main(In sfg_in) { Out o; o.color = shade(sfg_in.a); return o; }",
                     "main", ShaderStage::pixel, options);
  const auto bytes = [](const std::vector<std::uint32_t>& words) {
    return translate(words, ShaderStage::pixel, ShaderTarget::spirv);
  };
  const std::vector<std::uint32_t> dropped = dropLocalNames(module);
  for (const char* name : {"shade", "light", "sum"}) {
    EXPECT_NE(bytes(module).find(name), std::string::npos) << name;
    EXPECT_EQ(bytes(dropped).find(name), std::string::npos) << name;
  }
  for (const char* name : {"sfg_Uniforms", "sfg_uniforms", "tint", "sfg_in_a", "sfg_out_color"}) {
    EXPECT_NE(bytes(dropped).find(name), std::string::npos) << name;
  }
  EXPECT_EQ(dropLocalNames(dropped), dropped);
}

TEST(ModuleNames, OfWordsThatAreNoModuleAreNone) {
  EXPECT_TRUE(nameModuleInterface({}).empty());
  EXPECT_TRUE(dropLocalNames({}).empty());
  EXPECT_EQ(dropLocalNames({1, 2, 3, 4, 5, 0x00010005u, 0x0001001eu, 0x0001003bu}).size(), 8u);
  EXPECT_EQ(nameModuleInterface({1, 2, 3}).size(), 3u);
  // A length of nothing, and one beyond the end.
  EXPECT_EQ(nameModuleInterface({1, 2, 3, 4, 5, 0}).size(), 5u);
  EXPECT_EQ(nameModuleInterface({1, 2, 3, 4, 5, 0x00090005u, 1}).size(), 5u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
