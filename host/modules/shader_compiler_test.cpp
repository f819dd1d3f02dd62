#include "host/modules/shader_compiler.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr const char* kShader =
    "cbuffer Values : register(b2) { float gain; };\n"
    "Texture2D image : register(t3);\n"
    "SamplerState taps : register(s1);\n"
    "float4 main(float2 uv : UV) : SV_Target { return image.Sample(taps, uv) * gain; }\n";

TEST(ShaderCompilerTest, GivesAModuleAndItsTranslations) {
  const std::vector<std::uint32_t> words = compileToSpirv(kShader, "main", ShaderStage::pixel);
  ASSERT_FALSE(words.empty());
  EXPECT_EQ(words[0], 0x07230203u);
  const std::string bytes = translate(words, ShaderStage::pixel, ShaderTarget::spirv);
  EXPECT_EQ(bytes.size(), 4 * words.size());
  EXPECT_EQ(bytes.substr(0, 4), std::string("\x03\x02\x23\x07", 4));
  EXPECT_EQ(translate(words, ShaderStage::pixel, ShaderTarget::glsl).substr(0, 12), "#version 450");
  EXPECT_EQ(translate(words, ShaderStage::pixel, ShaderTarget::essl).substr(0, 15), "#version 320 es");
  EXPECT_EQ(compileShader(kShader, "main", ShaderStage::pixel, ShaderTarget::msl),
            translate(words, ShaderStage::pixel, ShaderTarget::msl));
}

TEST(ShaderCompilerTest, NamesTheLinesOfATextItRefuses) {
  try {
    compileToSpirv("float a;\nfloat4 main() : SV_Target { return colour; }\n", "main", ShaderStage::pixel);
    FAIL();
  } catch (const CompileError& error) {
    EXPECT_STREQ(error.what(), "the generated shader does not compile");
    EXPECT_TRUE(error.inAssembledText());
    ASSERT_FALSE(error.messages().empty());
    EXPECT_EQ(error.messages()[0].line, 2u);
    EXPECT_EQ(error.messages()[0].text.substr(0, 8), "'colour'");
  }
}

TEST(ShaderCompilerTest, RefusesWhatIsNoModule) {
  EXPECT_THROW(translate({1, 2, 3}, ShaderStage::pixel, ShaderTarget::glsl), CompileError);
  EXPECT_THROW(translate({}, ShaderStage::pixel, ShaderTarget::msl), CompileError);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
