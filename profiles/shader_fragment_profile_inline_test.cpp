#include "sfg/shader_fragment_profile_inline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

#include "profiles/writer_fixture.h"
#include "sfg/size_limit.h"
#include "tests/support/cost.h"
#include "tests/support/messages.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::messageOf;

class InlineWriter : public test::ProfileWriter {
protected:
  void useExpression(const std::wstring& expression) {
    use(L"{\"mode\": \"inline\", \"language\": [\"dx11\"], \"implementation\": [\"" + expression + L"\"]}");
  }
  Array<WString> placeholders() const {
    Array<WString> names;
    const ITextParameterList& parameters = *profile->getFunctionParameters();
    for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
      EXPECT_EQ(parameters.getInputType(i), L"");
      names.push_back(parameters.getInputName(i));
    }
    EXPECT_EQ(parameters.getNumOutputs(), 0u);
    return names;
  }
  const WString& body() const { return std::as_const(*profile).getFunctionBody(); }
  /// The output that a use with these values sets.
  WString expressionFor(const Array<WString>& values) {
    EXPECT_EQ(call(values, {L"ignored"}), L"");
    EXPECT_EQ(instance->getNumOutputs(), 1u);
    EXPECT_EQ(instance->getOutputType(0), L"");
    return instance->getOutputName(0);
  }
};

TEST_F(InlineWriter, HasOneInputPerDistinctPlaceholder) {
  const struct {
    const wchar_t* expression;
    Array<WString> inputs;
    const wchar_t* body;
  } cases[] = {
      {L"{{a}} * {{b}}", {L"{{a}}", L"{{b}}"}, L"({{a}} * {{b}})"},
      {L"{{b}} + {{a}} * {{b}}", {L"{{b}}", L"{{a}}"}, L"({{b}} + {{a}} * {{b}})"},
      {L"({{a}}) * ({{b}})", {L"{{a}}", L"{{b}}"}, L"({{a}}) * ({{b}})"},
      {L"(1.0)", {}, L"(1.0)"},
      {L"1.0", {}, L"(1.0)"},
      {L" (1.0)", {}, L"( (1.0))"},
      {L"{{}}", {L"{{}}"}, L"({{}})"},
      {L"a }} b", {}, L"(a }} b)"},
      {L"}} {{a}} }}", {L"{{a}}"}, L"(}} {{a}} }})"},
      {L"{{{a}}}", {L"{{{a}}"}, L"({{{a}}})"},
      {L"{{a {{b}}", {L"{{a {{b}}"}, L"({{a {{b}})"},
      {L"{ {a} }", {}, L"({ {a} })"},
  };
  for (const auto& c : cases) {
    useExpression(c.expression);
    EXPECT_EQ(placeholders(), c.inputs) << c.expression;
    EXPECT_EQ(body(), c.body) << c.expression;
  }
}

TEST_F(InlineWriter, IgnoresLinesBehindTheFirst) {
  use(L"{\"mode\": \"inline\", \"language\": [], \"implementation\": [\"{{a}}\", \"{{b\", 3]}");
  EXPECT_EQ(body(), L"({{a}})");
  EXPECT_EQ(placeholders(), (Array<WString>{L"{{a}}"}));
}

TEST_F(InlineWriter, RefusesEmptyAndUnfinishedBodies) {
  const auto refusal = [](const wchar_t* lines) {
    const auto node = TolmSDK::test::parseJson(
        std::wstring(L"{\"mode\": \"inline\", \"language\": [], \"implementation\": ") + lines + L"}");
    return messageOf([&] { AShaderFragmentProfile::loadProfile(node.get()); });
  };
  EXPECT_EQ(refusal(L"[]"), L"sfgError : Function body is empty!");
  EXPECT_EQ(refusal(L"[\"\"]"), L"sfgError : Function body is empty!");
  for (const wchar_t* lines : {L"[\"{{a}\"]", L"[\"{{\"]", L"[\"}} {{a\"]", L"[\"{{a}} {{b}\"]"})
    EXPECT_EQ(refusal(lines), L"sfgError : Inline body {{ }} mismatch!") << lines;
}

TEST_F(InlineWriter, PutsValuesInPlaceOfPlaceholders) {
  useExpression(L"{{a}} * {{b}}");
  EXPECT_EQ(expressionFor({L"x", L"y2"}), L"(x * y2)");
  // Every use is a fresh one.
  EXPECT_EQ(expressionFor({L"(p + q)", L"{{a}}"}), L"((p + q) * {{a}})");
  useExpression(L"{{a}} * {{a}}");
  EXPECT_EQ(expressionFor({L"x"}), L"(x * x)");
}

