#include "sfg/shader_collapse_context.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "sfg/size_limit.h"
#include "tests/support/test_graph.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;

constexpr std::wstring_view kContextAdd =
    L"void add(float a, float b, out float result)\n{\nresult = a + b;\n}";
constexpr std::wstring_view kContextLit =
    L"void lit(float a, out float result)\n{\nresult = sfg_currentLight.x;\n}";

struct Context : ::testing::Test {
  bool initialize() {
    return context.initialize(scene.language, scene.environment, scene.graph, scene.options);
  }
  bool isCreated(const IShaderFragment* fragment) {
    return context.getFragmentInstance(fragment).isInitialized();
  }
  std::string body() const { return toUtf8(context.getResultProfile()->getFunctionBody()); }
  std::string predefines() const { return toUtf8(context.getResultProfile()->predefines()); }

  TestScene scene;
  AShaderCollapseContext context;
};

TEST_F(Context, StartsWithAnEmptyResult) {
  ASSERT_NE(context.getResult(), nullptr);
  ASSERT_NE(context.getResultProfile(), nullptr);
  EXPECT_EQ(context.getResultProfile()->getProfilename(), L"default");
  EXPECT_EQ(context.getResultProfile()->getMode(), EShaderFragmentProfileMode::Function);
  EXPECT_EQ(context.getResult()->getNumProfiles(), 0u);
  EXPECT_EQ(context.getActiveLightIndex(), 0u);
  EXPECT_EQ(context.getFragmentGraph(), nullptr);
  EXPECT_EQ(context.getShadingEnvironment(), nullptr);
  EXPECT_EQ(context.getLanguage(), nullptr);
  EXPECT_TRUE(context.getLanguageString().empty());
  EXPECT_FALSE(context.requiresCurrentLight());
  EXPECT_TRUE(context.setActiveSurfaceProfile(L"any"));
}

TEST_F(Context, TakesWhatItIsInitialisedWith) {
  scene.options->surfaceLOD = 3.0f;
  scene.options->lightLOD = 4.0f;
  EXPECT_TRUE(initialize());
  EXPECT_EQ(context.getLanguage(), scene.language.get());
  EXPECT_EQ(context.getLanguageString(), UString(L"dx11"));
  EXPECT_EQ(context.getFragmentGraph(), scene.graph.get());
  EXPECT_EQ(context.getShadingEnvironment(), scene.environment.get());
  EXPECT_EQ(context.getSurfaceLOD(), 3.0f);
  scene.options->surfaceLOD = 5.0f;
  EXPECT_EQ(context.getSurfaceLOD(), 5.0f) << "asked for every time";
  EXPECT_EQ(context.getLightLOD(), 4.0f);
  EXPECT_EQ(context.getResult()->getNumProfiles(), 1u);
  EXPECT_EQ(context.getResult()->getProfile(0), context.getResultProfile());
  EXPECT_TRUE(context.getResultProfile()->languages().contains(UString(L"dx11")));
}

TEST_F(Context, RefusesAnEmptyGraphButTakesTheRest) {
  EXPECT_FALSE(context.initialize(scene.language, scene.environment, nullptr, scene.options));
  EXPECT_EQ(context.getLanguage(), scene.language.get());
  EXPECT_EQ(context.getResult()->getNumProfiles(), 1u);
  EXPECT_FALSE(context.initialize(nullptr, nullptr, scene.graph, nullptr));
}

TEST_F(Context, CreatesNothingForOpenOutputs) {
  scene.graph->addOutput(TypeID_float, L"open");
  AShaderFragment* add = scene.addFunction(L"n0", kContextAdd);
  EXPECT_TRUE(initialize());
  EXPECT_TRUE(context.setActiveSurfaceProfile(L"default")) << "there is no instance yet";
  EXPECT_FALSE(isCreated(add));
}

TEST_F(Context, CreatesOneInstancePerFragmentThatIsReached) {
  AShaderFragment* shared = scene.addFunction(L"n0", kContextAdd);
  AShaderFragment* top = scene.addFunction(L"n1", kContextAdd);
  AShaderFragment* apart = scene.addFunction(L"n2", kContextAdd);
  top->setInputConnection(L"a", shared, L"result");
  top->setInputConnection(L"b", shared, L"result");
  scene.output(L"x", TypeID_float, top);
  scene.output(L"y", TypeID_float, shared);
  scene.output(L"z", TypeID_float, top);
  EXPECT_TRUE(initialize());
  EXPECT_TRUE(isCreated(shared));
  EXPECT_TRUE(isCreated(top));
  EXPECT_FALSE(isCreated(apart));
  EXPECT_EQ(&context.getFragmentInstance(top), &context.getFragmentInstance(top));
}

