// What many lights over many fragments cost.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "sfg/shader_fragment_profile_function.h"
#include "sfg/shader_fragment_profile_inline.h"
#include "tests/support/collapse.h"
#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;

RefPtr<AShaderFragmentProfileFunction> makeProfile(const WString& name, const WString& prototype,
                                                   const WString& body) {
  auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setProfilename(name);
  profile->languages().insert(UString(L"dx11"));
  profile->setFunctionPrototype(prototype);
  profile->setFunctionBody(body);
  return profile;
}

/// A function of one input and one output with a profile of each of these names. A lit one reads the light
/// in all but "default".
RefPtr<AShaderFragment> makeFragment(const WString& key, bool isLit, const std::vector<WString>& profiles) {
  auto fragment = makeRef<AShaderFragment>();
  fragment->key() = key;
  for (const WString& name : profiles) {
    const bool readsLight = isLit && name != L"default";
    fragment->registerProfile(makeProfile(name, L"void " + key + name + L"(float a, out float r)",
                                          readsLight ? L"\tr = a * sfg_currentLight.x;\n" : L"\tr = a;\n")
                                  .get());
  }
  return fragment;
}

WString numbered(const wchar_t* name, std::size_t number) {
  return name + itos(static_cast<long long>(number));
}

/// N lights over N fragments: a row whose bottom and top are lit, and a lit fragment beside it.
class ManyByMany {
public:
  explicit ManyByMany(std::size_t count) : count_(count) {}

  std::size_t count() const { return count_; }

  AShaderFragment* add(const AShaderFragment& fragment) { return feed(scene_.add(fragment, nextName())); }
  /// The same for an expression, whose ports are told here.
  AShaderFragment* addExpression(const AShaderFragment& fragment) {
    return feed(scene_.addWithPorts(fragment, nextName(), {test::parameter(TypeID_float, L"a")},
                                    {test::parameter(TypeID_float, L"r")}));
  }
  /// Feeds the second input of all fragments of that key by the fragment that was added first.
  void feedByFirst(std::wstring_view key) {
    AShaderFragmentGraph& graph = *scene_.graph;
    for (std::size_t i = 0; i < graph.getNumFragments(); ++i)
      if (graph.getFragment(i)->key() == key)
        graph.getFragment(i)->setInputConnection(1, graph.getFragment(0), 0);
  }
  /// The top of the row feeds an output of the graph, and the next one starts another row.
  void finishRow() {
    scene_.output(numbered(L"out", scene_.graph->getNumOutputs()), TypeID_float, last_);
    last_ = nullptr;
  }
  /// Lights that are wanted with these profiles by turns.
  void addLights(const std::vector<WString>& profiles) {
    addLightsOf(*test::loadFragment(L"light", test::functionJson(L"void light(out Light r)\n{\n}")),
                profiles);
  }
  void addLightsOf(const AShaderFragment& light, const std::vector<WString>& profiles) {
    for (std::size_t i = 0; i < count_; ++i) {
      const WString name = numbered(L"light", i);
      scene_.environment->lights.push_back(scene_.instance(light, name));
      scene_.options->lightProfiles[name] =
          makeProfile(profiles[i % profiles.size()], L"void wanted(float a)", L"").get();
    }
  }
  const TestScene& scene() const { return scene_; }

private:
  WString nextName() const { return numbered(L"n", scene_.graph->getNumFragments()); }
  AShaderFragment* feed(AShaderFragment* added) {
    if (last_ != nullptr) added->setInputConnection(std::size_t{0}, last_, 0);
    return last_ = added;
  }

  std::size_t count_;
  TestScene scene_;
  AShaderFragment* last_ = nullptr;
};

/// Rows whose lit fragments have a profile of each name; `unlit` makes the others.
void addRows(ManyByMany& many, const std::vector<WString>& litProfiles,
             const std::function<RefPtr<AShaderFragment>(std::size_t)>& unlit) {
  const auto lit = makeFragment(L"lit", true, litProfiles);
  many.add(*lit);
  for (std::size_t i = 0; i < many.count(); ++i) many.add(*unlit(i));
  many.add(*lit);
  many.finishRow();
  many.add(*lit);
  many.finishRow();
}

std::vector<WString> manyNames(std::size_t count) {
  std::vector<WString> names;
  for (std::size_t i = 0; i < count; ++i) names.push_back(numbered(L"P", i));
  return names;
}