TEST_F(InlineWriter, RenamesUniformsWhereThereArePlaceholders) {
  useExpression(L"{{a}} * scale");
  instance->getUniformOriginal() = {L"scale"};
  instance->getUniformNew() = {L"scale_n0"};
  EXPECT_EQ(expressionFor({L"x"}), L"(x * scale_n0)");
  useExpression(L"(scale)");
  instance->getUniformOriginal() = {L"scale"};
  instance->getUniformNew() = {L"scale_n0"};
  EXPECT_EQ(expressionFor({}), L"(scale)");
  EXPECT_EQ(expressionFor({L"values", L"are ignored"}), L"(scale)");
}

TEST_F(InlineWriter, DefinesNothing) {
  useExpression(L"{{a}}");
  EXPECT_EQ(definition(), L"");
}

TEST_F(InlineWriter, RefusesAnotherNumberOfValues) {
  useExpression(L"{{a}} * {{b}}");
  WString out;
  for (const Array<WString>& values :
       {Array<WString>{}, Array<WString>{L"x"}, Array<WString>{L"x", L"y", L"z"}})
    EXPECT_EQ(messageOf([&] { profile->writeFunctionCall(out, context, *instance, values, {}); }),
              L"Inline body parameter count is not equal to the node input count!");
  EXPECT_EQ(instance->getNumOutputs(), 0u);
}

TEST_F(InlineWriter, KeepsTheCallsOfTheBodyAsItWasRead) {
  useExpression(L"sfg_isConnected(x) ? sfg_worldNormal : sfg_shader(t, {{a}})");
  EXPECT_TRUE(profile->stateVariables().contains(StateVariable_worldNormal));
  ASSERT_EQ(profile->getBodyBuiltinFunctions().size(), 1u);
  EXPECT_EQ(profile->getBodyBuiltinFunctions()[0].range.view(), L"sfg_isConnected(x)");
  Array<BuiltinFunction> uses;
  ASSERT_TRUE(profile->GetShaderFunctions(L"t", uses));
  EXPECT_EQ(uses[0].range.view(), L"sfg_shader(t, {{a}})");
}

TEST_F(InlineWriter, RefusesAnExpressionThatDoublesAtEveryLevel) {
  useExpression(L"{{a}} + {{a}}");
  WString value(L"x");
  std::wstring message = L"(nothing thrown)";
  std::clock_t built = 0;
  std::clock_t refused = 0;
  for (int level = 0; level < 100 && message == L"(nothing thrown)"; ++level) {
    Array<WString> values;
    values.push_back(std::move(value));
    built = refused;
    refused = TolmSDK::test::processorTime([&] { message = messageOf([&] { call(values, {}); }); });
    value = instance->getOutputName(0);
  }
  EXPECT_EQ(message, L"sfgError : the generated code is too large!");
  EXPECT_GT(value.size(), kMaximumTextLength / 4);
  EXPECT_LE(value.size(), kMaximumTextLength);
  EXPECT_LT(refused, built);  // which is half as long
}

TEST_F(InlineWriter, ReplacesManyPlaceholdersInTimeInProportionToThem) {
  const auto expressionOf = [](std::size_t count, std::wstring_view placeholder) {
    WString text;
    for (std::size_t i = 0; i < count; ++i) text += formatted(placeholder, i);
    return text;
  };
  const double growth = TolmSDK::test::timeGrowth(1000, [&](std::size_t count) {
    useExpression(std::wstring(expressionOf(count, L"{{a%Iu}};")));
    Array<WString> values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(formatted(L"v%Iu", i));
    WString expression;
    const std::clock_t time = TolmSDK::test::processorTime([&] { expression = expressionFor(values); });
    EXPECT_EQ(expression, L"(" + expressionOf(count, L"v%Iu;") + L")");
    return time;
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

TEST_F(InlineWriter, RefusesManyPlaceholdersOfLongValues) {
  constexpr std::size_t kCount = 4096;
  WString text;
  for (std::size_t i = 0; i < kCount; ++i) text += formatted(L"{{a%Iu}}", i);
  useExpression(std::wstring(text));
  Array<WString> values(kCount, WString(kMaximumTextLength / kCount, L'v'));
  EXPECT_EQ(messageOf([&] { expressionFor(values); }), L"sfgError : the generated code is too large!");
  values[7].resize(values[7].size() - 2);  // the parentheses
  EXPECT_EQ(expressionFor(values).size(), kMaximumTextLength);
}

TEST_F(InlineWriter, MeasuresOverlappingRulesExactly) {
  // The uniform "a" stands inside the placeholder too, where it is not replaced: what is written fits.
  useExpression(L"{{a}} a");
  instance->getUniformOriginal() = {L"a"};
  instance->getUniformNew() = {WString(kMaximumTextLength / 2, L'u')};
  EXPECT_EQ(expressionFor({WString(100, L'v')}).size(), 100 + 3 + kMaximumTextLength / 2);
  EXPECT_EQ(messageOf([&] { expressionFor({WString(kMaximumTextLength / 2, L'v')}); }),
            L"sfgError : the generated code is too large!");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
