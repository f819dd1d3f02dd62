#include "sfg/builtin_function.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "text/test_views.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using Texts = std::vector<std::wstring>;

Texts texts(const Array<ScopedText>& views) {
  Texts result;
  for (const ScopedText& view : views) result.emplace_back(view.view());
  return result;
}

TEST(BuiltinNames, HoldTheirTexts) {
  EXPECT_EQ(sfg_isConnected, UString(L"sfg_isConnected"));
  EXPECT_EQ(sfg_isNotConnected, UString(L"sfg_isConnected")) << "the text of the opposite";
  EXPECT_EQ(sfg_shader, UString(L"sfg_shader"));
  EXPECT_EQ(sfg_isFinalOutput, UString(L"sfg_isFinalOutput"));
}

TEST(GetBuiltinFunctionId, ComparesWholeNamesWithCase) {
  EXPECT_EQ(getBuiltinFunctionId(sfg_isConnected), eBuiltinFunctionIsConnected);
  EXPECT_EQ(getBuiltinFunctionId(sfg_isNotConnected), eBuiltinFunctionIsConnected)
      << "equal texts, the first id";
  EXPECT_EQ(getBuiltinFunctionId(sfg_shader), eBuiltinFunctionShader);
  EXPECT_EQ(getBuiltinFunctionId(sfg_isFinalOutput), eBuiltinFunctionIsFinalOutput);
  for (const wchar_t* other :
       {L"", L"sfg_isNotConnected", L"sfg_IsConnected", L"sfg_shaders", L"sfg_unkown", L"sfg_"})
    EXPECT_EQ(getBuiltinFunctionId(UString(other)), eBuiltinFunctionUnknown);
}

TEST(GetBuiltinFunctionString, AnswersTheTextOfAnId) {
  EXPECT_EQ(getBuiltinFunctionString(eBuiltinFunctionUnknown), L"sfg_unkown");
  EXPECT_EQ(getBuiltinFunctionString(eBuiltinFunctionIsConnected), L"sfg_isConnected");
  EXPECT_EQ(getBuiltinFunctionString(eBuiltinFunctionIsNotConnected), L"sfg_isConnected");
  EXPECT_EQ(getBuiltinFunctionString(eBuiltinFunctionShader), L"sfg_shader");
  EXPECT_EQ(getBuiltinFunctionString(eBuiltinFunctionIsFinalOutput), L"sfg_isFinalOutput");
  EXPECT_EQ(getBuiltinFunctionString(static_cast<EBuiltinFunctionId>(7)), L"");
}

struct Call {
  const wchar_t* text;  // the call; its name ends at the first character that is no token character
  bool isParsed;
  Texts arguments;
  const wchar_t* range;
};

TEST(BuiltinFunctionParse, SplitsArgumentsAtCommas) {
  const Call calls[] = {
      {L"f(a, b) x", true, {L"a", L"b"}, L"f(a, b)"},
      {L"f( x )", true, {L"x"}, L"f( x )"},
      {L"f(a,,b)", true, {L"a", L"", L"b"}, L"f(a,,b)"},
      {L"f(a,)", true, {L"a"}, L"f(a,)"},
      {L"f(,a)", true, {L"", L"a"}, L"f(,a)"},
      {L"f(,)", true, {L""}, L"f(,)"},
      {L"f()", true, {}, L"f()"},
      {L"f( \n )", true, {}, L"f( \n )"},
      {L"f /* c */ (a)", true, {L"a"}, L"f /* c */ (a)"},
      {L"f // why\n// so\n(a)", true, {L"a"}, L"f // why\n// so\n(a)"},
      {L"f/*a*//*b*/(x)", true, {L"x"}, L"f/*a*//*b*/(x)"},
      {L"f/*/ \n//\\\n c\n/**//**/\t(x, y)", true, {L"x", L"y"}, L"f/*/ \n//\\\n c\n/**//**/\t(x, y)"},
      // Lengths count no whitespace, the view does.
      {L"f(a + b)", true, {L"a +"}, L"f(a + b)"},
      {L"f(a b,c)", true, {L"a ", L"c"}, L"f(a b,c)"},
      // Nested lists are not respected.
      {L"f(g(a, b), c)", true, {L"g(a", L"b)", L"c"}, L"f(g(a, b), c)"},
      // Without the closing parenthesis the last character counts as one.
      {L"f(abc", true, {L"ab"}, L"f(abc"},
      {L"f((", true, {}, L"f(("},
      // No list.
      {L"f", false, {}, L""},
      {L"f(", false, {}, L""},
      {L"f;", false, {}, L""},
      {L"f/*a*//*b*/;(x)", false, {}, L""},
      {L"f/*a*//*(x)", false, {}, L""},
      {L"f//(x)", false, {}, L""},
      {L"f [a]", false, {}, L""},
  };
  for (const Call& call : calls) {
    inEveryPlace(call.text, [&](const ScopedText& view) {
      BuiltinFunction f;
      std::size_t pos = 1;
      EXPECT_EQ(f.parse(eBuiltinFunctionShader, view, 0, pos), call.isParsed);
      EXPECT_EQ(f.id, eBuiltinFunctionShader) << "stored in any case";
      EXPECT_EQ(texts(f.arguments), call.arguments);
      EXPECT_EQ(f.range.view(), call.range);
      if (call.isParsed) {
        EXPECT_EQ(pos, f.range.length);
      }
    });
  }
}

TEST(BuiltinFunctionParse, TheRangeStartsAtTheName) {
  const WString text = L"x = sfg_shader(a) + 1";
  BuiltinFunction f;
  std::size_t pos = 14;
  EXPECT_TRUE(f.parse(eBuiltinFunctionShader, text, 4, pos));
  EXPECT_EQ(f.range.text, text.data() + 4);
  EXPECT_EQ(f.range.view(), L"sfg_shader(a)");
  EXPECT_EQ(pos, 17u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
