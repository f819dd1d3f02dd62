#include "host/origins/token_alignment.h"

#include <gtest/gtest.h>

#include <string>

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::wstring told(std::wstring_view source, const std::vector<TokenSource>& found) {
  const CodeTokens tokens = tokensOf(source);
  std::wstring text;
  for (const TokenSource& from : found) {
    if (!text.empty()) text += L' ';
    text += from.token < tokens.size() ? std::wstring(tokens[from.token].in(source)) : std::wstring(L"-");
    if (!from.isExact) text += L'~';
  }
  return text;
}

std::wstring aligned(std::wstring_view source, std::wstring_view text, std::size_t lights = 0) {
  const CodeTokens from = tokensOf(source);
  const CodeTokens to = tokensOf(text);
  return told(source, alignTokens(allOf(source, from), allOf(text, to), lights));
}

TEST(TokenAlignmentTest, FollowsRenames) {
  EXPECT_EQ(aligned(L"r = h(gain) ;", L"r = h12(gainn0);"), L"r = h ( gain ) ;");
}

TEST(TokenAlignmentTest, TakesValuesForBuiltinCalls) {
  EXPECT_EQ(aligned(L"if (sfg_isConnected(a)) x;", L"if (true) x;"), L"if ( sfg_isConnected~ ) x ;");
  EXPECT_EQ(aligned(L"if (sfg_isConnected(a)) x;", L"if (sfg_isConnected(a)) x;"),
            L"if ( sfg_isConnected ( a ) ) x ;");
}

TEST(TokenAlignmentTest, TakesCallsForShaderUses) {
  EXPECT_EQ(
      aligned(L"sfg_shader(a, uv, p, result, c); x = c;", L"float r_temp; tint1(p, c, r_temp);\n; x = c;"),
      L"sfg_shader~ sfg_shader~ sfg_shader~ sfg_shader~ sfg_shader~ sfg_shader~ sfg_shader~ sfg_shader~ "
      L"sfg_shader~ sfg_shader~ sfg_shader~ sfg_shader~ ; x = c ;");
  EXPECT_EQ(aligned(L"sfg_shader(a, uv, p); x = c;", L"; x = c;"), L"; x = c ;");
}

TEST(TokenAlignmentTest, RepeatsLightBlocks) {
  const std::wstring source =
      L"a; TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN TOLM_SCENE_LIGHTING(b); TOLM_VESSOR_LIGHT_AND_SHADOW_END c;";
  EXPECT_EQ(aligned(source, L"a; c;", 0), L"a ; c ;");
  EXPECT_EQ(
      aligned(source, L"a; { TolmSceneLighting0(b); } { TolmSceneLighting1(b); } c;", 2),
      L"a ; TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN~ TOLM_SCENE_LIGHTING ( b ) ; "
      L"TOLM_VESSOR_LIGHT_AND_SHADOW_END~ TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN~ TOLM_SCENE_LIGHTING ( b ) ; "
      L"TOLM_VESSOR_LIGHT_AND_SHADOW_END~ c ;");
}

TEST(TokenAlignmentTest, ComesTogetherBehindOtherText) {
  EXPECT_EQ(aligned(L"a = 1; b = 2; c = 3;", L"a = 1; + + b = 2; c = 3;"), L"a = 1 ; b~ b~ b = 2 ; c = 3 ;");
  EXPECT_EQ(aligned(L"", L"a b"), L"-~ -~");
}

TEST(TokenAlignmentTest, MatchesParametersByName) {
  const std::wstring source = L"void f(const in float3 a, out float r, float2 b : TEXCOORD)";
  const std::wstring text = L"void f1(float3 a, float2 b, inout float3 sfg_x, out float r)";
  const CodeTokens from = tokensOf(source);
  const CodeTokens to = tokensOf(text);
  EXPECT_EQ(told(source, alignHeads(allOf(source, from), allOf(text, to))),
            L"void f ( float3 a , float2 b )~ f~ f~ f~ f~ out float r )");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
