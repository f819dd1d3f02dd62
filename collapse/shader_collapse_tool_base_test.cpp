#include "sfg/shader_collapse_tool_base.h"

#include <gtest/gtest.h>

#include "tests/support/collapse.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::collapseDefault;
using test::collapseLightLoop;
using test::TestScene;

constexpr const char* kNotTheSame =
    "sfgError : the graph outputs should be the same as the output fragment inputs!";

/// A graph with one output of each of these types, all from one fragment.
TestScene sceneWithOutputs(std::initializer_list<TypeID> types) {
  TestScene scene;
  WString parameters;
  long long count = 0;
  for (const TypeID& type : types) {
    parameters += (count == 0 ? L"out " : L", out ") + type.toString() + L" o" + itos(count);
    ++count;
  }
  AShaderFragment* source = scene.addFunction(L"n0", L"void source(" + parameters + L")\n{\n}");
  for (std::size_t i = 0; i < source->getNumOutputs(); ++i) {
    scene.output(L"out" + itos(static_cast<long long>(i)), source->getOutput(i)->getType(), source, i);
  }
  return scene;
}

RefPtr<AShaderFragment> consumerOf(std::initializer_list<TypeID> types) {
  auto fragment = makeRef<AShaderFragment>(L"output");
  for (const TypeID& type : types)
    fragment->addInput(type, L"i" + itos(static_cast<long long>(fragment->getNumInputs())));
  return fragment;
}

/// The part of a description that calls and assigns.
std::string bodyOf(const std::string& text) {
  const std::size_t at = text.find("void AccumulatedLitSurface");
  return at != std::string::npos ? text.substr(at) : text;
}

// What the outputs have to fit.

TEST(CheckOutputs, RefusesAGraphWithoutAny) {
  EXPECT_EQ(collapseDefault(TestScene()), "sfgError : the graph should has at least one output!");
  EXPECT_EQ(collapseLightLoop(TestScene()), "sfgError : the graph should has at least one output!");
}

TEST(CheckOutputs, ConvertsForTheEnvironmentsOutputFragment) {
  TestScene scene = sceneWithOutputs({TypeID_fvec3, TypeID_float});
  scene.environment->output = consumerOf({TypeID_fvec4, TypeID_fvec4});
  EXPECT_EQ(collapseLightLoop(scene), R"(void source1(
    out float3 o0,
    out float o1)
{
}
void OutputTypeConversion1(
    float3 input_value_0,
    float input_value_1,
    out float4 output_value_0,
    out float4 output_value_1)
{
    output_value_0 = float4(input_value_0, 1.f);
    output_value_1 = float4((float3)input_value_1, 1.f);
}
void AccumulatedLitSurface(
    out float4 output_output_value_00_0,
    out float4 output_output_value_10_1)
{
    // ------------------------------------------------------------ 
    // default light 
    // ------------------------------------------------------------ 
    float3 result_n0_01;
    float result_n0_11;
    source1(
        result_n0_01,
        result_n0_11);
    OutputTypeConversion1(
        result_n0_01,
        result_n0_11,
        output_output_value_00_0,
        output_output_value_10_1);
}
outputs: fvec4/output_value_0 fvec4/output_value_1
)");
}

TEST(CheckOutputs, DoesNotConvertWhatFitsTheOutputFragment) {
  TestScene scene = sceneWithOutputs({TypeID_fvec3, TypeID_float});
  scene.environment->output = consumerOf({TypeID_fvec3});
  EXPECT_EQ(collapseLightLoop(scene).find("OutputTypeConversion"), std::string::npos);
}

TEST(CheckOutputs, RefusesTypesThatCannotBeConverted) {
  TestScene scene = sceneWithOutputs({TypeID_fvec4});
  scene.environment->output = consumerOf({TypeID_fvec3});
  EXPECT_EQ(collapseDefault(scene), kNotTheSame);
  EXPECT_EQ(collapseLightLoop(scene), kNotTheSame);
}

