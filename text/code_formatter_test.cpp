#include "sfg/code_formatter.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>

#include "sfg/size_limit.h"
#include "text/test_views.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

WString format(int indent, std::initializer_list<const wchar_t*> lines) {
  CodeFormatter formatter(indent);
  for (const wchar_t* line : lines) formatter.addLine(line);
  return formatter.getResult();
}

TEST(CodeFormatter, IndentsByBraceDepth) {
  EXPECT_EQ(format(0, {L"void f()", L"{", L"x = 1;", L"}"}), L"void f()\n{\n\tx = 1;\n}\n");
}

TEST(CodeFormatter, ReplacesTheIndentationOfTheSource) {
  EXPECT_EQ(format(1, {L" \t\r\n  x;  ", L"\t"}), L"\tx;  \n\t\n");
}

TEST(CodeFormatter, ALineThatClosesAndOpensStandsAtItsLevel) {
  EXPECT_EQ(format(2, {L"} else {", L"x;"}), L"\t\t} else {\n\t\tx;\n");
  EXPECT_EQ(format(1, {L"{ }", L"x;"}), L"\t{ }\n\tx;\n");
}

TEST(CodeFormatter, AnOpeningLineStandsAtTheLevelItOpensFrom) {
  EXPECT_EQ(format(1, {L"{{", L"x;", L"}}"}), L"\t{{\n\t\t\tx;\n\t}}\n");
}

TEST(CodeFormatter, ALineThatOnlyEndsWithABraceStandsWhereItCloses) {
  EXPECT_EQ(format(1, {L"return; }", L"x;"}), L"return; }\nx;\n");
}

TEST(CodeFormatter, CountsBracesInCommentsAndStrings) {
  EXPECT_EQ(format(0, {L"// {", L"\"}\";", L"x;"}), L"// {\n\"}\";\nx;\n");
}

TEST(CodeFormatter, ANegativeStartCountsAsZero) {
  EXPECT_EQ(format(-3, {L"{", L"x;"}), L"{\n\tx;\n");
  EXPECT_EQ(format(std::numeric_limits<int>::min(), {L"{", L"x;"}), L"{\n\tx;\n");
}

TEST(CodeFormatter, StartsAtZeroByDefault) {
  CodeFormatter formatter;
  formatter.addLine(L"x;");
  EXPECT_EQ(formatter.getResult(), L"x;\n");
}

TEST(CodeFormatter, SurplusClosingBracesDriveTheLevelBelowZero) {
  EXPECT_EQ(format(0, {L"}", L"x;", L"{", L"y;", L"{", L"z;"}), L"}\nx;\n{\ny;\n{\n\tz;\n");
}

TEST(CodeFormatter, TheLevelStopsAtTheBoundOfItsType) {
  CodeFormatter formatter(std::numeric_limits<int>::max());
  // A level that wrapped would be negative, and the line written without a tab.
  EXPECT_THROW(formatter.addLine(L"{"), Exception);
  EXPECT_EQ(formatter.getResult(), L"");
}

TEST(CodeFormatter, TrimsTheLineOfTheCaller) {
  CodeFormatter formatter;
  WString line = L" \tx; ";
  formatter.addLine(line);
  EXPECT_EQ(line, L"x; ");
  EXPECT_EQ(formatter.getResult(), L"x; \n");
}

TEST(CodeFormatter, IgnoresANullLine) {
  CodeFormatter formatter;
  const wchar_t* none = nullptr;
  formatter.addLine(none);
  EXPECT_EQ(formatter.getResult(), L"");
}

TEST(CodeFormatter, AnEmptyLineIsALine) { EXPECT_EQ(format(1, {L"", L"x;"}), L"\t\n\tx;\n"); }

TEST(CodeFormatter, WritesIntoTheCallersString) {
  CodeFormatter formatter(1);
  formatter.addLine(L"{");
  WString result = L"before\n";
  EXPECT_TRUE(formatter.setResult(&result));
  formatter.addLine(L"x;");
  EXPECT_EQ(&formatter.getResult(), &result);
  EXPECT_EQ(result, L"before\n\t\tx;\n");
  EXPECT_FALSE(formatter.setResult(nullptr));
  formatter.addLine(L"y;");
  EXPECT_EQ(result, L"before\n\t\tx;\n\t\ty;\n");
}

TEST(CodeFormatter, RefusesTextPastTheSizeLimit) {
  CodeFormatter formatter;
  WString result(kMaximumTextLength - 3, L'x');
  formatter.setResult(&result);
  formatter.addLine(L"ab");
  EXPECT_EQ(result.size(), kMaximumTextLength);
  try {
    formatter.addLine(L"");
    FAIL() << "not refused";
  } catch (const Exception& e) {
    EXPECT_EQ(e.getMessage(), L"sfgError : the generated code is too large!");
  }
  EXPECT_EQ(result.size(), kMaximumTextLength);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
