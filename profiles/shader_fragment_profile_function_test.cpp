#include "sfg/shader_fragment_profile_function.h"

#include <gtest/gtest.h>

#include "profiles/writer_fixture.h"
#include "tests/support/messages.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::messageOf;
using TolmSDK::test::parseJson;

// Implementation lines

TEST(FunctionImplementation, IsSplitAtTheFirstBrace) {
  const struct {
    const wchar_t* lines;
    const wchar_t* name;
    std::size_t inputs;
    const wchar_t* body;
  } cases[] = {
      {LR"json(["void f(float a)", "{", "a = 1;", "}"])json", L"f", 1, L"\ta = 1;\n"},
      {LR"json(["void f(float a) { return; }"])json", L"f", 1, L"return; "},
      {LR"json(["void f(float a) {", "  a = 1;", "}"])json", L"f", 1, L"\ta = 1;\n"},
      {LR"json(["void f(float a) { \t  a = 1;", "}"])json", L"f", 1, L"\ta = 1;\n"},
      {LR"json(["void f(", "float a,", "  float b", ")", "{", "}"])json", L"f", 2, L""},
      {LR"json(["vo", "id f()", "{", "}"])json", L"f", 0, L""},
      {LR"json(["void f()"])json", L"f", 0, L""},
      {LR"json(["void f()", "{", "x;"])json", L"f", 0, L"\tx;\n"},
      {LR"json(["void f()", "{", "", "x;", "}", "", "// behind"])json", L"f", 0, L"\t\n\tx;\n"},
      {LR"json(["void f()", "{", "if (x)", "{", "y;", "}", "}", "tail"])json", L"f", 0,
       L"\tif (x)\n\t{\n\t\ty;\n\t}\n"},
      {LR"json(["void f()", "{ x; } // } }"])json", L"f", 0, L"x; } // } "},
      {LR"json(["void f() {{ x; }", "}"])json", L"f", 0, L"\t{ x; }\n"},
  };
  for (const auto& c : cases) {
    const auto profile = AShaderFragmentProfile::loadProfile(
        parseJson(std::wstring(L"{\"language\": [], \"implementation\": ") + c.lines + L"}").get());
    ASSERT_TRUE(profile) << c.lines;
    EXPECT_EQ(profile->getFunctionName(), c.name) << c.lines;
    EXPECT_EQ(profile->getFunctionParameters()->getNumInputs(), c.inputs) << c.lines;
    EXPECT_EQ(std::as_const(*profile).getFunctionBody(), c.body) << c.lines;
  }
}

TEST(FunctionImplementation, NeedsAPrototype) {
  const auto load = [](const wchar_t* lines) {
    AShaderFragmentProfile::loadProfile(
        parseJson(std::wstring(L"{\"language\": [], \"implementation\": ") + lines + L"}").get());
  };
  EXPECT_EQ(messageOf([&] { load(L"[]"); }), L"sfgError : Function result type is not void!");
  EXPECT_EQ(messageOf([&] { load(L"[\"float f()\", \"{\", \"}\"]"); }),
            L"sfgError : Function result type is not void!");
  EXPECT_EQ(messageOf([&] { load(L"[\"void f\", \"{\", \"}\"]"); }),
            L"sfgError : Incorrect function declaration!");
}

// Definitions and calls

class FunctionWriter : public test::ProfileWriter {
protected:
  void useFunction(const std::wstring& parameters, const std::wstring& body,
                   const std::wstring& members = L"") {
    use(L"{\"language\": [\"dx11\"], " + members + L"\"implementation\": [\"void f(" + parameters +
        L")\", \"{\", \"" + body + L"\", \"}\"]}");
  }
};

TEST_F(FunctionWriter, WritesADefinition) {
  useFunction(L"float a, out float3 r", L"r = a;");
  EXPECT_EQ(definition(), L"void f1(\n"
                          L"    float a,\n"
                          L"    out float3 r)\n"
                          L"{\n"
                          L"\tr = a;\n"
                          L"}\n");
}

TEST_F(FunctionWriter, WritesADefinitionWithoutParameters) {
  useFunction(L"", L"");
  EXPECT_EQ(definition(), L"void f1()\n{\n\t\n}\n");
}

TEST_F(FunctionWriter, AddsParametersOfStateVariables) {
  context.registerCustomStateVariable(L"float4", L"custom");
  useFunction(L"float a, out float r",
              L"r = sfg_worldNormal.x + state.position.x + state.normal.x + sfg_time;",
              L"\"stateVariables\": [\"custom\", \"unregistered\"], ");
  EXPECT_EQ(definition(), L"void f1(\n"
                          L"    float a,\n"
                          L"    inout float3 sfg_worldNormal,\n"
                          L"    inout State state,\n"
                          L"    float4 custom,\n"
                          L"    out float r)\n"
                          L"{\n"
                          L"\tr = sfg_worldNormal.x + state.position.x + state.normal.x + sfg_time;\n"
                          L"}\n");
  EXPECT_EQ(call({L"x"}, {L"y"}), L"    f1(\n"
                                  L"        x,\n"
                                  L"        sfg_worldNormal,\n"
                                  L"        state,\n"
                                  L"        custom,\n"
                                  L"        y);\n");
  // The profile's own list stays as it is.
  EXPECT_EQ(profile->getFunctionParameters()->getNumInputs(), 1u);
}

TEST_F(FunctionWriter, WritesACall) {
  useFunction(L"float a, float b, out float r, out float s", L"r = s = a * b;");
  EXPECT_EQ(call({L"x", L"(y * 2)"}, {L"r0", L"s0"}), L"    f1(\n"
                                                      L"        x,\n"
                                                      L"        (y * 2),\n"
                                                      L"        r0,\n"
                                                      L"        s0);\n");
  WString out(L"before\n");
  EXPECT_TRUE(profile->writeFunctionCall(out, context, *instance, {}, {}));
  EXPECT_EQ(out, L"before\n    f1();\n");
}

TEST_F(FunctionWriter, NamesTheCurrentLight) {
  context.setCurrentLight(L"PointLight", L"result_light0_0default");
  useFunction(L"out float r", L"r = sfg_currentLight.intensity + sfg_currentLight.x;");
  EXPECT_TRUE(instance->requiresCurrentLight());
  EXPECT_EQ(definition(), L"void f1(\n"
                          L"    PointLight result_light0_0default,\n"
                          L"    out float r)\n"
                          L"{\n"
                          L"\tr = result_light0_0default.intensity + result_light0_0default.x;\n"
                          L"}\n");
}

TEST_F(FunctionWriter, KeepsTheCurrentLightsNameWhenItIsNotListed) {
  context.setCurrentLight(L"PointLight", L"light");
  useFunction(L"out float r", L"r = sfg_currentLight.intensity;");
  profile->stateVariables().clear();
  EXPECT_EQ(definition(), L"void f1(\n    out float r)\n{\n\tr = sfg_currentLight.intensity;\n}\n");
}

TEST_F(FunctionWriter, AppliesTheInstancesRules) {
  useFunction(L"float a, out float r", L"r = helper(a) + u + sfg_shader(t, a) + both;");
  instance->getKeywordReplacePattern().addReplacePattern(L"helper", L"helper2");
  instance->getKeywordReplacePattern().addReplacePattern(L"both", L"keyword");
  instance->getUniformOriginal() = {L"u ", L"both"};
  instance->getUniformNew() = {L"u_n0 ", L"uniform"};
  instance->getShaderReplacePattern().overrideReplacePattern(L"sfg_shader(t, a)", L"other(a)");
  // Of equal keywords the pattern added later wins.
  EXPECT_EQ(definition(), L"void f1(\n"
                          L"    float a,\n"
                          L"    out float r)\n"
                          L"{\n"
                          L"\tr = helper2(a) + u_n0 + other(a) + uniform;\n"
                          L"}\n");
}

TEST_F(FunctionWriter, FindsTheSymbolsThatARuleMakesOfOne) {
  useFunction(L"out float r", L"r = cut;");
  instance->getKeywordReplacePattern().addReplacePattern(L"cut;", L"1; } float g() { return 1;");
  CodeSnippetInstance out;
  ASSERT_TRUE(profile->writeDefinition(out, context, *instance));
  ASSERT_EQ(out.getNumSymbols(), 2u);
  EXPECT_EQ(out.getSymbol(1).getName().view(), L"g");
}

TEST_F(FunctionWriter, RemovesShaderCallsThatNobodyReplaces) {
  useFunction(L"out float r", L"r = 1 + sfg_shader(t, a);");
  EXPECT_EQ(definition(), L"void f1(\n    out float r)\n{\n\tr = 1 + ;\n}\n");
}

TEST_F(FunctionWriter, ClearsTheKeywordRulesWithTheDefinition) {
  useFunction(L"out float r", L"r = helper();");
  instance->getKeywordReplacePattern().addReplacePattern(L"helper", L"helper2");
  EXPECT_EQ(definition(), L"void f1(\n    out float r)\n{\n\tr = helper2();\n}\n");
  EXPECT_TRUE(instance->getKeywordReplacePattern().empty());
  EXPECT_EQ(definition(), L"void f1(\n    out float r)\n{\n\tr = helper();\n}\n");
}

TEST_F(FunctionWriter, UsesTheInstancesNameOfTheMoment) {
  useFunction(L"", L"x;");
  instance->setFunctionName(L"renamed");
  EXPECT_EQ(definition(), L"void renamed()\n{\n\tx;\n}\n");
  EXPECT_EQ(call({}, {}), L"    renamed();\n");
}

TEST_F(FunctionWriter, GivesTheValuesOfBuiltinCalls) {
  useFunction(L"float a, out float r", L"r = sfg_isConnected(a);");
  CodeSnippetInstance out;
  ASSERT_TRUE(profile->writeDefinition(out, context, *instance));
  ASSERT_EQ(out.getNumSymbols(), 1u);
  EXPECT_EQ(out.getSymbol(0).getInstanceKey(), out.getSymbol(0).getKey() + L"false");
}

TEST_F(FunctionWriter, RefusesUnknownStateVariables) {
  useFunction(L"", L"x;");
  profile->stateVariables().insert(UString(L"sfg_nowhere"));
  CodeSnippetInstance out;
  EXPECT_EQ(messageOf([&] { profile->writeDefinition(out, context, *instance); }),
            L"Invalid state variable: sfg_nowhere");
  EXPECT_EQ(out.getNumSymbols(), 0u);
  WString text;
  EXPECT_EQ(messageOf([&] { profile->writeFunctionCall(text, context, *instance, {}, {}); }),
            L"Invalid state variable: sfg_nowhere");
  EXPECT_EQ(text, L"    f1(");
}

// Predefines

TEST_F(FunctionWriter, WritesPredefinesAsTheyAre) {
  useFunction(L"", L"x;", L"\"predefine\": [\"float h() { return 1; }\", \"float k() { return 2; }\"], ");
  CodeSnippetInstance out;
  ASSERT_TRUE(profile->writePredefines(out, context, *instance));
  EXPECT_EQ(out.getNumSymbols(), 2u);
  EXPECT_EQ(textOf(out), L"float h() { return 1; }\nfloat k() { return 2; }\n");
  // Without replacements every instance reads the same parse.
  CodeSnippetInstance again;
  ASSERT_TRUE(profile->writePredefines(again, context, *instance));
  EXPECT_EQ(out.getSymbol(0).getText().text, again.getSymbol(0).getText().text);
}

TEST_F(FunctionWriter, GivesTheValuesOfBuiltinCallsInPredefines) {
  useFunction(L"float a", L"x;", L"\"predefine\": [\"float h() { return sfg_isConnected(a); }\"], ");
  CodeSnippetInstance out;
  ASSERT_TRUE(profile->writePredefines(out, context, *instance));
  ASSERT_EQ(out.getNumSymbols(), 1u);
  EXPECT_EQ(out.getSymbol(0).getInstanceKey(), out.getSymbol(0).getKey() + L"false");
}

TEST_F(FunctionWriter, ReplacesUniformsAndShaderCallsInPredefines) {
  useFunction(L"", L"x;",
              L"\"predefine\": [\"float h() { return u + sfg_shader(t, a) + sfg_isConnected(a); }\"], ");
  instance->getUniformOriginal() = {L"u "};
  instance->getUniformNew() = {L"u_n0 "};
  CodeSnippetInstance out;
  ASSERT_TRUE(profile->writePredefines(out, context, *instance));
  EXPECT_EQ(textOf(out), L"float h() { return u_n0 +  + sfg_isConnected(a); }\n");
  EXPECT_TRUE(out.getSymbol(0).getInstanceKey().ends_with(L"false"));
}

TEST_F(FunctionWriter, WritesNoPredefinesWhereThereAreNone) {
  useFunction(L"", L"x;");
  EXPECT_EQ(predefines(), L"");
  instance->getUniformOriginal() = {L"u"};
  instance->getUniformNew() = {L"v"};
  CodeSnippetInstance out;
  EXPECT_TRUE(profile->writePredefines(out, context, *instance));
  EXPECT_EQ(out.getNumSymbols(), 0u);
}

TEST_F(FunctionWriter, EmptiesWhatHeldOtherPredefinesBeforeUnlessItReplaces) {
  useFunction(L"", L"x;");
  CodeSnippet other;
  other.addCode(L"float h() { return 1; }");
  ASSERT_TRUE(other.parse());
  CodeSnippetInstance out;
  out.construct(&other, {}, false);
  EXPECT_TRUE(profile->writePredefines(out, context, *instance));
  EXPECT_EQ(out.getNumSymbols(), 0u);
  profile->predefines() = L" \n";
  out.construct(&other, {}, false);
  EXPECT_TRUE(profile->writePredefines(out, context, *instance));
  EXPECT_EQ(out.getNumSymbols(), 0u);

  // A replaced text without symbols leaves it alone.
  for (const wchar_t* predefines : {L" \n", L""}) {
    profile->predefines() = predefines;
    makeInstance();
    instance->getUniformOriginal() = {L"u"};
    instance->getUniformNew() = {L"v"};
    out.construct(&other, {}, false);
    EXPECT_TRUE(profile->writePredefines(out, context, *instance));
    EXPECT_EQ(out.getNumSymbols(), 1u);
  }
}

TEST_F(FunctionWriter, ParsesPredefinesThatWereSetByHand) {
  useFunction(L"", L"x;");
  EXPECT_EQ(predefines(), L"");
  profile->predefines() = L"  \n";
  EXPECT_EQ(predefines(), L"");
  profile->predefines() = L"float h() { return 1; }";
  EXPECT_EQ(predefines(), L"float h() { return 1; }");
  // Once there are symbols the parse stays.
  profile->predefines() = L"float k() { return 1; }";
  EXPECT_EQ(predefines(), L"float h() { return 1; }");
}

TEST_F(FunctionWriter, WritesPredefinesAsTheyWereLoaded) {
  const auto node =
      TolmSDK::test::parseJson(LR"json({"language": ["dx11"], "predefine": ["float h() { return 1; }"],
    "implementation": ["void f(out float r)", "{", "r = h();", "}"]})json");
  useFunction(L"", L"x;");
  ASSERT_TRUE(profile->load(node.get()));
  profile->predefines() = L"float k() { return 1; }";
  EXPECT_EQ(predefines(), L"float h() { return 1; }\n");
  ASSERT_TRUE(profile->load(node.get()));
  profile->predefines().clear();
  EXPECT_EQ(predefines(), L"float h() { return 1; }\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
