// Two nodes of one fragment share a definition when it is the same text, and only then: else the second one
// would call the first one's function.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "sfg/fragment_profile_instance.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_profile_function.h"
#include "tests/support/collapse.h"
#include "tests/support/test_graph.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

/// Instances of one profile that write their definitions into one context, one after the other.
struct SharedDefinition : ::testing::Test {
  SharedDefinition() {
    context.initialize(scene.language, scene.environment, scene.graph, scene.options);
    profile->setProfilename(L"default");
  }

  void load(std::wstring_view function, const WString& members = {}) {
    const auto fragment = test::loadFragment(L"f", test::functionJson(function, members));
    const auto* loaded = dynamic_cast<const AShaderFragmentProfile*>(fragment->getProfile(0));
    ASSERT_NE(loaded, nullptr);
    keptFragment = fragment;
    used = loaded;
  }
  /// What the definition of one more instance adds; `prepare` has the instance before.
  std::string write(const std::function<void(FragmentProfileInstance&)>& prepare = {}) {
    const auto fragment = makeRef<AShaderFragment>(L"n");
    FragmentProfileInstance instance;
    EXPECT_TRUE(instance.create(scene.language.get(), fragment.get(), used.get(), L"1"));
    if (prepare) prepare(instance);
    const std::size_t before = context.getResultProfile()->predefines().size();
    EXPECT_TRUE(instance.writeDefinition(context));
    lastName = toUtf8(instance.getFunctionName());
    return toUtf8(context.getResultProfile()->predefines().substr(before));
  }

  test::TestScene scene;
  AShaderCollapseContext context;
  RefPtr<AShaderFragmentProfileFunction> profile = makeRef<AShaderFragmentProfileFunction>();
  RefPtr<IShaderFragment const> keptFragment;
  RefPtr<AShaderFragmentProfile const> used = profile;
  std::string lastName;
};

TEST_F(SharedDefinition, IsWrittenOnceUnderOneName) {
  load(L"void f(out float r)\n{\nr = 1;\n}");
  EXPECT_EQ(write(), "void f1(\n    out float r)\n{\n\tr = 1;\n}\n");
  EXPECT_EQ(write(), "");
  EXPECT_EQ(lastName, "f1");
}

TEST_F(SharedDefinition, IsCalledByTheNameThatItWasGiven) {
  context.writePredefine(L"void f1() { taken; }");
  load(L"void f(out float r)\n{\nr = 1;\n}");
  EXPECT_EQ(write(), "void f11(\n    out float r)\n{\n\tr = 1;\n}\n");
  EXPECT_EQ(lastName, "f11");
  EXPECT_EQ(write(), "");
  EXPECT_EQ(lastName, "f11");
}

TEST_F(SharedDefinition, IsThatOfOneName) {
  load(L"void f(out float r)\n{\nr = 1;\n}");
  write();
  EXPECT_EQ(write([](FragmentProfileInstance& instance) { instance.setFunctionName(L"g"); }),
            "void g(\n    out float r)\n{\n\tr = 1;\n}\n");
}

TEST_F(SharedDefinition, IsThatOfOneValueOfEachBuiltInCall) {
  load(L"void f(float a, out float r)\n{\nr = sfg_isFinalOutput(r) ? 1 : 0;\n}");
  EXPECT_EQ(write(), "void f1(\n    float a,\n    out float r)\n{\n\tr = false ? 1 : 0;\n}\n");
  AShaderFragment* final = scene.add(*static_cast<const AShaderFragment*>(keptFragment.get()), L"n");
  scene.output(L"color", TypeID_float, final);
  FragmentProfileInstance instance;
  ASSERT_TRUE(instance.create(scene.language.get(), final, used.get(), L"1"));
  const std::size_t before = context.getResultProfile()->predefines().size();
  EXPECT_TRUE(instance.writeDefinition(context));
  EXPECT_EQ(toUtf8(context.getResultProfile()->predefines().substr(before)),
            "void f11(\n    float a,\n    out float r)\n{\n\tr = true ? 1 : 0;\n}\n");
}

/// Writes another body each time.
class ChangingProfile : public AShaderFragmentProfileFunction {
public:
  bool writeDefinition(CodeSnippetInstance& out, AShaderCollapseContext&,
                       FragmentProfileInstance& instance) const override {
    WString code = L"void ";
    instance.appendFunctionName(code);
    code += L"() { " + itos(++written_) + L"; }\n";
    constructOwned(out, code, {});
    return true;
  }

private:
  mutable int written_ = 0;
};

TEST_F(SharedDefinition, IsNotThatOfAHostsOwnProfile) {
  const auto changing = makeRef<ChangingProfile>();
  changing->setFunctionPrototype(L"void f()");
  used = changing;
  EXPECT_EQ(write(), "void f1() { 1; }\n");
  EXPECT_EQ(write(), "void f11() { 2; }\n");
}

TEST_F(SharedDefinition, IsNotThatOfCodeThatReadsTheCurrentLight) {
  load(L"void f(out float r)\n{\nr = sfg_currentLight.x;\n}");
  context.setCurrentLight(L"Lamp", L"lamp");
  EXPECT_EQ(write(), "void f1(\n    Lamp lamp,\n    out float r)\n{\n\tr = lamp.x;\n}\n");
  context.setCurrentLight(L"Sun", L"sun");
  EXPECT_EQ(write(), "void f11(\n    Sun sun,\n    out float r)\n{\n\tr = sun.x;\n}\n");
}

