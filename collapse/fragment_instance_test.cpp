#include "sfg/fragment_instance.h"

#include <gtest/gtest.h>

#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_profile_inline.h"
#include "tests/support/test_graph.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;

constexpr std::wstring_view kOne = L"void one(out float result)\n{\nresult = 1.0;\n}";
constexpr std::wstring_view kAdd = L"void add(float a, float b, out float result)\n{\nresult = a + b;\n}";

struct Instances : ::testing::Test {
  /// The instance of a member, made as a collapse makes it.
  FragmentInstance& made(const AShaderFragment* fragment) {
    FragmentInstance& instance = context.getFragmentInstance(fragment);
    EXPECT_TRUE(instance.create(context, scene.language.get(), fragment));
    return instance;
  }
  void SetUp() override { context.initialize(scene.language, scene.environment, scene.graph, scene.options); }

  std::string body() const { return toUtf8(context.getResultProfile()->getFunctionBody()); }
  std::string uniforms() const {
    WString names;
    for (std::size_t i = 0; i < context.getResult()->getNumUniforms(); ++i) {
      names += context.getResult()->getUniform(i)->getName() + L";";
    }
    return toUtf8(names);
  }
  Array<WString> inputValues(FragmentInstance& instance) {
    Array<WString> values;
    EXPECT_TRUE(instance.buildUserInputValues(context, values));
    return values;
  }

  TestScene scene;
  AShaderCollapseContext context;
};

// Creation.

TEST_F(Instances, AreCreatedOnce) {
  const AShaderFragment* fragment = scene.addFunction(L"n", kAdd);
  FragmentInstance instance;
  EXPECT_FALSE(instance.isInitialized());
  EXPECT_TRUE(instance.createNoInputUniform(scene.language.get(), fragment));
  EXPECT_TRUE(instance.isInitialized());
  EXPECT_EQ(instance.getShaderFragment(), fragment);
  EXPECT_FALSE(instance.createNoInputUniform(scene.language.get(), fragment));
  EXPECT_FALSE(instance.create(context, scene.language.get(), fragment));
}

TEST_F(Instances, RefuseNullArguments) {
  const AShaderFragment* fragment = scene.addFunction(L"n", kAdd);
  FragmentInstance noLanguage;
  FragmentInstance noFragment;
  EXPECT_FALSE(noLanguage.createNoInputUniform(nullptr, fragment));
  EXPECT_FALSE(noFragment.create(context, scene.language.get(), nullptr));
  EXPECT_TRUE(noFragment.isInitialized());
  EXPECT_EQ(noFragment.getShaderFragment(), nullptr);
}

TEST_F(Instances, AnswerFalseWhenTheyWereNeverCreated) {
  FragmentInstance instance;
  Array<WString> values;
  KeywordReplacePattern pattern;
  EXPECT_FALSE(instance.setActiveProfile(context, L"default", 100.0f));
  EXPECT_FALSE(instance.safeEvaluate(context));
  EXPECT_FALSE(instance.accmulateEvaluate(context));
  EXPECT_FALSE(instance.evaluate(context, values));
  EXPECT_FALSE(instance.evaluateShader(context, {}, pattern));
  EXPECT_FALSE(instance.buildUserInputValues(context, values));
  EXPECT_FALSE(instance.declareAccumulateOutputs(context));
  EXPECT_FALSE(instance.writeDefinition(context));
  WString text;
  EXPECT_FALSE(instance.writeFunctionCall(text, context, {}, {}));
  EXPECT_TRUE(instance.writeRequirements(context));
  EXPECT_FALSE(instance.requiresCurrentLight());
  instance.setOverrideFunctionName(L"nobody");
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"");
  EXPECT_EQ(body(), "");
}

/// A fragment whose ports can get out of step with its connections.
class BrokenFragment : public AShaderFragment {
public:
  using AShaderFragment::AShaderFragment;
  const Array<ShaderFragmentConnection>& getInputConnections() const override { return connections; }
  Array<ShaderFragmentConnection> connections;
};

TEST_F(Instances, RefuseFragmentsWhoseConnectionsDoNotMatchTheirInputs) {
  const auto fragment = makeRef<BrokenFragment>(L"n");
  fragment->key() = L"broken";
  fragment->addInput(TypeID_float, L"a");
  FragmentInstance instance;
  try {
    instance.createNoInputUniform(scene.language.get(), fragment.get());
    FAIL();
  } catch (const Exception& exception) {
    EXPECT_STREQ(exception.what(),
                 "Invalid fragment (input connection count not equal to input parameter count): broken");
  }
}

TEST_F(Instances, MakeUniformNamesUnique) {
  AShaderFragment* fragment = scene.addFunction(L"mix3", L"void f(out float r)\n{\nr = color * colors;\n}");
  fragment->addUniform(makeRef<AParameter>(TypeID_fvec3, L"color").get());
  FragmentInstance& instance = made(fragment);
  EXPECT_TRUE(instance.writeRequirements(context));
  EXPECT_TRUE(instance.writeRequirements(context));
  EXPECT_EQ(uniforms(), "colormix3;");
  EXPECT_TRUE(instance.writeDefinition(context));
  EXPECT_EQ(toUtf8(context.getResultProfile()->predefines()),
            "void f1(\n    out float r)\n{\n\tr = colormix3 * colormix3s;\n}\n");
}

TEST_F(Instances, MakeAUniformOfEveryUnconnectedInput) {
  AShaderFragment* fragment = scene.addWithPorts(
      *test::loadFragment(L"read", test::functionJson(L"void read(float2 uv, float k, out float r)\n{\n}")),
      L"tex1", {test::parameter(TypeID_fvec2, L"uv.x.y"), test::parameter(TypeID_float, L"k")},
      {test::parameter(TypeID_float, L"r")});
  FragmentInstance& instance = made(fragment);
  EXPECT_EQ(inputValues(instance), (Array<WString>{L"uv_x_ytex1", L"ktex1"}));
  instance.writeRequirements(context);
  EXPECT_EQ(uniforms(), "uv_x_ytex1;ktex1;");
}

