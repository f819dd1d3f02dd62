// Symbols met again, by example: each example through the model and through the library's accumulator.

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "sfg/code_accumulator.h"
#include "sfg/code_snippet.h"
#include "tests/model/library_rules.h"
#include "tests/model/model_accumulator.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

/// One call: a piece of code, and the texts of its built-in calls.
struct Call {
  std::wstring code;
  std::vector<std::wstring> values;
  std::vector<model::Rule> rules;  ///< in force before
};

struct Example {
  const char* name;
  std::vector<Call> calls;
  std::wstring expected;  ///< all that is written; behind each call a line with the rules in force then
};

std::ostream& operator<<(std::ostream& out, const Example& example) { return out << example.name; }

std::wstring lineOf(const std::vector<model::Rule>& rules) {
  std::wstring line = L"--";
  for (const auto& [keyword, text] : rules) line += L" " + keyword + L">" + text;
  return line + L"\n";
}

std::wstring runModel(const Example& example) {
  model::Accumulator accumulator;
  std::wstring out;
  for (const Call& call : example.calls) {
    const model::Snippet snippet = model::parseSnippet(call.code);
    model::Pattern rules;
    rules.keywords = call.rules;
    accumulator.append(out, model::instantiate(snippet, call.values), snippet, {}, rules, L"");
    out += lineOf(rules.keywords);
  }
  return out;
}

std::wstring runLibrary(const Example& example) {
  CodeAccumulator accumulator;
  WString out;
  for (const Call& call : example.calls) {
    CodeSnippet snippet;
    snippet.addCode(call.code.c_str());
    snippet.parse();
    Array<WString> values;
    for (const std::wstring& value : call.values) values.emplace_back(value);
    CodeSnippetInstance instance;
    instance.construct(&snippet, values, false);
    KeywordReplacePattern rules;
    for (const auto& [keyword, text] : call.rules) rules.addReplacePattern(WString(keyword), WString(text));
    accumulator.append(out, instance, {}, rules);
    out += lineOf(model::patternOf(rules).keywords);
  }
  return std::wstring(out);
}

const std::wstring kConnected = L"float k() { return sfg_isConnected(a); }\n";