void addAlternating(ManyByMany& many) {
  const std::vector<WString> names{L"Lamp", L"Spot"};
  const auto unlit = makeFragment(L"unlit", false, {L"default", L"Lamp", L"Spot"});
  addRows(many, names, [&](std::size_t) { return unlit; });
  many.addLights(names);
}

/// The light passes through all unlit fragments to the lit top.
void addOneProfile(ManyByMany& many) {
  const auto unlit = makeFragment(L"unlit", false, {L"default"});
  addRows(many, {L"Lamp"}, [&](std::size_t) { return unlit; });
  many.addLights({L"Lamp"});
}

void addUnknown(ManyByMany& many) {
  const auto unlit = makeFragment(L"unlit", false, {L"default", L"Lamp"});
  // The lit ones read the light with a profile that is their default.
  auto lit = makeRef<AShaderFragment>();
  lit->key() = L"lit";
  lit->registerProfile(
      makeProfile(L"default", L"void lit(float a, out float r)", L"\tr = a * sfg_currentLight.x;\n").get());
  many.add(*lit);
  for (std::size_t i = 0; i < many.count(); ++i) many.add(*unlit);
  many.add(*lit);
  many.finishRow();
  many.addLights(manyNames(many.count()));
}

void addProfilesOfTheLit(ManyByMany& many) {
  const auto unlit = makeFragment(L"unlit", false, {L"default"});
  const std::vector<WString> names = manyNames(many.count());
  addRows(many, names, [&](std::size_t) { return unlit; });
  many.addLights(names);
}

void addProfilesOfTheUnlit(ManyByMany& many) {
  const std::vector<WString> names = manyNames(many.count());
  addRows(many, names, [&](std::size_t i) { return makeFragment(L"unlit", false, {L"default", names[i]}); });
  many.addLights(names);
}

/// Code that calls the fragment at the input `a`, or that reads its value.
const WString kCalling = L"\tsfg_shader(a, a, 2.0, r, r);\n";
const WString kReading = L"\tr = a;\n";

/// A fragment whose profiles of these names have these bodies.
RefPtr<AShaderFragment> makeWithBodies(const WString& key,
                                       const std::vector<std::pair<WString, WString>>& bodies) {
  auto fragment = makeRef<AShaderFragment>();
  fragment->key() = key;
  for (const auto& [name, body] : bodies)
    fragment->registerProfile(
        makeProfile(name, L"void " + key + name + L"(float a, out float r)", body).get());
  return fragment;
}

/// A lit row with these two fragments in its middle, the second fed by the first, under lights of these
/// profiles.
void addBetween(ManyByMany& many, const AShaderFragment& first, const AShaderFragment& second,
                const std::vector<WString>& names) {
  const auto unlit = makeFragment(L"unlit", false, {L"default"});
  const auto lit = makeFragment(L"lit", true, names);
  many.add(*lit);
  for (std::size_t i = 0; i < many.count(); ++i) {
    if (i == many.count() / 2) {
      many.add(first);
      many.add(second);
    }
    many.add(*unlit);
  }
  many.add(*lit);
  many.finishRow();
  many.addLights(names);
}

void addCallingByTurns(ManyByMany& many) {
  addBetween(many, *makeFragment(L"called", false, {L"default"}),
             *makeWithBodies(L"caller", {{L"Lamp", kCalling}, {L"Spot", kReading}}), {L"Lamp", L"Spot"});
}

/// Both read the light, and each calls under another one.
void addLitCallers(ManyByMany& many) {
  const WString light = L"\tr *= sfg_currentLight.x;\n";
  addBetween(many, *makeWithBodies(L"called", {{L"Lamp", kReading + light}, {L"Spot", kCalling + light}}),
             *makeWithBodies(L"caller", {{L"Lamp", kCalling + light}, {L"Spot", kReading + light}}),
             {L"Lamp", L"Spot"});
}

void addProfilesOfACaller(ManyByMany& many) {
  std::vector<std::pair<WString, WString>> bodies;
  for (const WString& name : manyNames(many.count())) bodies.emplace_back(name, kCalling);
  addBetween(many, *makeFragment(L"called", false, {L"default"}), *makeWithBodies(L"caller", bodies),
             manyNames(many.count()));
}

void addProfilesOfACalled(ManyByMany& many) {
  std::vector<std::pair<WString, WString>> bodies;
  for (const WString& name : manyNames(many.count())) bodies.emplace_back(name, kReading);
  addBetween(many, *makeWithBodies(L"called", bodies), *makeWithBodies(L"caller", {{L"default", kCalling}}),
             manyNames(many.count()));
}