TEST_F(Instances, MakeSamplerExpressions) {
  struct Case {
    TypeID type;
    const wchar_t* value;
  };
  const Case cases[] = {
      {TypeID_sampler1D, L"sfg_make_sampler1D(envn0, sampler_envn0)"},
      {TypeID_sampler2D, L"sfg_make_sampler2D(envn1, sampler_envn1)"},
      {TypeID_sampler3D, L"sfg_make_sampler3D(envn2, sampler_envn2)"},
      {TypeID_samplerCube, L"sfg_make_samplerCube(envn3, sampler_envn3)"},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    AShaderFragment* fragment = scene.addWithPorts(
        *test::loadFragment(L"f", test::functionJson(L"void f(sfg_sampler2D env, out float r)\n{\n}")),
        L"n" + itos(static_cast<long long>(i)), {test::parameter(cases[i].type, L"env")}, {});
    FragmentInstance& instance = made(fragment);
    EXPECT_EQ(inputValues(instance), Array<WString>{cases[i].value});
    context.getResultProfile()->includes().clear();
    instance.writeRequirements(context);
    EXPECT_EQ(context.getResultProfile()->includes(), Set<WString>{L"sfg_samplers.h"});
  }
}

TEST_F(Instances, TakeAConstantThatTheOptionsHave) {
  AValue value(TypeID_fvec2);
  value.set(1, 0.5);
  scene.options->constants[L"known"] = value;
  scene.options->constants[L"plain"] = value;
  AShaderFragment* fragment = scene.addWithPorts(
      *test::loadFragment(L"f",
                          test::functionJson(L"void f(float2 a, float2 b, float2 c, out float r)\n{\n}")),
      L"n",
      {test::parameter(TypeID_fvec2, L"known", AParameter::kConstantFlag),
       test::parameter(TypeID_fvec2, L"unknown", AParameter::kConstantFlag),
       test::parameter(TypeID_fvec2, L"plain")},
      {});
  FragmentInstance& instance = made(fragment);
  EXPECT_EQ(inputValues(instance), (Array<WString>{L"float2(0.0, 0.5)", L"unknownn", L"plainn"}));
  instance.writeRequirements(context);
  EXPECT_EQ(uniforms(), "unknownn;plainn;");
}

TEST_F(Instances, TakeGraphInputsByName) {
  scene.graph->addInput(TypeID_float, L"g");
  AShaderFragment* fragment = scene.addFunction(L"n", kAdd);
  fragment->setInputConnection(L"b", L"g");
  FragmentInstance& instance = made(fragment);
  EXPECT_EQ(inputValues(instance), (Array<WString>{L"an", L"g"}));
  instance.writeRequirements(context);
  EXPECT_EQ(uniforms(), "an;");
}

TEST_F(Instances, TakeAGraphInputThatDoesNotExistAsUnconnected) {
  scene.graph->addInput(TypeID_float, L"g");
  AShaderFragment* fragment = scene.addFunction(L"n", kAdd);
  fragment->setInputConnection(L"b", L"g");
  const RefPtr<AShaderFragment> orphan(static_cast<AShaderFragment*>(fragment->clone(L"m")));
  FragmentInstance& instance = made(orphan.get());
  EXPECT_EQ(inputValues(instance), (Array<WString>{L"am", L"bm"}));
}

TEST_F(Instances, KeepAUniformForAnInputWhoseSourceTheCodeCalls) {
  AShaderFragment* one = scene.addFunction(L"s", kOne);
  AShaderFragment* caller =
      scene.addFunction(L"n", L"void f(float a, out float r)\n{\nsfg_shader(a, result, r, x, y);\n}");
  caller->setInputConnection(L"a", one, L"result");
  made(one);
  FragmentInstance& instance = made(caller);
  EXPECT_EQ(inputValues(instance), Array<WString>{L"an"});
}

TEST_F(Instances, HaveNoActiveProfileWithoutProfiles) {
  const auto fragment = makeRef<AShaderFragment>(L"n");
  FragmentInstance& instance = made(fragment.get());
  EXPECT_FALSE(instance.writeDefinition(context));
  EXPECT_FALSE(instance.safeEvaluate(context));
}

// Profiles.

struct ProfileChoice : Instances {
  const AShaderFragment* fragment = scene.add(
      *test::loadFragment(
          L"multi",
          test::profilesJson({test::namedFunctionJson(L"glow", L"void glow(out float r)\n{\n}"),
                              test::functionJson(L"void fine(out float r)\n{\n}", LR"(,"lod":100)"),
                              test::functionJson(L"void coarse(out float r)\n{\n}", LR"(,"lod":10)"),
                              test::functionJson(L"void other(out float r)\n{\n}", LR"(,"name":"lit")")})),
      L"n");
};

TEST_F(ProfileChoice, StartsWithTheFirstProfileOfTheLanguage) {
  EXPECT_EQ(made(fragment).getActiveProfileOutput(0), L"result_n_01");
}

TEST_F(ProfileChoice, TakesTheNearestLevelOfDetailOfTheName) {
  FragmentInstance& instance = made(fragment);
  EXPECT_TRUE(instance.setActiveProfile(context, L"default", 20.0f));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"result_n_03");
  EXPECT_TRUE(instance.setActiveProfile(context, L"default", 90.0f));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"result_n_02");
  EXPECT_TRUE(instance.setActiveProfile(context, L"lit", 90.0f));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"result_n_04");
}

