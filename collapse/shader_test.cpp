#include "sfg/shader.h"

#include <gtest/gtest.h>

#include <utility>

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(Shader, StartsEmpty) {
  const AShader shader;
  EXPECT_EQ(shader.getCompleteShader(), L"");
  EXPECT_EQ(shader.getNumUniforms(), 0u);
  EXPECT_TRUE(shader.getStateVariables().empty());
}

TEST(Shader, KeepsUniformsInOrderAndTwice) {
  AShader shader;
  for (const wchar_t* name : {L"b", L"a", L"b"}) shader.addUniform(name);
  ASSERT_EQ(shader.getNumUniforms(), 3u);
  EXPECT_EQ(shader.getUniformName(0), L"b");
  EXPECT_EQ(shader.getUniformName(1), L"a");
  EXPECT_EQ(shader.getUniformName(2), L"b");
}

TEST(Shader, IsWritableThroughItsAccessors) {
  AShader shader;
  shader.getCompleteShader() = L"float4 main() {}";
  shader.getStateVariables().insert(UString(L"sfg_time"));
  EXPECT_EQ(std::as_const(shader).getCompleteShader(), L"float4 main() {}");
  EXPECT_EQ(std::as_const(shader).getStateVariables(), (Set<UString>{UString(L"sfg_time")}));
}

TEST(Shader, CallsWhatADerivedShaderOverrides) {
  struct Counting : AShader {
    void addUniform(const WString& name) override {
      ++added;
      AShader::addUniform(name);
    }
    int added = 0;
  };
  Counting counting;
  AShader& shader = counting;
  shader.addUniform(L"u");
  EXPECT_EQ(counting.added, 1);
  EXPECT_EQ(shader.getNumUniforms(), 1u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
