// What many lights over many fragments cost.

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "sfg/shader_fragment_profile_function.h"
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

  AShaderFragment* add(const AShaderFragment& fragment) {
    AShaderFragment* added = scene_.add(fragment, numbered(L"n", scene_.graph->getNumFragments()));
    if (last_ != nullptr) added->setInputConnection(std::size_t{0}, last_, 0);
    last_ = added;
    return added;
  }
  /// The top of the row feeds an output of the graph, and the next one starts another row.
  void finishRow() {
    scene_.output(numbered(L"out", scene_.graph->getNumOutputs()), TypeID_float, last_);
    last_ = nullptr;
  }
  /// Lights that are wanted with these profiles by turns.
  void addLights(const std::vector<WString>& profiles) {
    const auto light = test::loadFragment(L"light", test::functionJson(L"void light(out Light r)\n{\n}"));
    for (std::size_t i = 0; i < count_; ++i) {
      const WString name = numbered(L"light", i);
      scene_.environment->lights.push_back(scene_.instance(*light, name));
      scene_.options->lightProfiles[name] =
          makeProfile(profiles[i % profiles.size()], L"void wanted(float a)", L"").get();
    }
  }
  const TestScene& scene() const { return scene_; }

private:
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
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

INSTANTIATE_TEST_SUITE_P(Size, ManyLights,
                         ::testing::Values(Case{"OneProfile", addOneProfile},
                                           Case{"TwoProfilesByTurns", addAlternating},
                                           Case{"ProfilesThatNobodyHas", addUnknown},
                                           Case{"ProfilesOfOneFragment", addProfilesOfTheLit},
                                           Case{"AProfileOfEachFragment", addProfilesOfTheUnlit}),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