TEST_F(ProfileChoice, FallsBackToTheDefaultName) {
  FragmentInstance& instance = made(fragment);
  EXPECT_TRUE(instance.setActiveProfile(context, L"unheard of", 100.0f));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"result_n_02");
}

TEST_F(ProfileChoice, ReturnsToTheInstanceOfAProfileThatWasActiveBefore) {
  FragmentInstance& instance = made(fragment);
  instance.setOverrideFunctionName(L"mine");
  EXPECT_TRUE(instance.setActiveProfile(context, L"default", 100.0f));
  EXPECT_TRUE(instance.setActiveProfile(context, L"glow", 100.0f));
  WString text;
  EXPECT_TRUE(instance.writeFunctionCall(text, context, {}, {}));
  EXPECT_EQ(text, L"    mine();\n");
}

TEST_F(ProfileChoice, RefusesAFragmentWithoutADefaultProfile) {
  const AShaderFragment* glow = scene.add(
      *test::loadFragment(L"glowing", test::namedFunctionJson(L"glow", L"void glow(out float r)\n{\n}")),
      L"m");
  FragmentInstance& instance = made(glow);
  EXPECT_TRUE(instance.setActiveProfile(context, L"glow", 100.0f));
  try {
    instance.setActiveProfile(context, L"lit", 100.0f);
    FAIL();
  } catch (const Exception& exception) {
    EXPECT_STREQ(exception.what(), "The fragment glowing doesn't have a default profile");
  }
}

// Evaluation.

TEST_F(Instances, AreEvaluatedOnce) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kOne));
  EXPECT_TRUE(instance.safeEvaluate(context));
  EXPECT_EQ(body(), "    float result_n_01;\n    one1(\n        result_n_01);\n");
  const std::string before = body();
  EXPECT_TRUE(instance.safeEvaluate(context));
  EXPECT_EQ(body(), before);
}

TEST_F(Instances, WriteIntoTheValuesTheyAreGiven) {
  AShaderFragment* fragment = scene.addFunction(L"n", L"void two(out float a, out float b)\n{\n}");
  FragmentInstance& instance = made(fragment);
  Array<WString> values{L"color"};
  EXPECT_TRUE(instance.evaluate(context, values));
  EXPECT_EQ(values, (Array<WString>{L"color", L"result_n_11"}));
  EXPECT_EQ(body(), "    float result_n_11;\n    two1(\n        color,\n        result_n_11);\n");
}

TEST_F(Instances, RefuseAValueForAnOutputThatTheFunctionDoesNotHave) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kOne));
  Array<WString> values{L"a", L"b"};
  EXPECT_FALSE(instance.evaluate(context, values));
  EXPECT_EQ(body(), "");
  Array<WString> surplus{L"a", L""};
  EXPECT_TRUE(instance.evaluate(context, surplus));
}

TEST_F(Instances, AreEvaluatedAnewUnderAnotherProfile) {
  const AShaderFragment* source = scene.add(
      *test::loadFragment(
          L"s", test::profilesJson({test::functionJson(L"void day(out float r)\n{\n}"),
                                    test::namedFunctionJson(L"night", L"void night(out float r)\n{\n}")})),
      L"s");
  AShaderFragment* twice = scene.addInline(L"t", L"{{a}} * 2", {L"a"});
  twice->setInputConnection(std::size_t{0}, scene.graph->getFragment(0), 0);
  made(source);
  FragmentInstance& instance = made(twice);
  EXPECT_TRUE(instance.safeEvaluate(context));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"(result_s_01 * 2)");
  EXPECT_TRUE(context.getFragmentInstance(source).setActiveProfile(context, L"night", 100.0f));
  EXPECT_TRUE(instance.safeEvaluate(context));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"(result_s_02 * 2)");
  EXPECT_EQ(body(), "    float result_s_01;\n    day1(\n        result_s_01);\n"
                    "    float result_s_02;\n    night2(\n        result_s_02);\n");
}

/// An expression of a host's own that reads the active light and does not say so.
class LightNumberProfile : public AShaderFragmentProfileInline {
public:
  bool writeFunctionCall(WString&, AShaderCollapseContext& context, FragmentProfileInstance& instance,
                         const Array<WString>&, const Array<WString>&) const override {
    instance.setNumOutputs(1);
    instance.setOutput(0, WString(), formatted(L"lights[%Iu]", context.getActiveLightIndex()));
    return true;
  }
};

TEST_F(Instances, OfOwnExpressionsAreEvaluatedForEveryLight) {
  const auto profile = makeRef<LightNumberProfile>();
  profile->setProfilename(L"default");
  profile->languages().insert(UString(L"dx11"));
  const auto definition = makeRef<AShaderFragment>();
  definition->registerProfile(profile.get());
  definition->addOutput(TypeID_float, L"result");
  const RefPtr<IShaderFragment> light(definition->clone(L"light"));
  scene.graph->addFragment(light.get());
  AShaderFragment* twice = scene.addInline(L"t", L"{{a}} * 2", {L"a"});
  ASSERT_TRUE(twice->setInputConnection(std::size_t{0}, light.get(), 0));
  made(dynamic_cast<AShaderFragment*>(light.get()));
  FragmentInstance& instance = made(twice);
  for (const std::size_t index : {0u, 1u, 0u}) {
    context.setActiveLightIndex(index);
    EXPECT_TRUE(instance.safeEvaluate(context));
    EXPECT_EQ(instance.getActiveProfileOutput(0), formatted(L"(lights[%Iu] * 2)", index));
  }
}