TEST_F(Context, GivesFragmentsOfOneNameOneInstance) {
  AShaderFragment* first = scene.addFunction(L"same", kContextAdd);
  AShaderFragment* second = scene.addFunction(L"same", kContextLit);
  scene.output(L"x", TypeID_float, first);
  scene.output(L"y", TypeID_float, second);
  EXPECT_TRUE(initialize());
  EXPECT_EQ(&context.getFragmentInstance(first), &context.getFragmentInstance(second));
  EXPECT_EQ(context.getFragmentInstance(second).getShaderFragment(), first);
}

TEST_F(Context, FindsAFragmentByItsNameAlsoAtTheAddressOfAnother) {
  const auto one = makeRef<AShaderFragment>(L"one");
  AShaderFragment* place = one.get();
  FragmentInstance& before = context.getFragmentInstance(place);
  RefPtr<AShaderFragment> other = makeRef<AShaderFragment>(L"other");
  EXPECT_NE(&context.getFragmentInstance(other.get()), &before);
  one->clear();  // the same object under another name
  EXPECT_NE(&context.getFragmentInstance(place), &before);
}

TEST_F(Context, KeepsLightsApartFromSurfaces) {
  AShaderFragment* lit = scene.addFunction(L"key", kContextLit);
  scene.output(L"x", TypeID_float, lit);
  const auto light = scene.addLight(L"key", test::functionJson(L"void key(out L result)\n{\n}"));
  EXPECT_TRUE(initialize());
  EXPECT_NE(&context.getFragmentInstance(lit), &context.getLightFragmentInstance(light.get()));
  EXPECT_EQ(context.getLightFragmentInstance(light.get()).getShaderFragment(), light.get());
}

TEST_F(Context, FailsForALightThatIsThereTwice) {
  const auto light = scene.addLight(L"key", test::functionJson(L"void key(out L result)\n{\n}"));
  scene.environment->lights.push_back(light);
  EXPECT_FALSE(initialize());
}

TEST_F(Context, FailsForANullLight) {
  scene.environment->lights.emplace_back();
  EXPECT_FALSE(initialize());
}

TEST_F(Context, CreatesEveryInstanceOfACycle) {
  AShaderFragment* a = scene.addFunction(L"a", kContextAdd);
  AShaderFragment* b = scene.addFunction(L"b", kContextAdd);
  a->setInputConnection(L"a", b, L"result");
  b->setInputConnection(L"a", a, L"result");
  scene.output(L"x", TypeID_float, a);
  EXPECT_TRUE(initialize());
  EXPECT_TRUE(isCreated(a));
  EXPECT_TRUE(isCreated(b));
}

TEST_F(Context, AsksSurfacesOnlyWhetherTheyNeedTheLight) {
  const auto light = scene.addLight(L"key", test::functionJson(kContextLit));
  EXPECT_TRUE(initialize());
  EXPECT_TRUE(context.getLightFragmentInstance(light.get()).requiresCurrentLight());
  EXPECT_FALSE(context.requiresCurrentLight());
  AShaderFragment* lit = scene.addFunction(L"n0", kContextLit);
  context.getFragmentInstance(lit).create(context, scene.language.get(), lit);
  EXPECT_TRUE(context.requiresCurrentLight());
}

TEST_F(Context, AnInstanceThatWasNeverCreatedTakesNoProfile) {
  EXPECT_TRUE(initialize());
  EXPECT_TRUE(context.setActiveSurfaceProfile(L"default"));
  const auto stray = makeRef<AShaderFragment>(L"stray");
  EXPECT_FALSE(context.getFragmentInstance(stray.get()).isInitialized());
  EXPECT_FALSE(context.setActiveSurfaceProfile(L"default"));
}

