#include "sfg/host/compile.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

Shader makeShader(const std::string& body) {
  Shader shader;
  shader.text = "float4 main() : SV_Target0\n{\n  return " + body + ";\n}\n";
  shader.entryPoint = "main";
  return shader;
}

template <class Call>
std::string refusal(const Call& call) {
  try {
    call();
  } catch (const CompileError& error) {
    return error.what();
  }
  return "(nothing thrown)";
}

TEST(CompileTest, IsBothStepsInOne) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  const Shader shader = makeShader("float4(1, 2, 3, 4)");
  const std::vector<std::uint32_t> spirv = compileToSpirv(shader);
  EXPECT_EQ(compile(shader, ShaderTarget::glsl),
            translateSpirv(spirv, ShaderStage::pixel, ShaderTarget::glsl));
}

TEST(CompileTest, CompilesDeepExpressions) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  const Shader deep = makeShader(std::string(4'000, '(') + "float4(1, 2, 3, 4)" + std::string(4'000, ')'));
  EXPECT_EQ(compileToSpirv(deep), compileToSpirv(makeShader("float4(1, 2, 3, 4)")));
}

TEST(CompileTest, RefusesWhatIsTooDeep) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  const Shader deep = makeShader(std::string(100'000, '(') + "1" + std::string(100'000, ')'));
  EXPECT_EQ(refusal([&] { compileToSpirv(deep); }), "the generated shader is too deep for the compilers");
  EXPECT_EQ(refusal([&] { compile(deep, ShaderTarget::glsl); }),
            "the generated shader is too deep for the compilers");
}

TEST(CompileTest, TellsWhoseLinesTheMessagesAreOf) {
  if (!hasCompilers()) GTEST_SKIP() << "built without compilers";
  try {
    compileToSpirv(makeShader("nothing"));
    FAIL();
  } catch (const CompileError& error) {
    EXPECT_TRUE(error.inAssembledText());
    ASSERT_FALSE(error.messages().empty());
    EXPECT_EQ(error.messages()[0].line, 3u);
  }
}

TEST(CompileTest, LeavesAnInterfaceAsItIsWhenAModuleIsNone) {
  ShaderInterface shader;
  shader.attributes.resize(1);
  EXPECT_THROW(markUsed(shader, {1, 2, 3}), CompileError);
  EXPECT_EQ(shader.attributes[0].isUsed, std::nullopt);
}

TEST(CompileTest, RefusesEveryStepWithoutCompilers) {
  if (hasCompilers()) GTEST_SKIP() << "built with compilers";
  const std::string expected = "this library was built without compilers";
  const Shader shader = makeShader("1");
  ShaderInterface interface;
  EXPECT_EQ(refusal([&] { compileToSpirv(shader); }), expected);
  EXPECT_EQ(refusal([&] { translateSpirv({}, ShaderStage::pixel, ShaderTarget::glsl); }), expected);
  EXPECT_EQ(refusal([&] { compile(shader, ShaderTarget::hlsl); }), expected);
  EXPECT_EQ(refusal([&] { markUsed(interface, {}); }), expected);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