TEST_F(Instances, OfOwnExpressionsAreMadeAnewForWhatIsWrittenUnderAnotherLight) {
  const auto profile = makeRef<LightNumberProfile>();
  profile->setProfilename(L"default");
  profile->languages().insert(UString(L"dx11"));
  const auto definition = makeRef<AShaderFragment>();
  definition->registerProfile(profile.get());
  definition->addOutput(TypeID_float, L"result");
  const RefPtr<IShaderFragment> light(definition->clone(L"light"));
  scene.graph->addFragment(light.get());
  AShaderFragment* twice = scene.addInline(L"t", L"{{a}} * 2", {L"a"});
  AShaderFragment* lit =
      scene.addFunction(L"n", L"void lit(float a, out float r)\n{\nr = a * sfg_currentLight.x;\n}");
  AShaderFragment* last = scene.addFunction(L"m", L"void last(float a, out float r)\n{\nr = a;\n}");
  ASSERT_TRUE(twice->setInputConnection(std::size_t{0}, light.get(), 0));
  ASSERT_TRUE(lit->setInputConnection(std::size_t{0}, twice, 0));
  ASSERT_TRUE(last->setInputConnection(std::size_t{0}, lit, 0));
  for (const IShaderFragment* fragment :
       {static_cast<const IShaderFragment*>(light.get()), static_cast<const IShaderFragment*>(twice),
        static_cast<const IShaderFragment*>(lit)})
    made(dynamic_cast<const AShaderFragment*>(fragment));
  FragmentInstance& top = made(last);
  for (const std::size_t index : {0u, 1u, 2u}) {
    context.setActiveLightIndex(index);
    EXPECT_TRUE(top.safeEvaluate(context));
  }
  EXPECT_EQ(body(), "    float result_m_01;\n    float result_n_01;\n"
                    "    lit1(\n        (lights[0] * 2),\n        ,\n        result_n_01);\n"
                    "    last1(\n        result_n_01,\n        result_m_01);\n"
                    "    lit1(\n        (lights[1] * 2),\n        ,\n        result_n_01);\n"
                    "    lit1(\n        (lights[2] * 2),\n        ,\n        result_n_01);\n");
}

/// An expression that is another one each time it is written.
class CountingProfile : public AShaderFragmentProfileInline {
public:
  bool writeFunctionCall(WString&, AShaderCollapseContext&, FragmentProfileInstance& instance,
                         const Array<WString>& inputValues, const Array<WString>&) const override {
    instance.setNumOutputs(1);
    WString value = formatted(L"use%Iu", ++uses_);
    for (const WString& input : inputValues) value += L"(" + input + L")";
    instance.setOutput(0, L"", value);
    return true;
  }

private:
  mutable std::size_t uses_ = 0;
};

/// A member of the graph whose value is such an expression.
RefPtr<AShaderFragment> addCounting(const TestScene& scene, const WString& name, std::size_t inputs) {
  const auto profile = makeRef<CountingProfile>();
  profile->setProfilename(L"default");
  profile->languages().insert(UString(L"dx11"));
  auto fragment = makeRef<AShaderFragment>(name);
  fragment->registerProfile(profile.get());
  fragment->addOutput(TypeID_float, L"result");
  for (std::size_t i = 0; i < inputs; ++i) fragment->addInput(TypeID_float, formatted(L"i%Iu", i));
  scene.graph->addFragment(fragment.get());
  return fragment;
}

TEST_F(Instances, OfOwnExpressionsAreWrittenAtEveryUse) {
  const RefPtr<AShaderFragment> count = addCounting(scene, L"count", 0);
  AShaderFragment* twice = scene.addInline(L"t", L"{{a}} * 2", {L"a"});
  AShaderFragment* add = scene.addFunction(L"n", kAdd);
  AShaderFragment* behind = scene.addFunction(L"m", kAdd);
  twice->setInputConnection(std::size_t{0}, count.get(), 0);
  add->setInputConnection(std::size_t{0}, count.get(), 0);
  add->setInputConnection(std::size_t{1}, twice, 0);
  behind->setInputConnection(std::size_t{0}, add, 0);
  behind->setInputConnection(std::size_t{1}, twice, 0);
  for (const AShaderFragment* fragment : {count.get(), twice, add}) made(fragment);
  EXPECT_TRUE(made(behind).safeEvaluate(context));
  EXPECT_EQ(body(), R"(    float result_m_01;
    float result_n_01;
    add1(
        use1,
        (use2 * 2),
        result_n_01);
    add1(
        result_n_01,
        (use3 * 2),
        result_m_01);
)");
}

TEST_F(Instances, OfOwnExpressionsAreWrittenWithTheirSources) {
  const RefPtr<AShaderFragment> inner = addCounting(scene, L"inner", 0);
  const RefPtr<AShaderFragment> outer = addCounting(scene, L"outer", 1);
  AShaderFragment* add = scene.addFunction(L"n", kAdd);
  outer->setInputConnection(std::size_t{0}, inner.get(), 0);
  add->setInputConnection(std::size_t{0}, outer.get(), 0);
  add->setInputConnection(std::size_t{1}, outer.get(), 0);
  made(inner.get());
  made(outer.get());
  EXPECT_EQ(inputValues(made(add)), (Array<WString>{L"use1(use1)", L"use2(use2)"}));
}

// Shader functions.

constexpr std::wstring_view kInstanceCall =
    L"void call(float f, float b, out float r)\n{\nsfg_shader(f, a, b, result, r);\n}";