TEST_F(Context, StopsAtTheFirstSurfaceWithoutTheProfile) {
  // Walked in the order of the names: "a" takes the profile, "b" has none, "c" keeps what it has.
  const auto withBoth = test::loadFragment(
      L"both", test::profilesJson({test::functionJson(L"void day(out float r)\n{\n}"),
                                   test::namedFunctionJson(L"night", L"void night(out float r)\n{\n}")}));
  AShaderFragment* a = scene.add(*withBoth, L"a");
  AShaderFragment* b = scene.add(
      *test::loadFragment(L"dusk", test::namedFunctionJson(L"dusk", L"void dusk(out float r)\n{\n}")), L"b");
  AShaderFragment* c = scene.add(*withBoth, L"c");
  for (AShaderFragment* fragment : {c, b, a}) scene.output(fragment->instanceName(), TypeID_float, fragment);
  EXPECT_TRUE(initialize());
  EXPECT_FALSE(context.setActiveSurfaceProfile(L"night"));
  EXPECT_EQ(context.getFragmentInstance(a).getActiveProfileOutput(0), L"result_a_02");
  EXPECT_EQ(context.getFragmentInstance(c).getActiveProfileOutput(0), L"result_c_01");
}

TEST_F(Context, AnswersARequestForAProfileAfreshInAnotherLanguage) {
  const auto loaded = test::loadFragment(
      L"f", test::profilesJson(
                {test::functionJson(L"void f(out float r)\n{\n}"),
                 WString(LR"x({"language":["other"],"implementation":["void g(out float r)","{","}"]})x")}));
  AShaderFragment* surface = scene.add(*loaded, L"a");
  scene.output(L"r", TypeID_float, surface);
  EXPECT_TRUE(initialize());
  EXPECT_TRUE(context.setActiveSurfaceProfile(L"default"));
  FragmentInstance& instance = context.getFragmentInstance(surface);
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"result_a_01");
  const auto other = makeRef<test::TestLanguage>(L"other");
  context.setLanguage(other.get());
  EXPECT_TRUE(context.setActiveSurfaceProfile(L"default"));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"result_a_02");
  context.setLanguage(scene.language.get());
  EXPECT_TRUE(instance.setActiveProfile(context, L"default", scene.options->surfaceLOD));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"result_a_01");
  const auto unknown = makeRef<test::TestLanguage>(L"unknown");
  context.setLanguage(unknown.get());
  EXPECT_FALSE(context.setActiveSurfaceProfile(L"default"));
  EXPECT_EQ(instance.getActiveProfileOutput(0), L"result_a_01");
}

TEST_F(Context, TakesTheProfilesNearestToTheLevelOfDetailNow) {
  const auto levels = test::loadFragment(
      L"levels",
      test::profilesJson({test::functionJson(L"void fine(out float r)\n{\n}", LR"(,"lod":100)"),
                          test::functionJson(L"void coarse(out float r)\n{\n}", LR"(,"lod":10)")}));
  AShaderFragment* surface = scene.add(*levels, L"a");
  scene.output(L"r", TypeID_float, surface);
  EXPECT_TRUE(initialize());
  for (const auto& [lod, name] : {std::pair(10.0f, L"result_a_02"), std::pair(90.0f, L"result_a_01")}) {
    scene.options->surfaceLOD = lod;
    EXPECT_TRUE(context.setActiveSurfaceProfile(L"default"));
    EXPECT_EQ(context.getFragmentInstance(surface).getActiveProfileOutput(0), name);
  }
}

TEST_F(Context, CanBeInitialisedAgain) {
  AShaderFragment* source = scene.addFunction(L"n0", kContextAdd);
  AShaderFragment* top = scene.addFunction(L"n1", kContextAdd);
  top->setInputConnection(L"a", source, L"result");
  scene.output(L"x", TypeID_float, top);
  EXPECT_TRUE(initialize());
  // An instance keeps what it was made for, whatever becomes of the fragment's ports.
  top->clearInputConnect(L"a");
  top->generateAutoInputsOutputs(scene.language.get());
  EXPECT_TRUE(initialize());
  EXPECT_TRUE(isCreated(top));
}