TEST_F(SharedDefinition, IsNotThatOfCodeWithCustomState) {
  load(L"void f(out float r)\n{\nr = tint.x;\n}", LR"(,"stateVariables":["tint"])");
  context.registerCustomStateVariable(L"float3", L"tint");
  EXPECT_EQ(write(), "void f1(\n    float3 tint,\n    out float r)\n{\n\tr = tint.x;\n}\n");
  context.registerCustomStateVariable(L"float4", L"tint");
  EXPECT_EQ(write(), "void f11(\n    float4 tint,\n    out float r)\n{\n\tr = tint.x;\n}\n");
}

/// Gives all state one type.
class HalfLanguage : public test::TestLanguage {
public:
  const WString& getStateVariableTypeName(const UString&) const override { return half_; }

private:
  WString half_ = L"half3";
};

TEST_F(SharedDefinition, IsThatOfOneLanguage) {
  load(L"void f(out float r)\n{\nr = sfg_worldNormal.x;\n}");
  EXPECT_EQ(write(), "void f1(\n    inout float3 sfg_worldNormal,\n    out float r)\n{\n"
                     "\tr = sfg_worldNormal.x;\n}\n");
  const auto half = makeRef<HalfLanguage>();
  context.setLanguage(half.get());
  EXPECT_EQ(write(), "void f11(\n    inout half3 sfg_worldNormal,\n    out float r)\n{\n"
                     "\tr = sfg_worldNormal.x;\n}\n");
}

TEST_F(SharedDefinition, IsNotThatOfCodeWithUniforms) {
  AShaderFragment* fragment = scene.addFunction(L"n0", L"void f(float a, out float r)\n{\nr = a * gain;\n}");
  fragment->addUniform(makeRef<AParameter>(TypeID_float, L"gain").get());
  AShaderFragment* second = scene.add(*fragment, L"n1");
  second->setInputConnection(L"a", fragment, L"r");
  scene.output(L"color", TypeID_float, second);
  const auto tool = makeRef<AShaderCollapseToolDefault>();
  const IShaderFragment* result =
      tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get());
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(toUtf8(result->getProfile(0)->predefines()), R"(void f1(
    float a,
    out float r)
{
	r = a * gainn0;
}
void f11(
    float a,
    out float r)
{
	r = a * gainn1;
}
)");
}

TEST_F(SharedDefinition, IsNotThatOfRulesThatTheHostAdds) {
  const auto rulesFor = [](const wchar_t* name) {
    return [name](FragmentProfileInstance& instance) {
      instance.getUniformReplacePattern().addReplacePattern(WString(L"gain"), WString(name));
    };
  };
  load(L"void f(out float r)\n{\nr = gain;\n}");
  EXPECT_EQ(write(rulesFor(L"x")), "void f1(\n    out float r)\n{\n\tr = x;\n}\n");
  EXPECT_EQ(write(rulesFor(L"y")), "void f11(\n    out float r)\n{\n\tr = y;\n}\n");
}

TEST_F(SharedDefinition, IsNotThatOfShaderCallsThatTheHostAdds) {
  const auto callOf = [](const wchar_t* call) {
    return [call](FragmentProfileInstance& instance) {
      instance.getShaderReplacePattern().addReplacePattern(WString(L"gain"), WString(call));
    };
  };
  load(L"void f(out float r)\n{\nr = gain;\n}");
  EXPECT_EQ(write(callOf(L"x()")), "void f1(\n    out float r)\n{\n\tr = x();\n}\n");
  EXPECT_EQ(write(callOf(L"y()")), "void f11(\n    out float r)\n{\n\tr = y();\n}\n");
}

TEST_F(SharedDefinition, IsNotThatOfAnInstanceWhosePredefinesWereRenamed) {
  // The helpers of the two nodes differ in the value of the built-in call.
  AShaderFragment* fragment = scene.add(
      *test::loadFragment(
          L"f", test::functionJson(
                    L"void f(float a, out float r)\n{\nr = help(a);\n}",
                    LR"x(,"predefine":["float help(float v) { return sfg_isConnected(a) ? v : 0; }"])x")),
      L"n0");
  AShaderFragment* second = scene.add(*fragment, L"n1");
  second->setInputConnection(L"a", fragment, L"r");
  scene.output(L"color", TypeID_float, second);
  const auto tool = makeRef<AShaderCollapseToolDefault>();
  const IShaderFragment* result =
      tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get());
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(toUtf8(result->getProfile(0)->predefines()), R"(float help(float v) { return false ? v : 0; }
void f1(
    float a,
    out float r)
{
	r = help(a);
}
float help1(float v) { return true ? v : 0; }
void f12(
    float a,
    out float r)
{
	r = help1(a);
}
)");
}

TEST_F(SharedDefinition, IsNotThatOfCodeWithRawText) {
  profile->setFunctionPrototype(L"void f()");
  profile->setFunctionBody(L"}\nstatic const float k = 1;\n#if 0\n{\n#endif\n");
  const std::string text = "void f1()\n{\n}\nstatic const float k = 1;\n#if 0\n{\n#endif\n}\n";
  EXPECT_EQ(write(), text);
  EXPECT_EQ(write(), "static const float k = 1;\n#if 0\n{\n#endif\n}\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