TEST_F(Instances, RefuseToBeCalledAsExpressions) {
  AShaderFragment* expression = scene.addInline(L"e", L"{{a}} * 2", {L"a"});
  AShaderFragment* source = scene.addFunction(L"s", kOne);
  expression->setInputConnection(std::size_t{0}, source, 0);
  AShaderFragment* call = scene.addFunction(L"c", kInstanceCall);
  call->setInputConnection(L"f", expression, L"result");
  made(source);
  FragmentInstance& instance = made(expression);
  KeywordReplacePattern pattern;
  EXPECT_FALSE(instance.evaluateShader(context, {BuiltinFunction()}, pattern));
  EXPECT_EQ(body(), "") << "nothing is written, not even what feeds it";
  EXPECT_TRUE(pattern.empty());
  EXPECT_FALSE(made(call).safeEvaluate(context));
  EXPECT_EQ(body(), "    float result_c_01;\n") << "declared before its inputs were taken";
  EXPECT_TRUE(instance.safeEvaluate(context)) << "as a value it serves";
}

/// A fragment whose first profile takes its input as a value and whose second one calls it.
WString lateCallerJson(std::wstring_view type) {
  const WString head = L"(" + WString(type) + L" f, out float r)\n{\n";
  return test::profilesJson(
      {test::namedFunctionJson(L"first", L"void plain" + head + L"r = 0;\n}"),
       test::namedFunctionJson(L"second", L"void call" + head + L"sfg_shader(f, result, r);\n}")});
}

TEST_F(Instances, MakeAnInputThatOnlyALaterProfileCallsWhenItsValueIsTaken) {
  AShaderFragment* source = scene.addFunction(L"s", kOne);
  AShaderFragment* caller = scene.add(*test::loadFragment(L"late", lateCallerJson(L"float")), L"c");
  caller->setInputConnection(std::size_t{0}, source, 0);
  made(source);
  FragmentInstance& instance = made(caller);
  EXPECT_TRUE(instance.setActiveProfile(context, L"second", 100.0f));
  EXPECT_TRUE(instance.safeEvaluate(context));
  EXPECT_EQ(uniforms(), "fc;") << "with the other uniforms of the instance";
  EXPECT_EQ(
      body(),
      "    float result_c_02;\n    float result_s_01;\n    call2(\n        fc,\n        result_c_02);\n");
}

TEST_F(Instances, AddALateInputAtOnceWhenTheirUniformsAreWritten) {
  AShaderFragment* source = scene.addFunction(L"s", kOne);
  AShaderFragment* caller = scene.add(*test::loadFragment(L"late", lateCallerJson(L"sfg_sampler2D")), L"c");
  caller->setInputConnection(std::size_t{0}, source, 0);
  made(source);
  FragmentInstance& instance = made(caller);
  EXPECT_TRUE(instance.writeRequirements(context));
  EXPECT_EQ(uniforms(), "");
  EXPECT_TRUE(instance.setActiveProfile(context, L"second", 100.0f));
  Array<WString> values;
  const FragmentInstance& constant = instance;
  EXPECT_TRUE(constant.buildUserInputValues(context, values));
  EXPECT_EQ(values, (Array<WString>{L"sfg_make_sampler2D(fc, sampler_fc)"}));
  EXPECT_EQ(uniforms(), "fc;");
  EXPECT_EQ(context.getResultProfile()->includes(), Set<WString>{L"sfg_samplers.h"});
  values.clear();
  EXPECT_TRUE(constant.buildUserInputValues(context, values));
  EXPECT_EQ(uniforms(), "fc;") << "made once";
}

TEST_F(Instances, TakeAConstantForALateInput) {
  AShaderFragment* source = scene.addFunction(L"s", kOne);
  AShaderFragment* caller =
      scene.addWithPorts(*test::loadFragment(L"late", lateCallerJson(L"float")), L"c",
                         {test::parameter(TypeID_float, L"f", 1)}, {test::parameter(TypeID_float, L"r")});
  AValue value(TypeID_float);
  value.set(0, 2.5);
  scene.options->constants[L"f"] = value;
  caller->setInputConnection(std::size_t{0}, source, 0);
  made(source);
  FragmentInstance& instance = made(caller);
  EXPECT_TRUE(instance.setActiveProfile(context, L"second", 100.0f));
  EXPECT_EQ(inputValues(instance), Array<WString>{L"2.5"});
}

// One context each.

TEST_F(Instances, AreEvaluatedInOneContextOnly) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kOne));
  AShaderCollapseContext other;
  other.initialize(scene.language, scene.environment, scene.graph, scene.options);
  Array<WString> values;
#ifdef NDEBUG
  EXPECT_FALSE(instance.safeEvaluate(other));
  EXPECT_FALSE(instance.buildUserInputValues(other, values));
  EXPECT_EQ(toUtf8(other.getResultProfile()->getFunctionBody()), "");
#else
  EXPECT_DEATH(instance.safeEvaluate(other), "one context only");
  EXPECT_DEATH(instance.buildUserInputValues(other, values), "one context only");
#endif
  EXPECT_TRUE(instance.safeEvaluate(context));
}

TEST_F(Instances, MadeByNoContextBelongToTheFirstThatEvaluatesThem) {
  const AShaderFragment* fragment = scene.addFunction(L"n", kOne);
  FragmentInstance instance;
  EXPECT_TRUE(instance.create(context, scene.language.get(), fragment));
  AShaderCollapseContext other;
  other.initialize(scene.language, scene.environment, scene.graph, scene.options);
  EXPECT_TRUE(instance.safeEvaluate(other));
#ifdef NDEBUG
  EXPECT_FALSE(instance.safeEvaluate(context));
#else
  EXPECT_DEATH(instance.safeEvaluate(context), "one context only");
#endif
}

TEST_F(Instances, SeeAccumulatorsFromTheirDeclarationOn) {
  AShaderFragment* source = scene.addFunction(L"s", kOne);
  AShaderFragment* twice = scene.addInline(L"t", L"{{a}} * 2", {L"a"});
  twice->setInputConnection(L"a", source, L"result");
  made(source);
  FragmentInstance& instance = made(twice);
  EXPECT_TRUE(instance.safeEvaluate(context));
  EXPECT_TRUE(context.getFragmentInstance(source).declareAccumulateOutputs(context));
  EXPECT_TRUE(instance.safeEvaluate(context));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"(accumulate_s_result * 2)");
}

