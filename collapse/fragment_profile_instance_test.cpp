#include "sfg/fragment_profile_instance.h"

#include <gtest/gtest.h>

#include "sfg/shader_collapse_context.h"
#include "sfg/size_limit.h"
#include "tests/support/cost.h"
#include "tests/support/test_graph.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

struct ProfileInstance : ::testing::Test {
  ProfileInstance() { context.initialize(scene.language, scene.environment, scene.graph, scene.options); }

  /// A member `name` of the graph; its first profile is the one of the instance.
  const AShaderFragment* make(std::wstring_view function, const WString& name = L"mix3",
                              const WString& shortname = L"2") {
    const AShaderFragment* fragment = scene.addFunction(name, function);
    EXPECT_TRUE(instance.create(scene.language.get(), fragment, profileOf(*fragment), shortname));
    return fragment;
  }
  static const AShaderFragmentProfile* profileOf(const AShaderFragment& fragment) {
    return dynamic_cast<const AShaderFragmentProfile*>(fragment.getProfile(0));
  }
  std::string call() {
    WString text;
    EXPECT_TRUE(instance.writeFunctionCall(text, context, {}, {}));
    return toUtf8(text);
  }

  test::TestScene scene;
  AShaderCollapseContext context;
  FragmentProfileInstance instance;
};

constexpr std::wstring_view kBlend = L"void blend(float a, float B, out float3 x, out float y)\n{\nx = a;\n}";

TEST_F(ProfileInstance, TakesNamesThatEndInItsShortName) {
  make(kBlend);
  EXPECT_EQ(instance.getFunctionName(), L"blend2");
  EXPECT_EQ(instance.getProfilename(), L"default");
  EXPECT_EQ(instance.getProfileShortname(), L"2");
  ASSERT_EQ(instance.getNumOutputs(), 2u);
  EXPECT_EQ(instance.getOutputName(0), L"result_mix3_02");
  EXPECT_EQ(instance.getOutputName(1), L"result_mix3_12");
  EXPECT_EQ(instance.getOutputType(0), L"float3");
  EXPECT_EQ(instance.getOutputKey(0), L"float3 result_mix3_02");
  EXPECT_EQ(instance.getOutputKey(1), L"float result_mix3_12");
  EXPECT_FALSE(instance.isInlineProfile());
  EXPECT_FALSE(instance.requiresCurrentLight());
  EXPECT_EQ(instance.getLanguage(), scene.language.get());
}

TEST_F(ProfileInstance, TakesItsNamesOverThoseItHadBefore) {
  EXPECT_TRUE(instance.getFunctionName().empty());
  EXPECT_TRUE(instance.getOutputNames().empty());
  instance.setNumOutputs(3);
  instance.setOutput(1, L"int", L"old");
  EXPECT_EQ(instance.getOutputKey(1), L"int old");
  instance.setFunctionName(L"old");
  make(kBlend);
  EXPECT_EQ(instance.getFunctionName(), L"blend2");
  ASSERT_EQ(instance.getNumOutputs(), 2u);
  EXPECT_EQ(instance.getOutputNames(), (Array<WString>{L"result_mix3_02", L"result_mix3_12"}));
  EXPECT_EQ(instance.getOutputKey(1), L"float result_mix3_12");
}

TEST_F(ProfileInstance, AppendsTheNamesItAnswers) {
  make(kBlend);
  for (int round = 0; round < 2; ++round) {  // before and after texts of their own are made
    WString text;
    instance.appendFunctionName(text);
    text += L' ';
    instance.appendOutputName(text, 1);
    EXPECT_EQ(text, L"blend2 result_mix3_12");
    EXPECT_EQ(instance.getFunctionName() + L" " + instance.getOutputName(1), text);
  }
  instance.setFunctionName(L"other");
  instance.setOutput(1, L"float", L"y");
  WString text;
  instance.appendFunctionName(text);
  instance.appendOutputName(text, 1);
  EXPECT_EQ(text, L"othery");
}

TEST_F(ProfileInstance, IsCalledAfterTheProfileWithoutAShortName) {
  make(L"void f(out float r)\n{\n}", L"n", L"");
  EXPECT_EQ(instance.getFunctionName(), L"fdefault");
  EXPECT_EQ(instance.getProfileShortname(), L"default");
  EXPECT_EQ(instance.getOutputName(0), L"result_n_0default");
}