TEST_F(Context, KnowsManyInstancesByName) {
  std::vector<AShaderFragment*> fragments;
  for (int i = 0; i < 100; ++i) {
    fragments.push_back(scene.addFunction(formatted(L"n%i", i).c_str(), kContextAdd));
    scene.output(fragments.back()->instanceName(), TypeID_float, fragments.back());
  }
  EXPECT_TRUE(initialize());
  for (AShaderFragment* fragment : fragments) {
    FragmentInstance& instance = context.getFragmentInstance(fragment);
    EXPECT_EQ(instance.getShaderFragment(), fragment);
    EXPECT_EQ(&instance, &context.getFragmentInstance(fragment)) << "none moves";
  }
}

TEST_F(Context, AnswersConstantsOfMarkedParametersOnly) {
  AValue two(TypeID_float);
  two.set(0, 2.0);
  scene.options->constants[L"k"] = two;
  EXPECT_TRUE(initialize());
  WString value = L"untouched";
  EXPECT_FALSE(context.getConstValue(value, nullptr));
  EXPECT_FALSE(context.getConstValue(value, test::parameter(TypeID_float, L"k").get()));
  EXPECT_FALSE(
      context.getConstValue(value, test::parameter(TypeID_float, L"x", AParameter::kConstantFlag).get()));
  EXPECT_EQ(value, L"untouched");
  EXPECT_TRUE(
      context.getConstValue(value, test::parameter(TypeID_float, L"k", AParameter::kConstantFlag).get()));
  EXPECT_EQ(value, L"2.0");
}

TEST_F(Context, RemembersKeysAndShaderInputs) {
  EXPECT_FALSE(context.getFragmentKeyExist(L"k"));
  context.setFragmentKeyExist(L"k");
  context.setFragmentKeyExist(L"k");
  EXPECT_TRUE(context.getFragmentKeyExist(L"k"));
  EXPECT_FALSE(context.getFragmentKeyExist(L"K"));
  context.allocateNewShaderInput(L"float2");
  context.allocateNewShaderInput(L"float2");
  EXPECT_EQ(context.getShaderInputTypes(), (Array<WString>{L"float2", L"float2"}));
}

// Writing.

TEST_F(Context, AppendsCodeToTheBody) {
  EXPECT_TRUE(context.writeCode(L"a;"));
  EXPECT_TRUE(context.writeCode(static_cast<const wchar_t*>(nullptr)));
  EXPECT_TRUE(context.writeCodef(L"%s[%d]%Iu;", L"b", -1, std::size_t{2}));
  EXPECT_EQ(body(), "a;b[-1]2;");
}

TEST_F(Context, FormatsTextOfAnyLength) {
  const WString longText(5000, L'x');
  EXPECT_TRUE(context.writeCodef(L"<%s>", longText));
  EXPECT_EQ(context.getResultProfile()->getFunctionBody().size(), 5002u);
}

TEST_F(Context, DeclaresAVariableOnALineOfItsOwn) {
  EXPECT_TRUE(context.writeDeclareVariable(L"float3", L"n"));
  EXPECT_EQ(body(), "    float3 n;\n");
}

TEST_F(Context, RefusesABodyThatGrowsTooLong) {
  const WString block(std::size_t{1} << 20, L'x');
  for (std::size_t i = 0; i < 64; ++i) context.writeCode(std::wstring_view(block));
  EXPECT_EQ(context.getResultProfile()->getFunctionBody().size(), kMaximumTextLength);
  EXPECT_THROW(context.writeCode(L"x"), Exception);
  EXPECT_EQ(context.getResultProfile()->getFunctionBody().size(), kMaximumTextLength);
}

TEST_F(Context, DropsPredefinesThatHoldOnlyBlanksAndComments) {
  for (const wchar_t* text : {L"", L" \t\r\n", L"// nothing\n", L"/* a *//* b */ // c", L"/* open"}) {
    context.writePredefine(WString(text));
  }
  EXPECT_EQ(predefines(), "");
}

TEST_F(Context, KeepsPreprocessorLines) {
  context.writePredefine(L"// about\n#define X 1\n");
  EXPECT_NE(predefines().find("#define X 1"), std::string::npos);
}

TEST_F(Context, WritesEachPredefineOnce) {
  const WString text = L"float help() { return 1; }\n";
  context.writePredefine(text);
  context.writePredefine(text);
  EXPECT_EQ(predefines(), "float help() { return 1; }\n");
  context.writePredefine(L"float help() { return 2; }\n");
  EXPECT_EQ(predefines(), "float help() { return 1; }\nfloat help1() { return 2; }\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
