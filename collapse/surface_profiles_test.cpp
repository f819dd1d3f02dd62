#include "collapse/surface_profiles.h"

#include <gtest/gtest.h>

#include "sfg/shader_collapse_context.h"
#include "tests/support/test_graph.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;
using Answer = SurfaceProfiles::Answer;

/// Instances of fragments with profiles of some names. A profile named "lit.." requires the current light.
class Surfaces : public ::testing::Test {
protected:
  RefPtr<AShaderFragment> load(std::initializer_list<const wchar_t*> names) {
    WString profiles;
    for (const WString name : names) {
      const WString body = name.starts_with(L"lit") ? L"r = sfg_currentLight.x;" : L"r = 1.0;";
      profiles += (profiles.empty() ? L"" : L",") +
                  test::namedFunctionJson(name, L"void f(out float r)\n{\n" + body + L"\n}");
    }
    return test::loadFragment(L"f", LR"({"profiles":[)" + profiles + L"]}");
  }
  FragmentInstance& add(const AShaderFragment& fragment, const WString& name) {
    FragmentInstance& instance = instances_.get(name);
    instance.followProfiles(profiles_);
    instance.joinContext(1, lastNumber_);
    instance.create(context_, scene_.language.get(), scene_.add(fragment, name));
    return instance;
  }
  Answer choose(const WString& name) { return profiles_.choose(name, UString(L"dx11"), 100.0f); }
  static WString profileOf(const FragmentInstance& instance) {
    return instance.getActiveProfileInstance()->getProfilename();
  }
  WString special() const {
    WString names;
    profiles_.forEachSpecial(
        [&](const FragmentInstance& instance) { names += instance.getFragment()->instanceName(); });
    return names;
  }

  TestScene scene_;
  AShaderCollapseContext context_;
  Arena arena_;
  InstanceTable instances_{arena_};
  SurfaceProfiles profiles_{instances_};
  std::uint32_t lastNumber_ = 0;
};

TEST_F(Surfaces, TakeTheProfileOfTheNameElseTheDefault) {
  const auto both = load({L"default", L"lamp"});
  FragmentInstance& a = add(*both, L"a");
  FragmentInstance& b = add(*both, L"b");
  FragmentInstance& c = add(*load({L"default"}), L"c");
  EXPECT_EQ(choose(L"default"), Answer::other);
  EXPECT_EQ(special(), L"");
  EXPECT_EQ(choose(L"lamp"), Answer::similar);
  EXPECT_EQ(special(), L"ba");
  EXPECT_EQ(profileOf(a) + L" " + profileOf(b) + L" " + profileOf(c), L"lamp lamp default");
  EXPECT_TRUE(profiles_.isSpecial(a));
  EXPECT_FALSE(profiles_.isSpecial(c));
  EXPECT_EQ(choose(L"default"), Answer::similar);
  EXPECT_EQ(profileOf(a), L"default");
}

TEST_F(Surfaces, HaveOneChoiceForAllNamesThatNobodyHas) {
  add(*load({L"default", L"lamp"}), L"a");
  EXPECT_EQ(choose(L"default"), Answer::other);
  EXPECT_EQ(choose(L"nobody"), Answer::same);
  EXPECT_EQ(choose(L"no one"), Answer::same);
  EXPECT_EQ(choose(L"lamp"), Answer::similar);
  EXPECT_EQ(choose(L"lamp"), Answer::same);
  EXPECT_EQ(choose(L"nobody"), Answer::similar);
}

TEST_F(Surfaces, ChangeInFrontOfTheFirstThatHasNoProfile) {
  const auto both = load({L"default", L"lamp"});
  FragmentInstance& c = add(*both, L"c");
  FragmentInstance& b = add(*load({L"spot"}), L"b");
  FragmentInstance& a = add(*both, L"a");
  EXPECT_EQ(choose(L"lamp"), Answer::failed);
  EXPECT_EQ(profileOf(a) + L" " + profileOf(b) + L" " + profileOf(c), L"lamp spot default");
  EXPECT_EQ(choose(L"spot"), Answer::other);
  EXPECT_EQ(profileOf(a) + L" " + profileOf(b) + L" " + profileOf(c), L"default spot default");
}