TEST_F(ProfileInstance, StartsEmpty) {
  EXPECT_FALSE(instance.isInitialized());
  EXPECT_EQ(instance.getNumOutputs(), 0u);
  EXPECT_TRUE(instance.getProfilename().empty());
  EXPECT_EQ(instance.GetInputTextParameterIndex(L"a"), kNotFound);
  EXPECT_EQ(instance.GetOutputTextParameterIndex(L"a"), kNotFound);
  EXPECT_FALSE(instance.IsShaderInput(0));
  EXPECT_TRUE(instance.getShaderReplacePattern().empty());
  EXPECT_TRUE(instance.getUniformReplacePattern().empty());
  EXPECT_TRUE(instance.writeRequirements(context.getResultProfile(), context));
  EXPECT_TRUE(instance.writeDefinition(context));
  EXPECT_EQ(call(), "");
}

TEST_F(ProfileInstance, IsCreatedOnce) {
  const AShaderFragment* fragment = make(kBlend);
  try {
    instance.create(scene.language.get(), fragment, profileOf(*fragment), L"1");
    FAIL();
  } catch (const Exception& exception) {
    EXPECT_STREQ(exception.what(), "Cannot initialize fragment (mix3) profile twice!");
  }
}

TEST_F(ProfileInstance, RefusesNullArgumentsAndCountsAsCreated) {
  const AShaderFragment* fragment = scene.addFunction(L"n", kBlend);
  const AShaderFragmentProfile* profile = profileOf(*fragment);
  FragmentProfileInstance noLanguage;
  FragmentProfileInstance noFragment;
  FragmentProfileInstance noProfile;
  EXPECT_FALSE(noLanguage.create(nullptr, fragment, profile, L"1"));
  EXPECT_FALSE(noFragment.create(scene.language.get(), nullptr, profile, L"1"));
  EXPECT_FALSE(noProfile.create(scene.language.get(), fragment, nullptr, L"1"));
  EXPECT_TRUE(noLanguage.isInitialized());
  EXPECT_THROW(noLanguage.create(scene.language.get(), fragment, profile, L"1"), Exception);
}

TEST_F(ProfileInstance, FindsParametersByTheirExactName) {
  make(kBlend);
  EXPECT_EQ(instance.GetInputTextParameterIndex(L"B"), 1u);
  EXPECT_EQ(instance.GetInputTextParameterIndex(L"b"), kNotFound);
  EXPECT_EQ(instance.GetInputTextParameterIndex(L"x"), kNotFound);
  EXPECT_EQ(instance.GetOutputTextParameterIndex(L"y"), 1u);
  EXPECT_EQ(instance.GetOutputTextParameterIndex(L"a"), kNotFound);
}

TEST_F(ProfileInstance, FindsTheShaderFunctionsOfAnInput) {
  make(L"void f(float a, float b, out float r)\n{\nsfg_shader(b, x, 1);\nsfg_shader(b, y, 2);\n}");
  Array<BuiltinFunction> uses;
  EXPECT_FALSE(instance.GetShaderFunctions(0, uses));
  EXPECT_TRUE(uses.empty());
  EXPECT_TRUE(instance.GetShaderFunctions(1, uses));
  ASSERT_EQ(uses.size(), 2u);
  EXPECT_EQ(uses[1].range.view(), L"sfg_shader(b, y, 2)");
  EXPECT_TRUE(instance.IsShaderInput(1));
  EXPECT_FALSE(instance.IsShaderInput(0));
  EXPECT_FALSE(instance.IsShaderInput(2)) << "no such input";
  EXPECT_FALSE(instance.IsShaderInput(kNotFound));
}

TEST_F(ProfileInstance, RemovesShaderCallsThatNobodyReplaces) {
  make(L"void f(float a, out float r)\n{\nsfg_shader(a, x, 1);\n}");
  ASSERT_EQ(instance.getShaderReplacePattern().getKeywords().size(), 1u);
  EXPECT_EQ(instance.getShaderReplacePattern().getKeywords()[0], L"sfg_shader(a, x, 1)");
  EXPECT_EQ(instance.getShaderReplacePattern().getReplacements()[0], L"");
}

