#include "host/lints/code_parameters.h"

#include <gtest/gtest.h>

#include <string>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// "float x, out float3 r, inout S s": type and name of each.
std::string parameters(const std::wstring& text) {
  const CodeTokens tokens = tokensOf(text);
  const PlainCode code = plainCode(text, tokens);
  std::string shown;
  for (const CodeParameter& parameter : readParameters(code, 0, code.tokens.size() - 1)) {
    if (!shown.empty()) shown += ", ";
    shown += std::string(parameter.isOutput ? "out " : "") + (parameter.isInout ? "inout " : "");
    shown += toUtf8(parameter.type) + " " + toUtf8(parameter.name) + (parameter.isArray ? "[]" : "");
  }
  return shown;
}

TEST(CodeParameters, HaveATypeANameAndADirection) {
  EXPECT_EQ(parameters(L"(float x, in float2 uv, out float3 r, inout State state)"),
            "float x, float2 uv, out float3 r, inout State state");
}

TEST(CodeParameters, MayBeNone) {
  EXPECT_EQ(parameters(L"()"), "");
  EXPECT_EQ(parameters(L"(/* none */)"), "");
}

TEST(CodeParameters, KeepTemplateArgumentsTogether) {
  EXPECT_EQ(parameters(L"(Texture2D<float4> image, vector<float, 3> v)"), "Texture2D image, vector v");
}

TEST(CodeParameters, PassOverSemanticsValuesAndSizes) {
  EXPECT_EQ(parameters(L"(const float4 p : SV_Position, uniform float k = f(1, 2), float w[4])"),
            "float4 p, float k, float w[]");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