TEST(CheckOutputs, RefusesAnOutputFragmentThatWantsMore) {
  TestScene scene = sceneWithOutputs({TypeID_fvec3});
  scene.environment->output = consumerOf({TypeID_fvec4, TypeID_fvec4});
  EXPECT_EQ(collapseDefault(scene), kNotTheSame);
}

TEST(CheckOutputs, RefusesAPostProcessFragmentThatCannotTakeThem) {
  TestScene scene = sceneWithOutputs({TypeID_fvec4});
  scene.addPostprocess(L"post0", L"void p(float2 a, out float4 r)\n{\n}");
  EXPECT_EQ(collapseDefault(scene), kNotTheSame);
}

TEST(CheckOutputs, DoesNotConvertBehindPostProcessFragments) {
  TestScene scene = sceneWithOutputs({TypeID_fvec3});
  scene.addPostprocess(L"post0", L"void p(float3 a, out float3 r)\n{\n}");
  scene.environment->output = consumerOf({TypeID_fvec4});
  EXPECT_EQ(collapseDefault(scene), kNotTheSame);
  scene.environment->output = consumerOf({TypeID_fvec3});
  EXPECT_NE(collapseDefault(scene), kNotTheSame);
}

TEST(CheckOutputs, ConvertsForAPostProcessFragmentThatTakesFewer) {
  TestScene scene = sceneWithOutputs({TypeID_fvec3, TypeID_fvec2});
  scene.addPostprocess(L"post0", L"void p(float3 a, out float3 r)\n{\n}");
  EXPECT_EQ(bodyOf(collapseLightLoop(scene)), R"(void AccumulatedLitSurface(
    out float3 output_r1_0)
{
    // ------------------------------------------------------------ 
    // default light 
    // ------------------------------------------------------------ 
    float3 result_n0_01;
    float2 result_n0_11;
    source1(
        result_n0_01,
        result_n0_11);
    float3 output_output_value_00_0;
    OutputTypeConversion1(
        result_n0_01,
        result_n0_11,
        output_output_value_00_0);
    p1(
        output_output_value_00_0,
        output_r1_0);
}
outputs: fvec3/r
)");
}

TEST(CheckOutputs, WritesStructuresByTheirOwnNames) {
  TestScene scene;
  AShaderFragment* source = scene.addFunction(L"n0", L"void source(out Ray ray, out float k)\n{\n}");
  scene.graph->addOutput(L"Ray", L"ray");
  scene.graph->setOutputConnection(std::size_t{0}, source, 0);
  scene.output(L"k", TypeID_float, source, 1);
  const auto consumer = makeRef<AShaderFragment>(L"output");
  consumer->addInput(L"Ray", L"ray");
  consumer->addInput(TypeID_fvec4, L"k");
  scene.environment->output = consumer;
  const std::string text = collapseLightLoop(scene);
  EXPECT_NE(text.find("void OutputTypeConversion1(\n    Ray input_value_0,\n    float input_value_1,\n"
                      "    out Ray output_value_0,\n    out float4 output_value_1)\n{\n"
                      "    output_value_0 = input_value_0;\n"
                      "    output_value_1 = float4((float3)input_value_1, 1.f);\n}\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("    out Ray output_output_value_00_0,\n"), std::string::npos) << text;
}

// Pre-process fragments.

TEST(PreProcess, RefusesAFragmentWithInputs) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  scene.addPreprocess(L"pre0", L"void p(float a, out float r)\n{\n}");
  EXPECT_EQ(collapseDefault(scene), "sfgError : pre-process fragment should has no inputs!");
}

TEST(PreProcess, DeclaresOutputsWithoutASemantic) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  const auto pre = makeRef<AShaderFragment>(L"pre0");
  const auto loaded = test::loadFragment(
      L"p", test::functionJson(L"void p(out float3 c, out Ray ray, out sfg_sampler2D map)\n{\n}"));
  const RefPtr<AShaderFragment> fragment(static_cast<AShaderFragment*>(loaded->clone(L"pre0")));
  fragment->addOutput(test::parameter(TypeID_fvec3, L"c").get());
  fragment->addOutput(test::structure(L"Ray", L"ray").get());
  fragment->addOutput(test::parameter(TypeID_sampler2D, L"map").get());
  scene.graph->addPreprocessFragment(fragment.get());
  EXPECT_NE(collapseDefault(scene).find(R"({
    float3 c = float3(0.0, 0.0, 0.0);
    Ray ray;
    sfg_sampler2D map;
    p1(
        c,
        ray,
        map);
    source1(
)"),
            std::string::npos)
      << collapseDefault(scene);
}

TEST(PreProcess, ReadsTheNamesOfDeclaredOutputsByTheirPlace) {
  // The first output is bound by the host: the one name goes to it all the same.
  TestScene scene = sceneWithOutputs({TypeID_float});
  const auto loaded = test::loadFragment(L"p", test::functionJson(L"void p(out float a, out float b)\n{\n}"));
  const RefPtr<AShaderFragment> fragment(static_cast<AShaderFragment*>(loaded->clone(L"pre0")));
  const auto bound = test::parameter(TypeID_float, L"a");
  bound->setSemantic(UString(L"COLOR"));
  fragment->addOutput(bound.get());
  fragment->addOutput(test::parameter(TypeID_float, L"b").get());
  scene.graph->addPreprocessFragment(fragment.get());
  EXPECT_NE(collapseDefault(scene).find(R"({
    float b = 0.0;
    float result_pre0_11;
    p1(
        b,
        result_pre0_11);
)"),
            std::string::npos)
      << collapseDefault(scene);
}

TEST(PreProcess, PassesTheLackOfADefaultProfileThrough) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  const auto glow =
      test::loadFragment(L"glow", test::namedFunctionJson(L"glow", L"void glow(out float r)\n{\n}"));
  scene.graph->addPreprocessFragment(scene.instance(*glow, L"pre0").get());
  EXPECT_EQ(collapseDefault(scene), "The fragment glow doesn't have a default profile");
}