TEST_F(ProfileInstance, FillsTheUniformPatternOnce) {
  make(kBlend);
  EXPECT_TRUE(instance.getUniformReplacePattern().empty());
  instance.getUniformOriginal().push_back(L"k");
  instance.getUniformNew().push_back(L"kmix3");
  ASSERT_EQ(instance.getUniformReplacePattern().getKeywords().size(), 1u);
  instance.getUniformOriginal().push_back(L"late");
  instance.getUniformNew().push_back(L"latemix3");
  EXPECT_EQ(instance.getUniformReplacePattern().getKeywords().size(), 1u);
}

// Built-in calls.

TEST_F(ProfileInstance, KnowsWhatIsConnected) {
  AShaderFragment* source = scene.addFunction(L"s", L"void s(out float r)\n{\n}");
  AShaderFragment* fragment = scene.addFunction(
      L"n",
      L"void f(float a, float b, float c, out float r)\n{\n"
      L"sfg_isConnected(a) sfg_isConnected(b) sfg_isConnected(c) sfg_isConnected(A) sfg_isConnected()\n}");
  scene.graph->addInput(TypeID_float, L"g");
  fragment->setInputConnection(L"a", source, L"r");
  fragment->setInputConnection(L"b", L"g");
  ASSERT_TRUE(instance.create(scene.language.get(), fragment, profileOf(*fragment), L"1"));
  const Array<WString> expected{L"true", L"true", L"false", L"false", L"false"};
  EXPECT_EQ(instance.getBuiltinFunctionValueInBody(), expected);
  EXPECT_TRUE(instance.getBuiltinFunctionValueInPredefine().empty());
}

TEST_F(ProfileInstance, KnowsWhatIsAFinalOutput) {
  AShaderFragment* fragment = scene.addFunction(
      L"n", L"void f(float a, out float x, out float y)\n{\n"
            L"sfg_isFinalOutput(x) sfg_isFinalOutput(y) sfg_isFinalOutput(a) sfg_isFinalOutput(z)\n}");
  scene.output(L"color", TypeID_float, fragment, 1);
  ASSERT_TRUE(instance.create(scene.language.get(), fragment, profileOf(*fragment), L"1"));
  const Array<WString> expected{L"false", L"true", L"false", L"false"};
  EXPECT_EQ(instance.getBuiltinFunctionValueInBody(), expected);
}

TEST_F(ProfileInstance, HasNoFinalOutputOutsideOfAGraph) {
  const auto fragment = scene.instance(
      *test::loadFragment(L"f", test::functionJson(L"void f(out float x)\n{\nsfg_isFinalOutput(x)\n}")),
      L"n");
  ASSERT_TRUE(instance.create(scene.language.get(), fragment.get(), profileOf(*fragment), L"1"));
  EXPECT_EQ(instance.getBuiltinFunctionValueInBody(), Array<WString>{L"false"});
}

/// A function with so many inputs and outputs that asks for each of them.
WString functionOfManyPorts(std::size_t count) {
  WString parameters;
  WString body;
  for (std::size_t i = 0; i < count; ++i) {
    parameters += formatted(L"%sfloat a%Iu, out float r%Iu", i == 0 ? L"" : L", ", i, i);
    body += formatted(L"sfg_isConnected(a%Iu) sfg_isFinalOutput(r%Iu) ", i, i);
  }
  return L"void f(" + parameters + L")\n{\n" + body + L"\n}";
}

TEST_F(ProfileInstance, KnowsManyPorts) {
  constexpr std::size_t kCount = 40;
  AShaderFragment* fragment = scene.addFunction(L"n", functionOfManyPorts(kCount));
  AShaderFragment* source = scene.addFunction(L"s", L"void s(out float r)\n{\n}");
  Array<WString> expected;
  for (std::size_t i = 0; i < kCount; ++i) {
    if (i % 3 == 0) fragment->setInputConnection(i, source, 0);
    if (i % 5 == 0) scene.output(L"o" + itos(static_cast<long long>(i)), TypeID_float, fragment, i);
    expected.push_back(i % 3 == 0 ? L"true" : L"false");
    expected.push_back(i % 5 == 0 ? L"true" : L"false");
  }
  ASSERT_TRUE(instance.create(scene.language.get(), fragment, profileOf(*fragment), L"1"));
  EXPECT_EQ(instance.getBuiltinFunctionValueInBody(), expected);
}