/// Every fragment of the row calls the same one, which nothing feeds, and has a profile for one of the
/// lights.
void addAProfileOfEachCaller(ManyByMany& many) {
  const std::vector<WString> names = manyNames(many.count());
  many.add(*makeFragment(L"called", false, {L"default"}));
  many.finishRow();
  addRows(many, names, [&](std::size_t i) {
    auto caller = makeRef<AShaderFragment>();
    caller->key() = L"caller";
    for (const WString& name : {WString(L"default"), names[i]})
      caller->registerProfile(makeProfile(name, L"void caller" + name + L"(float a, float f, out float r)",
                                          L"\tsfg_shader(f, a, 2.0, r, r);\n\tr += a;\n")
                                  .get());
    return caller;
  });
  many.feedByFirst(L"caller");
  many.addLights(names);
}

/// An expression of a host's own class.
class OwnExpression : public AShaderFragmentProfileInline {
public:
  bool writeFunctionCall(WString&, AShaderCollapseContext& context, FragmentProfileInstance& instance,
                         const Array<WString>& inputs, const Array<WString>&) const override {
    instance.setNumOutputs(1);
    instance.setOutput(0, WString(),
                       formatted(L"(%s * lights[%Iu])", inputs[0], context.getActiveLightIndex()));
    return true;
  }
};

void addOwnExpression(ManyByMany& many) {
  const auto profile = makeRef<OwnExpression>();
  profile->setProfilename(L"default");
  profile->languages().insert(UString(L"dx11"));
  profile->getFunctionParameters()->addInput(WString(), L"{{a}}");
  const auto expression = makeRef<AShaderFragment>();
  expression->key() = L"expression";
  expression->registerProfile(profile.get());
  const auto unlit = makeFragment(L"unlit", false, {L"default"});
  const auto lit = makeFragment(L"lit", true, {L"Lamp"});
  many.add(*lit);
  for (std::size_t i = 0; i < many.count(); ++i) many.add(*unlit);
  many.addExpression(*expression);
  many.add(*lit);
  many.finishRow();
  many.addLights({L"Lamp"});
}

/// The lights are one fragment with many levels of detail.
void addLevelsOfTheLight(ManyByMany& many) {
  const auto unlit = makeFragment(L"unlit", false, {L"default"});
  addRows(many, {L"Lamp"}, [&](std::size_t) { return unlit; });
  const auto light = makeRef<AShaderFragment>();
  light->key() = L"light";
  for (std::size_t i = 0; i < many.count(); ++i) {
    const auto level = makeProfile(L"Lamp", L"void light(out Light r)", L"\tr.x = 1.0;\n");
    level->setLOD(static_cast<float>(i));
    light->registerProfile(level.get());
  }
  many.addLightsOf(*light, {L"Lamp"});
}

struct Case {
  const char* name;
  void (*add)(ManyByMany& many);
};

class ManyLights : public ::testing::TestWithParam<Case> {};

TEST_P(ManyLights, OverManyFragmentsCostWhatTheyWrite) {
  std::size_t few = 0;
  const double growth = TolmSDK::test::timeGrowth(100, [&](std::size_t count) {
    ManyByMany many(count);
    GetParam().add(many);
    std::string text;
    const std::clock_t time =
        TolmSDK::test::processorTime([&] { text = test::collapseLightLoop(many.scene()); });
    EXPECT_NE(text.find("// Light " + std::to_string(count - 1)), std::string::npos) << text.substr(0, 200);
    few = few == 0 ? text.size() : few;
    EXPECT_LT(text.size(), 20 * few) << "the text is in proportion too";
    return time;
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth) << growth;
}

INSTANTIATE_TEST_SUITE_P(Size, ManyLights,
                         ::testing::Values(Case{"OneProfile", addOneProfile},
                                           Case{"TwoProfilesByTurns", addAlternating},
                                           Case{"ProfilesThatNobodyHas", addUnknown},
                                           Case{"ProfilesOfOneFragment", addProfilesOfTheLit},
                                           Case{"AProfileOfEachFragment", addProfilesOfTheUnlit},
                                           Case{"AFragmentThatCallsByTurns", addCallingByTurns},
                                           Case{"LitFragmentsThatCallByTurns", addLitCallers},
                                           Case{"ProfilesOfACaller", addProfilesOfACaller},
                                           Case{"ProfilesOfACalled", addProfilesOfACalled},
                                           Case{"AProfileOfEachCaller", addAProfileOfEachCaller},
                                           Case{"AnExpressionOfOnesOwn", addOwnExpression},
                                           Case{"LevelsOfTheLight", addLevelsOfTheLight}),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