TEST(PreProcess, RegistersTheOutputsOfMembersAsCustomStateVariables) {
  TestScene scene;
  const auto loaded = test::loadFragment(
      L"f", test::functionJson(L"void f(out float r)\n{\nr = tint.x;\n}", LR"(,"stateVariables":["tint"])"));
  AShaderFragment* reader = scene.add(*loaded, L"n0");
  scene.addFunction(L"n1", L"void tinter(out float3 tint)\n{\n}");
  scene.output(L"color", TypeID_float, reader);
  EXPECT_EQ(collapseDefault(scene), R"(void f1(
    float3 tint,
    out float r)
{
	r = tint.x;
}
void CollapsedFunction(
    out float color)
{
    f1(
        tint,
        color);
}
custom state: tint
)");
}

TEST(PreProcess, IsOfTheFinestLevelOfDetailWhateverTheOptionsWant) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  const auto levels = test::loadFragment(
      L"levels", test::profilesJson({test::functionJson(L"void coarse(out float r)\n{\n}", LR"(,"lod":10)"),
                                     test::functionJson(L"void fine(out float r)\n{\n}", LR"(,"lod":100)")}));
  scene.graph->addPreprocessFragment(scene.instance(*levels, L"pre0").get());
  scene.options->surfaceLOD = 10.0f;
  scene.options->lightLOD = 10.0f;
  const std::string text = collapseDefault(scene);
  EXPECT_NE(text.find("    fine2(\n"), std::string::npos) << text;
}

// Post-process fragments.

TEST(PostProcess, IsOfTheFinestLevelOfDetailWhateverTheOptionsWant) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  const auto levels = test::loadFragment(
      L"levels",
      test::profilesJson({test::functionJson(L"void coarse(float a, out float r)\n{\n}", LR"(,"lod":10)"),
                          test::functionJson(L"void fine(float a, out float r)\n{\n}", LR"(,"lod":100)")}));
  ASSERT_TRUE(scene.graph->addPostprocessFragment(scene.instance(*levels, L"post0").get()));
  scene.options->surfaceLOD = 10.0f;
  scene.options->lightLOD = 10.0f;
  const std::string text = collapseLightLoop(scene);
  EXPECT_NE(text.find("    fine2(\n"), std::string::npos) << text;
}