TEST_F(ProfileInstance, AsksForManyPortsInTimeInProportionToThem) {
  const auto growth = [&](std::size_t count) {
    AShaderFragment* fragment = scene.addFunction(L"n", functionOfManyPorts(count));
    for (std::size_t i = 0; i < count; ++i) scene.output(L"o", TypeID_float, fragment, i);
    return [this, fragment] {
      FragmentProfileInstance other;
      EXPECT_TRUE(other.create(scene.language.get(), fragment, profileOf(*fragment), L"1"));
    };
  };
  const auto few = growth(1000);
  const auto many = growth(16000);
  EXPECT_LT(TolmSDK::test::costGrowth(1, [&](std::size_t size) { size == 1 ? few() : many(); }),
            TolmSDK::test::kLinearGrowth);
}

TEST_F(ProfileInstance, KnowsTheFinalOutputsOfManyFragmentsInTimeInProportionToThem) {
  const double growth = TolmSDK::test::timeGrowth(4000, [](std::size_t count) {
    test::TestScene many;
    const auto original =
        test::loadFragment(L"f", test::functionJson(L"void f(out float x)\n{\nsfg_isFinalOutput(x)\n}"));
    Array<AShaderFragment*> members;
    for (std::size_t i = 0; i < count; ++i) {
      members.push_back(many.add(*original, formatted(L"n%Iu", i)));
      many.output(formatted(L"o%Iu", i), TypeID_float, members.back());
    }
    return TolmSDK::test::processorTime([&] {
      for (const AShaderFragment* member : members) {
        FragmentProfileInstance other;
        EXPECT_TRUE(other.create(many.language.get(), member, profileOf(*member), L"1"));
        EXPECT_EQ(other.getBuiltinFunctionValueInBody(), Array<WString>{L"true"});
      }
    });
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

/// A profile whose writers fail.
class FailingProfile : public AShaderFragmentProfile {
public:
  FailingProfile() : AShaderFragmentProfile(EShaderFragmentProfileMode::Function) {}
  bool writeDefinition(CodeSnippetInstance&, AShaderCollapseContext&,
                       FragmentProfileInstance&) const override {
    return false;
  }
  bool writeFunctionCall(WString&, AShaderCollapseContext&, FragmentProfileInstance&, const Array<WString>&,
                         const Array<WString>&) const override {
    return false;
  }

protected:
  bool loadImplementation(const IObjectDataNode*) override { return true; }
};

TEST_F(ProfileInstance, PassesAWritersFailureOn) {
  const auto profile = makeRef<FailingProfile>();
  const auto fragment = makeRef<AShaderFragment>(L"n");
  ASSERT_TRUE(instance.create(scene.language.get(), fragment.get(), profile.get(), L"1"));
  WString text;
  EXPECT_FALSE(instance.writeDefinition(context));
  EXPECT_FALSE(instance.writeFunctionCall(text, context, {}, {}));
}

// Outputs.

TEST_F(ProfileInstance, DeclaresItsOutputsOnce) {
  make(kBlend);
  WString text;
  EXPECT_TRUE(instance.declareOutputs(text));
  EXPECT_EQ(text, L"    float3 result_mix3_02;\n    float result_mix3_12;\n");
  WString other;
  EXPECT_TRUE(instance.declareOutputs(other));
  EXPECT_EQ(other, L"");
}

TEST_F(ProfileInstance, PassesOverAnOutputWithoutAType) {
  make(kBlend);
  instance.setOutput(0, L"", L"(a + b)");
  EXPECT_EQ(instance.getOutputKey(0), L" (a + b)");
  WString text;
  EXPECT_TRUE(instance.declareOutputs(text));
  EXPECT_EQ(text, L"    float result_mix3_12;\n");
}

TEST_F(ProfileInstance, CannotSpecifyAnOutputWithoutAType) {
  make(kBlend);
  instance.setOutput(1, L"", L"(a + b)");
  WString text;
  Array<WString> values;
  EXPECT_FALSE(instance.declareUnspecifiedOutputs(text, values));
  EXPECT_EQ(text, L"    float3 result_mix3_02;\n") << "the outputs in front of it";
}

TEST_F(ProfileInstance, DeclaresOnlyOutputsWithoutAValue) {
  make(kBlend);
  WString text;
  Array<WString> values{L"color"};
  EXPECT_TRUE(instance.declareUnspecifiedOutputs(text, values));
  EXPECT_EQ(text, L"    float result_mix3_12;\n");
  EXPECT_EQ(values, (Array<WString>{L"color", L"result_mix3_12"}));
  // They count as declared, all of them.
  Array<WString> second{L"", L"", L"surplus"};
  text.clear();
  EXPECT_TRUE(instance.declareUnspecifiedOutputs(text, second));
  EXPECT_TRUE(instance.declareOutputs(text));
  EXPECT_EQ(text, L"");
  EXPECT_EQ(second, (Array<WString>{L"", L""}));
}

TEST_F(ProfileInstance, AddsOutputsWithoutTypeNameAndKey) {
  make(kBlend);
  instance.setOutput(0, L"int", L"x");
  instance.setNumOutputs(4);
  const auto expectOutput = [&](std::size_t index, const wchar_t* type, const wchar_t* name,
                                const wchar_t* key) {
    EXPECT_EQ(instance.getOutputType(index), type) << index;
    EXPECT_EQ(instance.getOutputName(index), name) << index;
    EXPECT_EQ(instance.getOutputKey(index), key) << index;
  };
  ASSERT_EQ(instance.getNumOutputs(), 4u);
  expectOutput(0, L"int", L"x", L"int x");
  expectOutput(1, L"float", L"result_mix3_12", L"float result_mix3_12");
  expectOutput(2, L"", L"", L"");
  expectOutput(3, L"", L"", L"");
  instance.setOutput(3, L"float2", L"uv");
  expectOutput(2, L"", L"", L"");
  expectOutput(3, L"float2", L"uv", L"float2 uv");
  instance.setOutput(2, L"", L"");
  expectOutput(2, L"", L"", L" ");
  expectOutput(3, L"float2", L"uv", L"float2 uv");
}

TEST_F(ProfileInstance, ForgetsOutputsThatWereTakenAway) {
  for (const bool areSet : {false, true}) {
    FragmentProfileInstance blend;
    const AShaderFragment* fragment = scene.addFunction(areSet ? L"set" : L"own", kBlend);
    ASSERT_TRUE(blend.create(scene.language.get(), fragment, profileOf(*fragment), L"2"));
    if (areSet) {
      blend.setOutput(0, L"int", L"x");
      blend.setOutput(1, L"int", L"y");
    }
    for (const std::size_t left : {1u, 0u}) {
      blend.setNumOutputs(left);
      blend.setNumOutputs(2);
      for (std::size_t i = left; i < 2; ++i) {
        EXPECT_EQ(blend.getOutputType(i), L"");
        EXPECT_EQ(blend.getOutputName(i), L"");
        EXPECT_EQ(blend.getOutputKey(i), L"");
      }
    }
    // Also when the type is set to what the profile has there, or to none.
    blend.setOutput(1, L"float", L"y");
    EXPECT_EQ(blend.getOutputKey(1), L"float y");
    blend.setOutput(0, L"", L"e");
    EXPECT_EQ(blend.getOutputKey(0), L" e");
    EXPECT_EQ(blend.getOutputKey(1), L"float y");
    WString text;
    EXPECT_TRUE(blend.declareOutputs(text));
    EXPECT_EQ(text, L"    float y;\n");
  }
}

// Writers.

TEST_F(ProfileInstance, WritesItsCallOncePerRun) {
  make(L"void f(out float r)\n{\n}");
  EXPECT_EQ(call(), "    f2();\n");
  EXPECT_EQ(call(), "");
}

TEST_F(ProfileInstance, WritesTheCallOfALightDependentProfileOncePerLight) {
  make(L"void f(out float r)\n{\nr = sfg_currentLight.x;\n}");
  EXPECT_TRUE(instance.requiresCurrentLight());
  context.setCurrentLight(L"L", L"l");
  const std::string text = "    f2(\n        l);\n";
  context.setActiveLightIndex(3);
  EXPECT_EQ(call(), text);
  EXPECT_EQ(call(), "");
  context.setActiveLightIndex(0);
  EXPECT_EQ(call(), text);
  EXPECT_EQ(call(), "");
  context.setActiveLightIndex(3);
  EXPECT_EQ(call(), "");
}

TEST_F(ProfileInstance, RefusesMoreLightsThanCanBeWritten) {
  make(L"void f(out float r)\n{\nr = sfg_currentLight.x;\n}");
  WString text;
  for (const std::size_t light : {kNotFound, kMaximumTextLength + 1}) {
    context.setActiveLightIndex(light);
    EXPECT_THROW(instance.writeFunctionCall(text, context, {}, {}), Exception);
  }
  EXPECT_TRUE(text.empty());
}

TEST_F(ProfileInstance, WritesEveryCallInsideAShaderFunctionCallAndCountsNone) {
  for (const std::wstring_view body :
       {L"void f(out float r)\n{\n}", L"void f(out float r)\n{\nsfg_currentLight\n}"}) {
    FragmentProfileInstance inside;
    const AShaderFragment* fragment =
        scene.addFunction(L"n" + itos(static_cast<long long>(body.size())), body);
    ASSERT_TRUE(inside.create(scene.language.get(), fragment, profileOf(*fragment), L"1"));
    WString text;
    inside.beginShaderFunctionCall();
    EXPECT_TRUE(inside.writeFunctionCall(text, context, {}, {}));
    const WString once = text;
    EXPECT_NE(once, L"");
    EXPECT_TRUE(inside.writeFunctionCall(text, context, {}, {}));
    EXPECT_EQ(text, once + once);
    inside.endShaderFunctionCall();
    EXPECT_TRUE(inside.writeFunctionCall(text, context, {}, {}));
    EXPECT_EQ(text, once + once + once);
    EXPECT_TRUE(inside.writeFunctionCall(text, context, {}, {}));
    EXPECT_EQ(text, once + once + once);
  }
}

TEST_F(ProfileInstance, WritesAnInlineExpressionAtEveryUse) {
  const AShaderFragment* fragment = scene.addInline(L"n", L"{{a}} * 2", {L"a"});
  ASSERT_TRUE(instance.create(scene.language.get(), fragment, profileOf(*fragment), L"1"));
  EXPECT_TRUE(instance.isInlineProfile());
  EXPECT_EQ(instance.getNumOutputs(), 0u);
  WString text;
  EXPECT_TRUE(instance.writeFunctionCall(text, context, {L"x"}, {}));
  EXPECT_EQ(instance.getOutputName(0), L"(x * 2)");
  EXPECT_TRUE(instance.writeFunctionCall(text, context, {L"y"}, {}));
  EXPECT_EQ(instance.getOutputName(0), L"(y * 2)");
  EXPECT_EQ(instance.getOutputType(0), L"");
  EXPECT_EQ(text, L"");
}

TEST_F(ProfileInstance, WritesItsDefinitionOnceUnderANameOfItsOwn) {
  make(L"void f(out float r)\n{\nr = 1;\n}");
  EXPECT_TRUE(instance.writeDefinition(context));
  EXPECT_TRUE(instance.writeDefinition(context));
  EXPECT_EQ(context.getResultProfile()->predefines(), L"void f2(\n    out float r)\n{\n\tr = 1;\n}\n");
}

TEST_F(ProfileInstance, TakesTheNameItsFunctionWasWrittenUnder) {
  make(L"void f(out float r)\n{\nr = 1;\n}");
  FragmentProfileInstance other;
  const AShaderFragment* fragment = scene.addFunction(L"m", L"void f(out float r)\n{\nr = 2;\n}");
  ASSERT_TRUE(other.create(scene.language.get(), fragment, profileOf(*fragment), L"2"));
  EXPECT_TRUE(instance.writeDefinition(context));
  EXPECT_TRUE(other.writeDefinition(context));
  EXPECT_EQ(instance.getFunctionName(), L"f2");
  EXPECT_EQ(other.getFunctionName(), L"f21");
}

TEST_F(ProfileInstance, WritesItsRequirementsOnce) {
  const auto loaded = test::loadFragment(
      L"f",
      test::functionJson(L"void f(float a, out float r)\n{\nr = g(state.normal.x);\n}",
                         LR"x(,"predefine":["float g(float v) { return sfg_isConnected(a) ? v : 0; }"],)x"
                         LR"x("includes":["sfg_math.h"],"stateVariables":["tint"])x"));
  AShaderFragment* fragment = scene.add(*loaded, L"n");
  ASSERT_TRUE(instance.create(scene.language.get(), fragment, profileOf(*fragment), L"1"));
  AShaderFragmentProfile* result = context.getResultProfile();
  EXPECT_TRUE(instance.writeRequirements(result, context));
  EXPECT_TRUE(instance.writeRequirements(result, context));
  EXPECT_EQ(toUtf8(result->predefines()), "float g(float v) { return false ? v : 0; }\n");
  EXPECT_EQ(result->includes(), Set<WString>{L"sfg_math.h"});
  EXPECT_EQ(result->stateVariables(), Set<UString>{UString(L"state.normal")});
  EXPECT_EQ(result->customStateVariables(), Set<WString>{L"tint"});
}

/// A function profile that tells which rules it finds when its call is written.
class TellingProfile : public AShaderFragmentProfileFunction {
public:
  bool writeFunctionCall(WString& out, AShaderCollapseContext&, FragmentProfileInstance& instance,
                         const Array<WString>&, const Array<WString>&) const override {
    for (const KeywordReplacePattern* pattern :
         {&instance.getKeywordReplacePattern(), &instance.getUniformReplacePattern(),
          &instance.getShaderReplacePattern()}) {
      for (std::size_t i = 0; i < pattern->getKeywords().size(); ++i)
        out += pattern->getKeywords()[i] + L"=" + pattern->getReplacements()[i] + L";";
    }
    return true;
  }
};

TEST_F(ProfileInstance, KeepsItsPatternsBehindTheWrites) {
  const auto profile = makeRef<TellingProfile>();
  profile->setFunctionPrototype(L"void f()");
  profile->setFunctionBody(L"");
  const auto fragment = makeRef<AShaderFragment>(L"n");
  ASSERT_TRUE(instance.create(scene.language.get(), fragment.get(), profile.get(), L"1"));
  instance.getUniformOriginal() = {L"u"};
  instance.getUniformNew() = {L"un"};
  const KeywordReplacePattern& uniforms = instance.getUniformReplacePattern();
  KeywordReplacePattern& shaders = instance.getShaderReplacePattern();
  shaders.addReplacePattern(WString(L"s"), WString(L"t"));
  KeywordReplacePattern& keywords = instance.getKeywordReplacePattern();
  EXPECT_TRUE(instance.writeRequirements(context.getResultProfile(), context));
  EXPECT_TRUE(instance.writeDefinition(context));
  keywords.addReplacePattern(WString(L"k"), WString(L"l"));
  EXPECT_EQ(&instance.getKeywordReplacePattern(), &keywords);
  EXPECT_EQ(&instance.getUniformReplacePattern(), &uniforms);
  EXPECT_EQ(&instance.getShaderReplacePattern(), &shaders);
  EXPECT_EQ(call(), "k=l;u=un;s=t;");
}

TEST_F(ProfileInstance, RenamesInTheDefinitionWhatItsRequirementsHadToRename) {
  const auto helperOf = [&](const wchar_t* name, const wchar_t* value) {
    const WString predefine = WString(LR"(,"predefine":["float help() { return )") + value + LR"(; }"])";
    return scene.add(*test::loadFragment(name, test::functionJson(WString(L"void ") + name +
                                                                      L"(out float r)\n{\nr = help();\n}",
                                                                  predefine)),
                     name);
  };
  const AShaderFragment* first = helperOf(L"f", L"1");
  const AShaderFragment* second = helperOf(L"g", L"2");
  FragmentProfileInstance other;
  ASSERT_TRUE(instance.create(scene.language.get(), first, profileOf(*first), L"1"));
  ASSERT_TRUE(other.create(scene.language.get(), second, profileOf(*second), L"1"));
  for (FragmentProfileInstance* each : {&instance, &other}) {
    EXPECT_TRUE(each->writeRequirements(context.getResultProfile(), context));
    EXPECT_TRUE(each->writeDefinition(context));
  }
  EXPECT_EQ(toUtf8(context.getResultProfile()->predefines()), R"(float help() { return 1; }
void f1(
    out float r)
{
	r = help();
}
float help1() { return 2; }
void g1(
    out float r)
{
	r = help1();
}
)");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
