#include "host/lints/plain_code.h"

#include <gtest/gtest.h>

#include <string>

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// The tokens with blanks between them, then each preprocessor line in brackets; "?" when nothing is certain.
std::wstring plain(std::wstring_view text) {
  const CodeTokens tokens = tokensOf(text);
  const PlainCode code = plainCode(text, tokens);
  std::wstring shown;
  for (std::size_t i = 0; i < code.tokens.size(); ++i) shown.append(code.word(i)).append(L" ");
  for (const PlainCode::Directive& directive : code.directives) {
    shown.append(L"[").append(directive.name);
    for (const CodeToken& token : directive.tokens) shown.append(L" ").append(token.in(text));
    shown.append(L"]");
  }
  if (!code.isCertain) shown += L"?";
  return shown;
}

TEST(PlainCode, IsTheTokensOfCodeWithoutComments) {
  EXPECT_EQ(plain(L"a.b = 1.5; // c\n/* d */ e"), L"a . b = 1.5 ; e ");
}

TEST(PlainCode, KeepsPreprocessorLinesApart) {
  EXPECT_EQ(plain(L"a\n#define TWICE(x) (x * 2) // no\nb\n# ifdef C\nd\n#endif"),
            L"a b d [define TWICE ( x ) ( x * 2 )][ifdef C][endif]");
}

TEST(PlainCode, ContinuesPreprocessorLinesBehindABackslash) {
  EXPECT_EQ(plain(L"#define A b; \\\n  c;\nd\n#define E f; \\\r\n g\nh"),
            L"d h [define A b ; \\ c ;][define E f ; \\ g]");
}

TEST(PlainCode, TakesANumberSignInsideALineForItself) { EXPECT_EQ(plain(L"a # b"), L"a # b "); }

TEST(PlainCode, PassesOverStrings) {
  EXPECT_EQ(plain(L"log(\"result = 1;\", a); b"), L"log ( , a ) ; b ");
  EXPECT_EQ(plain(L"log(\"say \\\"x\\\" now\"); b"), L"log ( ) ; b ");
}

TEST(PlainCode, IsUncertainBehindAStringThatDoesNotEnd) {
  EXPECT_EQ(plain(L"log(\"a\nb"), L"log ( b ?");
  EXPECT_EQ(plain(L"log(\"a // b\"); c\nd"), L"log ( d ?");
  EXPECT_EQ(plain(L"log(\"a\\"), L"log ( ?");
}

TEST(PlainCode, TellsFreeNamesFromMembers) {
  const std::wstring_view text = L"a.b c 1";
  const CodeTokens tokens = tokensOf(text);
  const PlainCode code = plainCode(text, tokens);
  EXPECT_TRUE(code.isFreeName(0));
  EXPECT_FALSE(code.isFreeName(2));
  EXPECT_TRUE(code.isFreeName(3));
  EXPECT_FALSE(code.isFreeName(4));
  EXPECT_FALSE(code.isFreeName(5));
  EXPECT_TRUE(code.is(1, L'.'));
  EXPECT_FALSE(code.is(5, L'.'));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