TEST(PostProcess, RefusesAFragmentWhoseDefinitionCannotBeWritten) {
  // Nothing in the fragment's list of profiles serves the language.
  TestScene scene = sceneWithOutputs({TypeID_float});
  const auto loaded = test::loadFragment(L"p", test::functionJson(L"void p(float a, out float r)\n{\n}"));
  class Unwritable : public AShaderFragmentProfileFunction {
  public:
    bool writeDefinition(CodeSnippetInstance&, AShaderCollapseContext&,
                         FragmentProfileInstance&) const override {
      return false;
    }
  };
  const auto profile = makeRef<Unwritable>();
  profile->languages().insert(UString(L"dx11"));
  profile->setProfilename(L"default");
  profile->setFunctionPrototype(L"void p(float a, out float r)");
  const auto fragment = makeRef<AShaderFragment>(L"post0");
  fragment->registerProfile(profile.get());
  fragment->generateAutoInputsOutputs(scene.language.get());
  ASSERT_TRUE(scene.graph->addPostprocessFragment(fragment.get()));
  EXPECT_EQ(collapseLightLoop(scene), "sfgError: failed to write postprocess fragment definition.");
}

TEST(PostProcess, RefusesAFragmentWithoutProfiles) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  const auto fragment = makeRef<AShaderFragment>(L"post0");
  fragment->key() = L"bare";
  fragment->addInput(TypeID_float, L"a");
  ASSERT_TRUE(scene.graph->addPostprocessFragment(fragment.get()));
  EXPECT_EQ(collapseDefault(scene), "The fragment bare doesn't have a default profile");
}

// Hosts that answer null, and graphs that are not ours.

TEST(OddHosts, MayLetALanguageHaveNoNames) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  scene.language->unknownTypes = true;
  EXPECT_NE(collapseDefault(scene).find("    source1(\n        out0);"), std::string::npos);
}

TEST(OddHosts, MayHaveNullLightsInADefaultCollapse) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  const std::string text = collapseDefault(scene);
  scene.environment->lights.emplace_back();
  EXPECT_EQ(collapseDefault(scene), text);
}

/// A graph that is not ours, in front of one that is.
class ForeignGraph : public RefCounted<IShaderFragmentGraph> {
public:
  explicit ForeignGraph(const RefPtr<AShaderFragmentGraph>& inner) : inner_(inner) {}
  const wchar_t* getKey() const override { return inner_->getKey(); }
  void setKey(const wchar_t*) override {}
  const WString& getHashString() const override { return inner_->getHashString(); }
  void setHashString(const WString&) override {}
  void setShaderFlags(IShaderFlags*) override {}
  const IShaderFlags* getShaderFlags() const override { return nullptr; }
  void setNonConsolidatable() override {}
  bool isConsolidatable() const override { return true; }
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
  const Array<ShaderFragmentConnection>& getOutputConnections() const override {
    return inner_->getOutputConnections();
  }
  bool setOutputConnection(const wchar_t*, IShaderFragment*, const wchar_t*) override { return false; }
  bool setOutputConnection(std::size_t, IShaderFragment*, std::size_t) override { return false; }
  void addFragment(IShaderFragment*) override {}
  void removeFragment(IShaderFragment*) override {}
  std::size_t getNumFragments() const override { return 1; }
  IShaderFragment* getFragment(std::size_t) const override { return nullptr; }
  std::size_t getNumUniforms() const override { return 0; }
  const AParameter* getUniform(std::size_t) const override { return nullptr; }
  void addUniform(const AParameter*) override {}
  void addPreprocessFragment(IShaderFragment*) override {}
  void removePreprocessFragment(std::size_t) override {}
  std::size_t getNumPreprocessFragment() const override { return processes; }
  IShaderFragment* getPreprocessFragment(std::size_t) const override { return nullptr; }
  bool addPostprocessFragment(IShaderFragment*) override { return false; }
  bool insertPostprocessFragment(std::size_t, IShaderFragment*) override { return false; }
  void removePostprocessFragment(std::size_t) override {}
  std::size_t getNumPostprocessFragments() const override { return postprocesses; }
  const IShaderFragment* getPostprocessFragment(std::size_t) const override { return nullptr; }