TEST_F(Instances, FailForAnOutputThatTheirSourceDoesNotHave) {
  AShaderFragment* source = scene.addFunction(L"s", kOne);
  source->addOutput(TypeID_float, L"imagined");
  AShaderFragment* add = scene.addFunction(L"n", kAdd);
  ASSERT_TRUE(add->setInputConnection(L"a", source, L"imagined"));
  made(source);
  EXPECT_FALSE(made(add).safeEvaluate(context));
}

TEST_F(Instances, FailForPortsThatAreNoParameters) {
  const auto add = test::loadFragment(L"add", test::functionJson(kAdd));
  const auto port = [](const wchar_t* name) { return test::parameter(TypeID_float, name); };
  EXPECT_FALSE(made(scene.addWithPorts(*add, L"few", {port(L"a")}, {})).safeEvaluate(context));
  EXPECT_FALSE(made(scene.addWithPorts(*add, L"many", {port(L"a"), port(L"b"), port(L"c")}, {}))
                   .safeEvaluate(context));
  EXPECT_TRUE(made(scene.addWithPorts(*add, L"right", {port(L"a"), port(L"b")}, {})).safeEvaluate(context));
}

TEST_F(Instances, FailForInputsWhenTheyWereMadeWithoutInputUniforms) {
  FragmentInstance instance;
  ASSERT_TRUE(instance.createNoInputUniform(scene.language.get(), scene.addFunction(L"n", kAdd)));
  EXPECT_FALSE(instance.safeEvaluate(context));
}

TEST_F(Instances, FailInACycleAndCanBeEvaluatedOnceItIsOpen) {
  AShaderFragment* a = scene.addFunction(L"a", kAdd);
  AShaderFragment* b = scene.addFunction(L"b", kAdd);
  a->setInputConnection(L"a", b, L"result");
  b->setInputConnection(L"a", a, L"result");
  FragmentInstance& instance = made(a);
  made(b);
  EXPECT_FALSE(instance.safeEvaluate(context));
  b->setInputConnection(L"a", scene.addFunction(L"c", kOne), L"result");
  made(dynamic_cast<AShaderFragment*>(scene.graph->getFragment(2)));
  EXPECT_TRUE(instance.safeEvaluate(context));
}

/// A fragment of a host that is not ours: its source cannot be evaluated.
class ForeignFragment : public RefCounted<IShaderFragment> {
public:
  explicit ForeignFragment(AShaderFragment* inner) : inner_(inner) {}
  IShaderFragment* clone(const WString& name) const override { return inner_->clone(name); }
  const WString& key() const override { return inner_->key(); }
  const WString& getHashString() const override { return inner_->getHashString(); }
  const WString& instanceName() const override { return inner_->instanceName(); }
  IShaderFragmentGraph* getOwnerGraph() const override { return inner_->getOwnerGraph(); }
  void setOwnerGraph(IShaderFragmentGraph* graph) override { inner_->setOwnerGraph(graph); }
  std::size_t getNumProfiles() const override { return inner_->getNumProfiles(); }
  const IShaderFragmentProfile* getProfile(std::size_t i) const override { return inner_->getProfile(i); }
  const IShaderFragmentProfile* findFirstProfile(const UString& language) const override {
    return inner_->findFirstProfile(language);
  }
  const IShaderFragmentProfile* findBestProfile(const WString& name, const UString& language,
                                                float lod) const override {
    return inner_->findBestProfile(name, language, lod);
  }
  void registerProfile(IShaderFragmentProfile* profile) override { inner_->registerProfile(profile); }
  std::size_t getNumInputs() const override { return inner_->getNumInputs(); }
  const WString& getInputType(const ILanguageTraits* traits, std::size_t i) const override {
    return inner_->getInputType(traits, i);
  }
  const WString& getInputName(std::size_t i) const override { return inner_->getInputName(i); }
  const AParameter* getInput(std::size_t i) const override { return inner_->getInput(i); }
  std::size_t getNumOutputs() const override { return inner_->getNumOutputs(); }
  const WString& getOutputType(const ILanguageTraits* traits, std::size_t i) const override {
    return inner_->getOutputType(traits, i);
  }
  const WString& getOutputName(std::size_t i) const override { return inner_->getOutputName(i); }
  const AParameter* getOutput(std::size_t i) const override { return inner_->getOutput(i); }
  void addInput(const AParameter*) override {}
  void addInput(const TypeID&, const WString&) override {}
  void addInput(const WString&, const WString&) override {}
  void addOutput(const AParameter*) override {}
  void addOutput(const TypeID&, const WString&) override {}
  void addOutput(const WString&, const WString&) override {}
  std::size_t findInputIndex(const wchar_t* name) const override { return inner_->findInputIndex(name); }
  std::size_t findOutputIndex(const wchar_t* name) const override { return inner_->findOutputIndex(name); }
  const Array<ShaderFragmentConnection>& getInputConnections() const override {
    return inner_->getInputConnections();
  }
  bool setInputConnection(const wchar_t*, const wchar_t*) override { return false; }
  bool setInputConnection(const wchar_t*, IShaderFragment*, const wchar_t*) override { return false; }
  bool setInputConnection(std::size_t, std::size_t) override { return false; }
  bool setInputConnection(std::size_t, IShaderFragment*, std::size_t) override { return false; }
  void clearInputConnect(const wchar_t*) override {}
  void clearInputConnect(std::size_t) override {}
  std::size_t getNumUniforms() const override { return 0; }
  const AParameter* getUniform(std::size_t) const override { return nullptr; }
  void addUniform(const AParameter*) override {}
  bool hasAncestor(IShaderFragment*) const override { return false; }
  void debugDump() override {}
  const Array<WString>& getShaderInputTypes() const override { return inner_->getShaderInputTypes(); }

private:
  RefPtr<AShaderFragment> inner_;
};