const std::vector<Example>& examples() {
  static const std::vector<Example> all = {
      {"ThirdUseIsOfTheFirstFunction",
       {{kConnected, {L"true"}, {}}, {kConnected, {L"false"}, {}}, {kConnected, {L"true"}, {}}},
       L"float k() { return true; }\n"
       L"--\n"
       L"float k1() { return false; }\n"
       L"-- k>k1\n"
       L"--\n"},
      {"EachUsesItsOwnHelper",
       {{L"float h() { return 1; }\nfloat x() { return h(); }\n", {}, {}},
        {L"float h() { return 2; }\nfloat y() { return h(); }\n", {}, {}},
        {L"float h() { return 2; }\nfloat y() { return h(); }\n", {}, {}}},
       L"float h() { return 1; }\nfloat x() { return h(); }\n"
       L"--\n"
       L"float h1() { return 2; }\nfloat y() { return h1(); }\n"
       L"-- h>h1\n"
       L"-- h>h1\n"},
      {"CallersOfEqualTextAreTwo",
       {{L"float h() { return 1; }\nfloat g() { return h(); }\n", {}, {}},
        {L"float h() { return 2; }\nfloat g() { return h(); }\n", {}, {}}},
       L"float h() { return 1; }\nfloat g() { return h(); }\n"
       L"--\n"
       L"float h1() { return 2; }\nfloat g2() { return h1(); }\n"
       L"-- h>h1 g>g2\n"},
      {"CallersStandInFrontOfTheirHelpers",
       {{L"float g() { return h(); }\nfloat h() { return 1; }\n", {}, {}},
        {L"float g() { return h(); }\nfloat h() { return 2; }\n", {}, {}}},
       L"float g() { return h(); }\nfloat h() { return 1; }\n"
       L"--\n"
       L"float g2() { return h1(); }\nfloat h1() { return 2; }\n"
       L"-- h>h1 g>g2\n"},
      {"OverloadsStandTogether",
       {{L"float h(float2 a) { return 1; }\n", {}, {}},
        {L"float h(float a) { return 2; }\nfloat h(float2 a) { return 1; }\n", {}, {}}},
       L"float h(float2 a) { return 1; }\n"
       L"--\n"
       L"float h1(float a) { return 2; }\nfloat h1(float2 a) { return 1; }\n"
       L"-- h>h1\n"},
      {"PrototypeAndFunctionStandTogether",
       {{L"float h(float a);\nfloat h(float a) { return 1; }\n", {}, {}},
        {L"float h(float a);\nfloat h(float a) { return 2; }\n", {}, {}}},
       L"float h(float a);\nfloat h(float a) { return 1; }\n"
       L"--\n"
       L"float h1(float a);\nfloat h1(float a) { return 2; }\n"
       L"-- h>h1\n"},
      {"DeclarationAndStructureStandTogether",
       {{L"struct S;\nstruct S { float a; };\n", {}, {}}, {L"struct S;\nstruct S { float b; };\n", {}, {}}},
       L"struct S;struct S { float a; };\n"
       L"--\n"
       L"struct S1;struct S1 { float b; };\n"
       L"-- S>S1\n"},
      {"GivenNamesAreTaken",
       {{L"float hash() { return 1; }\n", {}, {}},
        {L"float hash() { return 2; }\n", {}, {}},
        {L"float hash1() { return 3; }\n", {}, {}}},
       L"float hash() { return 1; }\n"
       L"--\n"
       L"float hash1() { return 2; }\n"
       L"-- hash>hash1\n"
       L"float hash12() { return 3; }\n"
       L"-- hash1>hash12\n"},
      {"NamesGivenByTheSameCallAreTaken",
       {{L"float h() { return 1; }\n", {}, {}},
        {L"float h() { return 2; }\nfloat h1() { return 3; }\n", {}, {}}},
       L"float h() { return 1; }\n"
       L"--\n"
       L"float h1() { return 2; }\nfloat h12() { return 3; }\n"
       L"-- h>h1 h1>h12\n"},
      {"RingsStandTogether",
       {{L"float rr(float a) { return 1; }\nfloat rr(float2 a) { return ss(1); }\n"
         L"float ss(float a) { return rr(a); }\n",
         {},
         {}},
        {L"float rr(float a) { return 2; }\nfloat rr(float2 a) { return ss(1); }\n"
         L"float ss(float a) { return rr(a); }\n",
         {},
         {}}},
       L"float rr(float a) { return 1; }\nfloat rr(float2 a) { return ss(1); }\n"
       L"float ss(float a) { return rr(a); }\n"
       L"--\n"
       L"float rr1(float a) { return 2; }\nfloat rr1(float2 a) { return ss2(1); }\n"
       L"float ss2(float a) { return rr1(a); }\n"
       L"-- rr>rr1 ss>ss2\n"},
      {"RulesInForceBelongToTheKey",
       {{L"float h() { return abc; }\n", {}, {{L"abc", L"x"}}},
        {L"float h() { return abc; }\n", {}, {{L"abc", L"y"}, {L"none", L"z"}}},
        {L"float h() { return abc; }\n", {}, {{L"other", L"z"}, {L"abc", L"x"}}}},
       L"float h() { return x; }\n"
       L"-- abc>x\n"
       L"float h1() { return y; }\n"
       L"-- abc>y none>z h>h1\n"
       L"-- other>z abc>x\n"},
      {"ARuleInForceIsNotHandedBackAgain",
       {{L"float h() { return 1; }\n", {}, {}}, {L"float h() { return 2; }\n", {}, {{L"h", L"h1"}}}},
       L"float h() { return 1; }\n"
       L"--\n"
       L"float h1() { return 2; }\n"
       L"-- h>h1\n"},
      {"SymbolsWithoutANameStandAlone",
       {{L"struct { float a; } one;\nfloat h() { return 1; }\n", {}, {}},
        {L"struct { float a; };\nstruct { float a; };\nfloat h() { return 1; }\n", {}, {}},
        {L"struct { float a; };\nfloat h() { return 1; }\n", {}, {}}},
       L"struct { float a; } one;\nfloat h() { return 1; }\n"
       L"--\n"
       L"struct { float a; };\nstruct { float a; };\n"
       L"--\n"
       L"--\n"},
      {"RawTextIsWrittenAgainAndUnchanged",
       {{L"// h\nfloat h() { return 1; }\n", {}, {}}, {L"// h\nfloat h() { return 2; }\n", {}, {}}},
       L"// h\nfloat h() { return 1; }\n"
       L"--\n"
       L"// h\nfloat h1() { return 2; }\n"
       L"-- h>h1\n"},
      {"CallsWithoutATextStayAsTheyAre",
       {{L"float k() { return sfg_isConnected(a) + sfg_isConnected(b); }\n", {L"1"}, {}},
        {L"float k() { return sfg_isConnected + sfg_isConnected(b); }\n", {L"1", L"0"}, {}}},
       L"float k() { return 1 + sfg_isConnected(b); }\n"
       L"--\n"
       L"float k1() { return sfg_isConnected + 0; }\n"
       L"-- k>k1\n"},
  };
  return all;
}

class SymbolExamples : public ::testing::TestWithParam<Example> {};
INSTANTIATE_TEST_SUITE_P(Each, SymbolExamples, ::testing::ValuesIn(examples()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(SymbolExamples, ByTheModel) { EXPECT_EQ(toUtf8(runModel(GetParam())), toUtf8(GetParam().expected)); }

TEST_P(SymbolExamples, ByTheLibrary) {
  EXPECT_EQ(toUtf8(runLibrary(GetParam())), toUtf8(GetParam().expected));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
