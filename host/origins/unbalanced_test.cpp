#include "host/origins/unbalanced.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::wstring found(std::wstring_view code) {
  const std::optional<Unbalanced> mistake = findUnbalanced(code);
  if (!mistake) return L"";
  return std::to_wstring(mistake->place) + (mistake->closes ? L" closes " : L" opens ") +
         std::wstring(mistake->token);
}

TEST(UnbalancedTest, NamesTheBracketThatIsNotClosed) {
  EXPECT_EQ(found(L"{ a = (b * 2; }"), L"6 opens (");
  EXPECT_EQ(found(L"{ if (a { b; } }"), L"5 opens (");
  EXPECT_EQ(found(L"{ a = b[2; }"), L"7 opens [");
  EXPECT_EQ(found(L"{ for (i = 0; i < 3; i++) { } }"), L"");
  EXPECT_EQ(found(L"{ for (i = 0; i < 3; i++ { } }"), L"6 opens (");
}

TEST(UnbalancedTest, TrustsIndentationOfBraces) {
  EXPECT_EQ(found(L"{\n  if (a) {\n    b;\n}\n"), L"11 opens {");
  EXPECT_EQ(found(L"{\n  if (a) {\n    b;\n  }\n"), L"0 opens {");
}

TEST(UnbalancedTest, NamesWhatClosesNothing) {
  EXPECT_EQ(found(L"{ a = b); }"), L"7 closes )");
  EXPECT_EQ(found(L"{ a; } }"), L"7 closes }");
}

TEST(UnbalancedTest, KnowsCommentsAndConditionals) {
  EXPECT_EQ(found(L"a; /* b ( */ c;"), L"");
  EXPECT_EQ(found(L"a; // ( /*\n c;"), L"");
  EXPECT_EQ(found(L"a; /* b"), L"3 opens /*");
  EXPECT_EQ(found(L"#if A\n{\n#else\n(\n#endif\n"), L"");
  EXPECT_EQ(found(L"#if A\na;\n#ifdef B\n#endif\n"), L"0 opens #");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
