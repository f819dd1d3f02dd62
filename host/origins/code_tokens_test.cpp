#include "host/origins/code_tokens.h"

#include <gtest/gtest.h>

#include <string>

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::wstring listed(std::wstring_view code) {
  std::wstring text;
  for (const CodeToken& token : tokensOf(code)) {
    if (!text.empty()) text += L'|';
    text += token.in(code);
  }
  return text;
}

TEST(CodeTokensTest, CutsNamesNumbersAndSingleCharacters) {
  EXPECT_EQ(listed(L"a+=b.xy*1.5e-3f;"), L"a|+|=|b|.|xy|*|1.5e-3f|;");
  EXPECT_EQ(listed(L"x=.5;y=0x1e+2;"), L"x|=|.5|;|y|=|0x1e|+|2|;");
  EXPECT_EQ(listed(L"v[0].x1"), L"v|[|0|]|.|x1");
}

TEST(CodeTokensTest, PassesOverBlanksAndComments) {
  EXPECT_EQ(listed(L"a // b\n\tc /* d\n e */ f"), L"a|c|f");
  EXPECT_EQ(listed(L"a /* open b"), L"a");
  EXPECT_EQ(listed(L""), L"");
  EXPECT_EQ(listed(L"a /"), L"a|/");
}

TEST(CodeTokensTest, FindsTokensAndBrackets) {
  const std::wstring_view code = L"f ( a [ 1 ] ) ;";
  const CodeTokens tokens = tokensOf(code);
  EXPECT_EQ(tokenAt(tokens, 0), 0u);
  EXPECT_EQ(tokenAt(tokens, 1), 1u);
  EXPECT_EQ(tokenAt(tokens, 100), tokens.size());
  EXPECT_EQ(behindBrackets(code, tokens, 1), 7u);
  EXPECT_EQ(behindBrackets(code, tokens, 3), 6u);
  EXPECT_EQ(behindBrackets(L"( a", tokensOf(L"( a"), 0), 2u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