TEST_F(Instances, FailForASourceThatIsNoFragmentOfOurs) {
  const auto foreign = makeRef<ForeignFragment>(scene.addFunction(L"s", kOne));
  AShaderFragment* add = scene.addFunction(L"n", kAdd);
  ASSERT_TRUE(add->setInputConnection(std::size_t{0}, foreign.get(), 0));
  EXPECT_FALSE(made(add).safeEvaluate(context));
}

TEST_F(Instances, OfFragmentsThatAreNotOursAreMadeOnce) {
  scene.graph->addOutput(TypeID_float, L"x");
  const auto foreign = makeRef<ForeignFragment>(scene.addFunction(L"s", kOne));
  AShaderFragment* add = scene.addFunction(L"n", kAdd);
  ASSERT_TRUE(add->setInputConnection(std::size_t{0}, foreign.get(), 0));
  ASSERT_TRUE(scene.graph->setOutputConnection(std::size_t{0}, add, 0));
  const auto initialize = [&] {
    return context.initialize(scene.language, scene.environment, scene.graph, scene.options);
  };
  EXPECT_FALSE(initialize());
  EXPECT_TRUE(initialize()) << "what could not be made is not tried again";
}

/// Evaluates another instance while its call is written.
class EvaluatingProfile : public AShaderFragmentProfileFunction {
public:
  bool writeFunctionCall(WString& out, AShaderCollapseContext& context, FragmentProfileInstance& instance,
                         const Array<WString>& inputValues,
                         const Array<WString>& outputValues) const override {
    return other->safeEvaluate(context) && AShaderFragmentProfileFunction::writeFunctionCall(
                                               out, context, instance, inputValues, outputValues);
  }
  FragmentInstance* other = nullptr;
};

TEST_F(Instances, MayEvaluateOthersWhileTheirCallIsWritten) {
  const auto profile = makeRef<EvaluatingProfile>();
  profile->setProfilename(L"default");
  profile->languages().insert(UString(L"dx11"));
  profile->setFunctionPrototype(L"void two(out float p, out float q)");
  const auto definition = makeRef<AShaderFragment>();
  definition->registerProfile(profile.get());
  FragmentInstance& two = made(scene.add(*definition, L"x"));
  profile->other = &made(scene.addFunction(L"y", kOne));
  EXPECT_TRUE(two.safeEvaluate(context));
  EXPECT_NE(body().find("two1(\n        result_x_01,\n        result_x_11);"), std::string::npos) << body();
}

/// A function that takes the values of its inputs while its call is written.
class AskingProfile : public AShaderFragmentProfileFunction {
public:
  bool writeFunctionCall(WString& out, AShaderCollapseContext& context, FragmentProfileInstance& instance,
                         const Array<WString>& inputValues,
                         const Array<WString>& outputValues) const override {
    asked.clear();
    return own->buildUserInputValues(context, asked) &&
           AShaderFragmentProfileFunction::writeFunctionCall(out, context, instance, inputValues,
                                                             outputValues);
  }
  const FragmentInstance* own = nullptr;
  mutable Array<WString> asked;
};

TEST_F(Instances, MayTakeTheirInputsWhileTheirCallIsWritten) {
  const auto profile = makeRef<AskingProfile>();
  profile->setProfilename(L"default");
  profile->languages().insert(UString(L"dx11"));
  profile->setFunctionPrototype(L"void ask(float a, float b, out float r)");
  const auto definition = makeRef<AShaderFragment>();
  definition->registerProfile(profile.get());
  AShaderFragment* ask = scene.add(*definition, L"x");
  AShaderFragment* source = scene.addFunction(L"s", kOne);
  ASSERT_TRUE(ask->setInputConnection(L"a", source, L"result"));
  made(source);
  FragmentInstance& instance = made(ask);
  profile->own = &instance;
  EXPECT_TRUE(instance.safeEvaluate(context));
  EXPECT_EQ(profile->asked, (Array<WString>{L"result_s_01", L"bx"}));
  EXPECT_EQ(body(), R"(    float result_x_01;
    float result_s_01;
    one1(
        result_s_01);
    ask1(
        result_s_01,
        bx,
        result_x_01);
)");
}

// Accumulation.

TEST_F(Instances, AddTheirOutputsToAccumulators) {
  const auto fragment = scene.addWithPorts(
      *test::loadFragment(L"f", test::functionJson(L"void f(out float r, out Ray ray)\n{\n}")), L"n0", {},
      {test::parameter(TypeID_float, L"color"), test::structure(L"Ray", L"ray")});
  FragmentInstance& instance = made(fragment);
  EXPECT_EQ(instance.getActiveProfileOutput(1), L"result_n0_11");
  EXPECT_TRUE(instance.declareAccumulateOutputs(context));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"accumulate_n0_color");
  EXPECT_EQ(instance.getActiveProfileOutput(1), L"accumulate_n0_ray");
  EXPECT_EQ(instance.getActiveProfileOutput(2), L"");
  EXPECT_TRUE(instance.accmulateEvaluate(context));
  EXPECT_EQ(body(), R"(    float accumulate_n0_color = 0.0;
    Ray accumulate_n0_ray;
    float result_n0_01;
    Ray result_n0_11;
    f1(
        result_n0_01,
        result_n0_11);
    accumulate_n0_color += result_n0_01;
    accumulate_n0_ray += result_n0_11;
)");
}