  std::size_t processes = 0;
  std::size_t postprocesses = 0;

private:
  RefPtr<AShaderFragmentGraph> inner_;
};

template <class Tool>
std::string collapseForeign(const TestScene& scene, const ForeignGraph& graph) {
  const auto tool = makeRef<Tool>();
  try {
    return test::describe(
        tool->collapse(&graph, scene.environment.get(), scene.options.get(), scene.language.get()));
  } catch (const Exception& exception) {
    return exception.what();
  }
}

TEST(OddHosts, MayHaveGraphsThatAreNotOursWhichCountAsEmpty) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  const auto graph = makeRef<ForeignGraph>(scene.graph);
  EXPECT_EQ(collapseForeign<AShaderCollapseToolDefault>(scene, *graph), "Failed to evaluate fragment!");
  EXPECT_EQ(collapseForeign<AShaderCollapseToolLightLoop>(scene, *graph), "Failed to set default profile.");
}

TEST(OddHosts, MayHaveNullPortsAndUniforms) {
  const auto withNulls = [](int place) {
    TestScene scene = sceneWithOutputs({TypeID_float});
    if (place == 6) {
      scene = TestScene();
      scene.output(L"x", TypeID_float, scene.addFunction(L"n0", L"void source(float a, out float r)\n{\n}"));
    }
    auto* fragment = dynamic_cast<AShaderFragment*>(scene.graph->getFragment(0));
    const auto consumer = place == 4 ? consumerOf({}) : consumerOf({TypeID_fvec4});
    const AParameter* none = nullptr;
    if (place == 0) fragment->addInput(none);
    if (place == 6) {
      scene.graph->addInput(none);
      fragment->setInputConnection(std::size_t{0}, std::size_t{0});
    }
    if (place == 1) fragment->addOutput(none);
    if (place == 2) fragment->addUniform(none);
    if (place == 4) consumer->addInput(none);
    if (place == 3 || place == 5) {
      scene.graph->addOutput(none);
      scene.graph->setOutputConnection(std::size_t{1}, fragment, 0);
    }
    if (place == 4 || place == 5) scene.environment->output = consumer;
    return scene;
  };
  EXPECT_EQ(collapseDefault(withNulls(0)), "Failed to evaluate fragment!");
  EXPECT_EQ(collapseLightLoop(withNulls(0)), "null");
  EXPECT_EQ(collapseLightLoop(withNulls(3)), "null");
  EXPECT_EQ(collapseDefault(withNulls(3)), "null");
  EXPECT_EQ(collapseLightLoop(withNulls(6)), "null");
  EXPECT_EQ(collapseDefault(withNulls(6)), "null");
  for (const int place : {4, 5}) {
    EXPECT_EQ(collapseDefault(withNulls(place)), kNotTheSame) << place;
    EXPECT_EQ(collapseLightLoop(withNulls(place)), kNotTheSame) << place;
  }
  for (const int place : {1, 2}) {
    EXPECT_NE(collapseDefault(withNulls(place)).find("source1("), std::string::npos) << place;
    EXPECT_NE(collapseLightLoop(withNulls(place)).find("source1("), std::string::npos) << place;
  }
}

TEST(OddHosts, MayAnswerNullForProcessFragments) {
  TestScene scene = sceneWithOutputs({TypeID_float});
  const auto graph = makeRef<ForeignGraph>(scene.graph);
  graph->processes = 1;
  EXPECT_EQ(collapseForeign<AShaderCollapseToolDefault>(scene, *graph), "Failed to evaluate fragment!");
  graph->postprocesses = 1;
  EXPECT_EQ(collapseForeign<AShaderCollapseToolDefault>(scene, *graph), kNotTheSame);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