TEST_F(Surfaces, GiveUpTheirOwnProfileAtTheNextChoice) {
  FragmentInstance& a = add(*load({L"default", L"lamp", L"spot"}), L"a");
  EXPECT_EQ(choose(L"lamp"), Answer::other);
  EXPECT_EQ(profileOf(a), L"lamp");
  a.activate(a.getFragment()->getProfile(2));
  profiles_.setMixed();
  EXPECT_EQ(profileOf(a), L"spot");
  EXPECT_EQ(choose(L"lamp"), Answer::other);
  EXPECT_EQ(profileOf(a), L"lamp");
}

TEST_F(Surfaces, KeepWhatTheyHaveUntilTheFirstChoiceAfterThem) {
  const auto both = load({L"default", L"lamp"});
  FragmentInstance& a = add(*both, L"a");
  EXPECT_EQ(choose(L"lamp"), Answer::other);
  FragmentInstance& b = add(*both, L"b");
  EXPECT_EQ(profileOf(a) + L" " + profileOf(b), L"lamp default");
  EXPECT_EQ(choose(L"lamp"), Answer::other);
  EXPECT_EQ(profileOf(a) + L" " + profileOf(b), L"lamp lamp");
}

TEST_F(Surfaces, RequireTheLightWhereOneOfThemDoes) {
  FragmentInstance& a = add(*load({L"default", L"lit lamp"}), L"a");
  add(*load({L"default", L"lamp"}), L"b");
  EXPECT_FALSE(profiles_.requiresCurrentLight());
  for (int i = 0; i < 2; ++i) {
    choose(L"lit lamp");
    EXPECT_TRUE(profiles_.requiresCurrentLight());
    choose(L"lamp");
    EXPECT_FALSE(profiles_.requiresCurrentLight());
  }
  a.activate(a.getFragment()->getProfile(1));
  profiles_.setMixed();
  EXPECT_TRUE(profiles_.requiresCurrentLight());
}

TEST_F(Surfaces, AreLitByDefaultUnlessTheNameSaysOtherwise) {
  auto fragment = load({L"plain"});
  const auto lit = makeRef<AShaderFragmentProfileFunction>();
  lit->setProfilename(L"default");
  lit->languages().insert(UString(L"dx11"));
  lit->setFunctionPrototype(L"void g(out float r)");
  lit->setFunctionBody(L"r = sfg_currentLight.x;");
  fragment->registerProfile(lit.get());
  add(*fragment, L"a");
  choose(L"default");
  EXPECT_TRUE(profiles_.requiresCurrentLight());
  choose(L"plain");
  EXPECT_FALSE(profiles_.requiresCurrentLight());
}

/// Chooses the same profile whatever is asked for.
class Stubborn : public AShaderFragment {
public:
  Stubborn() : AShaderFragment(L"a") {}
  const IShaderFragmentProfile* findBestProfile(const WString& name, const UString&, float) const override {
    return name == L"unheard of" ? getProfile(1) : getProfile(0);
  }
};

TEST_F(Surfaces, OfAHostsOwnClassChooseAsTheyLike) {
  const auto fragment = makeRef<Stubborn>();
  const RefPtr<IObjectDataNode> node(createJsonNode());
  ASSERT_TRUE(node->loadFromText(
      test::profilesJson({test::namedFunctionJson(L"day", L"void f(out float r)\n{\n}"),
                          test::namedFunctionJson(L"night", L"void f(out float r)\n{\n}")})));
  ASSERT_TRUE(fragment->load(node.get()));
  FragmentInstance& a = instances_.get(L"a");
  a.followProfiles(profiles_);
  a.joinContext(1, lastNumber_);
  a.create(context_, scene_.language.get(), fragment.get());
  EXPECT_EQ(choose(L"default"), Answer::other);
  EXPECT_EQ(profileOf(a), L"day");
  EXPECT_EQ(choose(L"unheard of"), Answer::similar);
  EXPECT_EQ(profileOf(a), L"night");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