TEST_F(Instances, ThatAccumulateAreNotEvaluatedSafely) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kOne));
  instance.declareAccumulateOutputs(context);
  const std::string before = body();
  EXPECT_TRUE(instance.safeEvaluate(context));
  EXPECT_EQ(body(), before);
}

TEST_F(Instances, FailToAccumulateAnOutputThatTheFunctionDoesNotHave) {
  AShaderFragment* fragment = scene.addFunction(L"n", kOne);
  fragment->addOutput(TypeID_float, L"imagined");
  FragmentInstance& instance = made(fragment);
  EXPECT_TRUE(instance.declareAccumulateOutputs(context));
  EXPECT_FALSE(instance.accmulateEvaluate(context));
}

// Shader functions.

struct ShaderUses : Instances {
  /// The source's call texts for the uses of input "tex" in this code, one after the other, each behind its
  /// use.
  std::string callsFor(const WString& code, std::wstring_view source = kSource) {
    AShaderFragment* fragment = scene.addFunction(L"s", source);
    AShaderFragment* caller = scene.addFunction(L"n", L"void f(float tex, out float r)\n{\n" + code + L"\n}");
    Array<BuiltinFunction> uses;
    dynamic_cast<const AShaderFragmentProfile*>(caller->getProfile(0))->GetShaderFunctions(L"tex", uses);
    KeywordReplacePattern pattern;
    EXPECT_TRUE(made(fragment).evaluateShader(context, uses, pattern));
    WString text;
    for (std::size_t i = 0; i < pattern.getKeywords().size(); ++i) {
      text += pattern.getKeywords()[i] + L"\n" + pattern.getReplacements()[i];
    }
    return toUtf8(text);
  }
  static constexpr std::wstring_view kSource =
      L"void read(float2 uv, float k, out float4 c, out float a)\n{\n}";
};

TEST_F(ShaderUses, DeclareOutputsThatTheCallerDoesNotAskFor) {
  EXPECT_EQ(callsFor(L"sfg_shader(tex, uv, myUV);"), R"(sfg_shader(tex, uv, myUV)
float4 result_s_01_temp;
float result_s_11_temp;
    read1(
        myUV,
        ks,
        result_s_01_temp,
        result_s_11_temp);
)");
}

TEST_F(ShaderUses, PutValuesInPlaceOfInputsAndOutputs) {
  EXPECT_EQ(callsFor(L"sfg_shader(tex, a, mine, k, 2.0);"), R"(sfg_shader(tex, a, mine, k, 2.0)
float4 result_s_01_temp;
    read1(
        uvs,
        2.0,
        result_s_01_temp,
        mine);
)");
}

TEST_F(ShaderUses, PassOverUsesThatCannotBeWritten) {
  // One argument only; a name that is no parameter.
  EXPECT_EQ(callsFor(L"sfg_shader(tex);\nsfg_shader(tex, UV, x);"), "");
}

TEST_F(ShaderUses, DoNotLookAtAnUnpairedLastArgument) {
  EXPECT_EQ(callsFor(L"sfg_shader(tex, c, x, a, y, whatever);"), R"(sfg_shader(tex, c, x, a, y, whatever)
    read1(
        uvs,
        ks,
        x,
        y);
)");
}

TEST_F(ShaderUses, OfOneTextAreReplacedByTheLastCall) {
  const std::string text = callsFor(L"sfg_shader(tex, c, x, a, y);\nsfg_shader(tex, c, x, a, y);");
  EXPECT_EQ(text,
            "sfg_shader(tex, c, x, a, y)\n    read1(\n        uvs,\n        ks,\n        x,\n        y);\n");
}

TEST_F(ShaderUses, HandConnectedInputsOverThroughTheState) {
  scene.graph->addInput(TypeID_float, L"g");
  AShaderFragment* one = scene.addFunction(L"one", L"void one(out float2 r)\n{\n}");
  AShaderFragment* read =
      scene.addFunction(L"s", L"void read(float2 uv, float k, float m, out float c)\n{\n}");
  read->setInputConnection(L"uv", one, L"r");
  read->setInputConnection(L"k", L"g");
  made(one);
  FragmentInstance& instance = made(read);
  KeywordReplacePattern pattern;
  EXPECT_TRUE(instance.evaluateShader(context, {}, pattern));
  EXPECT_TRUE(instance.evaluateShader(context, {}, pattern));
  EXPECT_EQ(body(), R"(    float result_s_01;
    float2 result_one_01;
    one1(
        result_one_01);
    state.shaderInput0 = result_one_01;
    state.shaderInput1 = g;
    state.shaderInput2 = result_one_01;
    state.shaderInput3 = g;
)");
  EXPECT_EQ(context.getShaderInputTypes(), (Array<WString>{L"float2", L"float", L"float2", L"float"}));
}

TEST_F(ShaderUses, DoNotHandOverInputsWhoseTypeTheLanguageDoesNotHave) {
  AShaderFragment* one = scene.addFunction(L"one", L"void one(out float2 r)\n{\n}");
  AShaderFragment* read = scene.addFunction(L"s", L"void read(float2 uv, out float c)\n{\n}");
  read->setInputConnection(L"uv", one, L"r");
  made(one);
  FragmentInstance& instance = made(read);
  scene.language->unknownTypes = true;
  KeywordReplacePattern pattern;
  EXPECT_TRUE(instance.evaluateShader(context, {}, pattern));
  EXPECT_TRUE(context.getShaderInputTypes().empty());
}

TEST_F(ShaderUses, FailForPortsThatAreNoParameters) {
  const auto read = test::loadFragment(L"read", test::functionJson(kSource));
  KeywordReplacePattern pattern;
  EXPECT_FALSE(made(scene.addWithPorts(*read, L"s", {}, {})).evaluateShader(context, {}, pattern));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
