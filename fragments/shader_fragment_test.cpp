#include "sfg/shader_fragment.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_function.h"
#include "sfg/shader_fragment_profile_inline.h"
#include "tests/support/messages.h"
#include "tests/support/test_host.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestLanguage;
using TolmSDK::test::WideOutputCapture;

constexpr std::size_t k0 = 0;
constexpr std::size_t k1 = 1;

const UString kDx11(L"dx11");

RefPtr<AShaderFragment> makeFragment(std::size_t inputs, std::size_t outputs, const wchar_t* name = L"f") {
  auto fragment = makeRef<AShaderFragment>(name);
  for (std::size_t i = 0; i < inputs; ++i)
    fragment->addInput(TypeID_float, L"in" + itos(static_cast<int>(i)));
  for (std::size_t i = 0; i < outputs; ++i)
    fragment->addOutput(TypeID_float, L"out" + itos(static_cast<int>(i)));
  return fragment;
}

RefPtr<AShaderFragmentProfile> makeProfile(const wchar_t* name, float lod,
                                           std::initializer_list<const wchar_t*> languages) {
  RefPtr<AShaderFragmentProfile> profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setProfilename(name);
  profile->setLOD(lod);
  for (const wchar_t* language : languages) profile->languages().insert(UString(language));
  return profile;
}

bool isUnconnected(const ShaderFragmentConnection& connection) {
  return connection.fragment == nullptr && connection.index == kNotFound;
}

// Counting and identity

TEST(ShaderFragment, AnswersItselfForTheOneInterface) {
  const auto fragment = makeRef<AShaderFragment>();
  EXPECT_EQ(fragment->QueryInterface({0x4fe71654u, 0x25c00a56u}), fragment.get());
  EXPECT_EQ(fragment->QueryInterface({0x4fe71654u, 0x25c00a57u}), nullptr);
}

TEST(ShaderFragment, StartsWithACountOfZeroAndIsConsolidatable) {
  auto* fragment = new AShaderFragment(L"n0");
  EXPECT_EQ(fragment->referenceCount(), 0u);
  EXPECT_TRUE(fragment->isConsolidatable());
  EXPECT_EQ(fragment->instanceName(), L"n0");
  EXPECT_EQ(fragment->getOwnerGraph(), nullptr);
  EXPECT_TRUE(fragment->getShaderInputTypes().empty());
  fragment->AddRef();
  fragment->Release();
}

// Profiles

TEST(ShaderFragment, IgnoresNullProfilesAndThoseWithoutLanguages) {
  const auto fragment = makeRef<AShaderFragment>();
  fragment->registerProfile(nullptr);
  const auto profile = makeProfile(L"default", 100.0f, {});
  fragment->registerProfile(profile.get());
  EXPECT_EQ(fragment->getNumProfiles(), 0u);
  EXPECT_EQ(profile->referenceCount(), 1u);
  EXPECT_EQ(fragment->findBestProfile(L"default", UString(), 100.0f), nullptr);
}

TEST(ShaderFragment, ListsAProfileUnderEachLanguageAndOnceInOrder) {
  const auto fragment = makeRef<AShaderFragment>();
  const auto profile = makeProfile(L"default", 100.0f, {L"dx11", L"gl"});
  fragment->registerProfile(profile.get());
  EXPECT_EQ(fragment->getNumProfiles(), 1u);
  EXPECT_EQ(fragment->getProfile(0), profile.get());
  EXPECT_EQ(fragment->findBestProfile(L"default", kDx11, 0.0f), profile.get());
  EXPECT_EQ(fragment->findBestProfile(L"default", UString(L"gl"), 0.0f), profile.get());
  EXPECT_EQ(fragment->findBestProfile(L"default", UString(L"metal"), 0.0f), nullptr);
  EXPECT_EQ(profile->referenceCount(), 4u);  // ours, one per language, one in the list

  fragment->registerProfile(profile.get());
  EXPECT_EQ(fragment->getNumProfiles(), 2u);
}

TEST(ShaderFragment, FindsTheFirstPlaceOfAProfileHoweverManyThereAre) {
  const auto fragment = makeRef<AShaderFragment>();
  std::vector<RefPtr<AShaderFragmentProfile>> profiles;
  for (std::size_t i = 0; i < 40; ++i) {
    profiles.push_back(makeProfile(L"p", 0.0f, {L"dx11"}));
    EXPECT_EQ(fragment->findProfileIndex(profiles.back().get()), kNotFound);
    fragment->registerProfile(profiles.back().get());
    fragment->registerProfile(profiles.front().get());
    for (std::size_t k = 0; k <= i; ++k)
      EXPECT_EQ(fragment->findProfileIndex(profiles[k].get()), k == 0 ? 0 : 2 * k);
  }
  const RefPtr<AShaderFragment> clone(static_cast<AShaderFragment*>(fragment->clone(L"c")));
  EXPECT_EQ(clone->getProfileTable(), fragment->getProfileTable());
  const auto other = makeProfile(L"q", 0.0f, {L"dx11", L"gl"});
  clone->registerProfile(other.get());
  EXPECT_NE(clone->getProfileTable(), fragment->getProfileTable());
  EXPECT_EQ(clone->findProfileIndex(other.get()), 80u);
  EXPECT_EQ(clone->findProfileIndex(profiles[39].get()), 78u);
  EXPECT_EQ(fragment->findProfileIndex(other.get()), kNotFound);
  Array<std::wstring_view> keys;
  clone->appendProfileKeys(keys);
  EXPECT_EQ(keys, (Array<std::wstring_view>{L"pdx11", L"qdx11", L"qgl"}));
}

TEST(ShaderFragment, FindsTheProfileNearestInLevelOfDetail) {
  const auto fragment = makeRef<AShaderFragment>();
  const RefPtr<AShaderFragmentProfile> profiles[] = {makeProfile(L"p", 0.0f, {L"dx11"}),
                                                     makeProfile(L"p", 2.0f, {L"dx11"}),
                                                     makeProfile(L"p", 4.0f, {L"dx11"})};
  for (const auto& profile : profiles) fragment->registerProfile(profile.get());
  const struct {
    float lod;
    std::size_t expected;
  } cases[] = {{-5.0f, 0}, {0.0f, 0}, {1.0f, 0}, {1.1f, 1}, {3.0f, 1}, {3.5f, 2}, {100.0f, 2}};
  for (const auto& c : cases)
    EXPECT_EQ(fragment->findBestProfile(L"p", kDx11, c.lod), profiles[c.expected].get()) << c.lod;
}

TEST(ShaderFragment, FindsNoProfileUnderAnotherNameOrCase) {
  const auto fragment = makeRef<AShaderFragment>();
  fragment->registerProfile(makeProfile(L"default", 100.0f, {L"dx11"}).get());
  EXPECT_EQ(fragment->findBestProfile(L"Default", kDx11, 100.0f), nullptr);
  EXPECT_EQ(fragment->findBestProfile(L"other", kDx11, 100.0f), nullptr);
}

TEST(ShaderFragment, JoinsNameAndLanguageWithoutSeparator) {
  const auto fragment = makeRef<AShaderFragment>();
  const auto profile = makeProfile(L"a", 1.0f, {L"bc"});
  fragment->registerProfile(profile.get());
  EXPECT_EQ(fragment->findBestProfile(L"ab", UString(L"c"), 1.0f), profile.get());
}

TEST(ShaderFragment, FindsTheFirstProfileOfALanguage) {
  const auto fragment = makeRef<AShaderFragment>();
  EXPECT_EQ(fragment->findFirstProfile(kDx11), nullptr);
  const auto gl = makeProfile(L"a", 0.0f, {L"gl"});
  const auto second = makeProfile(L"b", 50.0f, {L"dx11", L"gl"});
  const auto third = makeProfile(L"c", 100.0f, {L"dx11"});
  for (const auto* profile : {&gl, &second, &third}) fragment->registerProfile(profile->get());
  EXPECT_EQ(fragment->findFirstProfile(kDx11), second.get());
  EXPECT_EQ(fragment->findFirstProfile(UString(L"gl")), gl.get());
  EXPECT_EQ(fragment->findFirstProfile(UString(L"metal")), nullptr);
}

// Ports

TEST(ShaderFragment, NamesTypesOfPorts) {
  const auto language = makeRef<TestLanguage>();
  const auto fragment = makeRef<AShaderFragment>();
  fragment->addInput(TypeID_fvec3, L"n");
  fragment->addInput(L"Light", L"l");
  fragment->addOutput(L"Surface", L"s");
  fragment->addOutput(TypeID_float, L"x");
  EXPECT_EQ(fragment->getInputType(language.get(), 0), L"float3");
  EXPECT_EQ(fragment->getInputType(language.get(), 1), L"Light");
  EXPECT_EQ(fragment->getInputName(1), L"l");
  EXPECT_EQ(fragment->getInput(1)->getType(), TypeID_struct);
  EXPECT_EQ(fragment->getOutputType(language.get(), 0), L"Surface");
  EXPECT_EQ(fragment->getOutputName(0), L"s");
  EXPECT_EQ(fragment->getOutput(0)->getType(), TypeID_struct);
  EXPECT_EQ(fragment->getOutputType(language.get(), 1), L"float");
}

TEST(ShaderFragment, FindsPortsByExactName) {
  const auto fragment = makeRef<AShaderFragment>();
  for (const wchar_t* name : {L"a", L"b", L"a"}) {
    fragment->addInput(TypeID_float, name);
    fragment->addOutput(TypeID_float, name);
  }
  const struct {
    const wchar_t* name;
    std::size_t expected;
  } cases[] = {{L"a", 0},        {L"b", 1},          {L"A", kNotFound},
               {L"", kNotFound}, {L"ab", kNotFound}, {nullptr, kNotFound}};
  for (const auto& c : cases) {
    EXPECT_EQ(fragment->findInputIndex(c.name), c.expected);
    EXPECT_EQ(fragment->findOutputIndex(c.name), c.expected);
  }
}

TEST(ShaderFragment, SharesParametersByReference) {
  const auto parameter = makeRef<AParameter>(TypeID_float, L"x");
  {
    const auto fragment = makeRef<AShaderFragment>();
    fragment->addInput(parameter.get());
    fragment->addOutput(parameter.get());
    fragment->addUniform(parameter.get());
    EXPECT_EQ(fragment->getInput(0), parameter.get());
    EXPECT_EQ(fragment->getOutput(0), parameter.get());
    EXPECT_EQ(fragment->getUniform(0), parameter.get());
    EXPECT_EQ(fragment->getNumUniforms(), 1u);
    EXPECT_EQ(parameter->referenceCount(), 4u);
  }
  EXPECT_EQ(parameter->referenceCount(), 1u);
}

TEST(ShaderFragment, KeepsConnectionsWhenAnInputIsAdded) {
  const auto source = makeFragment(0, 1);
  const auto fragment = makeFragment(1, 0);
  ASSERT_TRUE(fragment->setInputConnection(k0, source.get(), k0));
  fragment->addInput(TypeID_float, L"more");
  ASSERT_EQ(fragment->getInputConnections().size(), 2u);
  EXPECT_EQ(fragment->getInputConnections()[0], (ShaderFragmentConnection{source.get(), 0}));
  EXPECT_TRUE(isUnconnected(fragment->getInputConnections()[1]));
}

// Connections

TEST(ShaderFragment, ConnectsFragmentsOfOneOwner) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto other = makeRef<AShaderFragmentGraph>();
  const auto source = makeFragment(0, 2);
  const auto fragment = makeFragment(2, 0);

  // Both unowned, then one owned, then of two graphs, then of one.
  EXPECT_TRUE(fragment->setInputConnection(k0, source.get(), k1));
  graph->addFragment(fragment.get());
  EXPECT_FALSE(fragment->setInputConnection(k1, source.get(), k0));
  other->addFragment(source.get());
  EXPECT_FALSE(fragment->setInputConnection(k1, source.get(), k0));
  other->removeFragment(source.get());
  graph->addFragment(source.get());
  EXPECT_TRUE(isUnconnected(fragment->getInputConnections()[1]));
  EXPECT_TRUE(fragment->setInputConnection(k1, source.get(), k0));
  EXPECT_EQ(fragment->getInputConnections()[0], (ShaderFragmentConnection{source.get(), 1}));
  EXPECT_EQ(fragment->getInputConnections()[1], (ShaderFragmentConnection{source.get(), 0}));
}

TEST(ShaderFragment, RefusesConnectionsThatDoNotFitAndKeepsTheOld) {
  const auto source = makeFragment(0, 2);
  const auto fragment = makeFragment(1, 0);
  ASSERT_TRUE(fragment->setInputConnection(k0, source.get(), k1));
  EXPECT_FALSE(fragment->setInputConnection(k0, nullptr, k0));
  EXPECT_FALSE(fragment->setInputConnection(k0, source.get(), std::size_t{2}));
  EXPECT_FALSE(fragment->setInputConnection(k1, source.get(), k0));
  EXPECT_FALSE(fragment->setInputConnection(k0, kNotFound));
  EXPECT_EQ(fragment->getInputConnections()[0], (ShaderFragmentConnection{source.get(), 1}));
}

TEST(ShaderFragment, DoesNotComparePortTypes) {
  const auto source = makeRef<AShaderFragment>();
  source->addOutput(TypeID_sampler2D, L"s");
  const auto fragment = makeFragment(1, 0);
  EXPECT_TRUE(fragment->setInputConnection(k0, source.get(), k0));
}

TEST(ShaderFragment, ConnectsByName) {
  const auto source = makeFragment(0, 2);
  const auto fragment = makeFragment(2, 0);
  EXPECT_TRUE(fragment->setInputConnection(L"in1", source.get(), L"out1"));
  EXPECT_EQ(fragment->getInputConnections()[1], (ShaderFragmentConnection{source.get(), 1}));
  EXPECT_FALSE(fragment->setInputConnection(L"in1", nullptr, L"out1"));
  EXPECT_FALSE(fragment->setInputConnection(L"in2", source.get(), L"out1"));
  EXPECT_FALSE(fragment->setInputConnection(L"in1", source.get(), L"Out1"));
  EXPECT_FALSE(fragment->setInputConnection(nullptr, source.get(), L"out1"));
  EXPECT_FALSE(fragment->setInputConnection(L"in1", source.get(), nullptr));
}

TEST(ShaderFragment, ConnectsToInputsOfItsGraph) {
  const auto fragment = makeFragment(2, 0);
  EXPECT_FALSE(fragment->setInputConnection(k0, k0));
  EXPECT_FALSE(fragment->setInputConnection(L"in0", L"uv"));
  const auto graph = makeRef<AShaderFragmentGraph>();
  graph->addFragment(fragment.get());
  EXPECT_FALSE(fragment->setInputConnection(k0, k0));
  graph->addInput(TypeID_fvec2, L"t");
  graph->addInput(TypeID_fvec2, L"uv");
  EXPECT_TRUE(fragment->setInputConnection(k0, k1));
  EXPECT_FALSE(fragment->setInputConnection(k0, std::size_t{2}));
  EXPECT_FALSE(fragment->setInputConnection(std::size_t{2}, k0));
  EXPECT_TRUE(fragment->setInputConnection(L"in1", L"uv"));
  EXPECT_FALSE(fragment->setInputConnection(L"in1", L"UV"));
  EXPECT_FALSE(fragment->setInputConnection(L"in9", L"uv"));
  EXPECT_EQ(fragment->getInputConnections()[0], (ShaderFragmentConnection{nullptr, 1}));
  EXPECT_EQ(fragment->getInputConnections()[1], (ShaderFragmentConnection{nullptr, 1}));
}

TEST(ShaderFragment, ClearsConnections) {
  const auto source = makeFragment(0, 1);
  const auto fragment = makeFragment(2, 0);
  ASSERT_TRUE(fragment->setInputConnection(k0, source.get(), k0));
  ASSERT_TRUE(fragment->setInputConnection(k1, source.get(), k0));
  fragment->clearInputConnect(std::size_t{2});
  fragment->clearInputConnect(kNotFound);
  fragment->clearInputConnect(L"in9");
  fragment->clearInputConnect(static_cast<const wchar_t*>(nullptr));
  EXPECT_TRUE(fragment->getInputConnections()[0].isConnected());
  fragment->clearInputConnect(k0);
  EXPECT_TRUE(isUnconnected(fragment->getInputConnections()[0]));
  EXPECT_TRUE(fragment->getInputConnections()[1].isConnected());
  fragment->clearInputConnect(L"in1");
  EXPECT_TRUE(isUnconnected(fragment->getInputConnections()[1]));
}

// Ancestry

TEST(ShaderFragment, KnowsItsAncestors) {
  const auto a = makeFragment(1, 1);
  const auto b = makeFragment(2, 1);
  const auto c = makeFragment(1, 1);
  ASSERT_TRUE(b->setInputConnection(k1, a.get(), k0));
  ASSERT_TRUE(c->setInputConnection(k0, b.get(), k0));
  EXPECT_TRUE(c->hasAncestor(b.get()));
  EXPECT_TRUE(c->hasAncestor(a.get()));
  EXPECT_TRUE(b->hasAncestor(a.get()));
  EXPECT_FALSE(a->hasAncestor(c.get()));
  EXPECT_FALSE(c->hasAncestor(c.get()));
  EXPECT_FALSE(c->hasAncestor(nullptr));
}

TEST(ShaderFragment, IsItsOwnAncestorOnACycleOnly) {
  const auto a = makeFragment(1, 1);
  const auto b = makeFragment(1, 1);
  const auto apart = makeFragment(1, 1);
  ASSERT_TRUE(a->setInputConnection(k0, b.get(), k0));
  EXPECT_FALSE(a->hasAncestor(a.get()));
  ASSERT_TRUE(b->setInputConnection(k0, a.get(), k0));
  EXPECT_TRUE(a->hasAncestor(a.get()));
  EXPECT_FALSE(a->hasAncestor(apart.get()));  // the walk ends though the cycle does not
}

TEST(ShaderFragment, FollowsNoConnectionsToGraphInputs) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  graph->addInput(TypeID_float, L"x");
  const auto fragment = makeFragment(1, 1);
  graph->addFragment(fragment.get());
  ASSERT_TRUE(fragment->setInputConnection(k0, k0));
  EXPECT_FALSE(fragment->hasAncestor(fragment.get()));
}

/// A fragment class of somebody else: its connections are its own, and it counts how often they are asked
/// for.
class ForeignFragment : public AShaderFragment {
public:
  const Array<ShaderFragmentConnection>& getInputConnections() const override {
    ++asked;
    return own;
  }
  Array<ShaderFragmentConnection> own;
  mutable int asked = 0;
};

TEST(ShaderFragment, LooksAtSharedForeignFragmentsOnce) {
  // Each rung of the ladder feeds both inputs of the next: 2^64 ways lead to the first.
  std::vector<RefPtr<ForeignFragment>> ladder{makeRef<ForeignFragment>()};
  for (int i = 0; i < 64; ++i) {
    auto rung = makeRef<ForeignFragment>();
    rung->own = {{ladder.back().get(), 0}, {ladder.back().get(), 0}};
    ladder.push_back(rung);
  }
  EXPECT_TRUE(ladder.back()->hasAncestor(ladder.front().get()));
  EXPECT_FALSE(ladder.back()->hasAncestor(nullptr));
  for (const auto& rung : ladder) EXPECT_LE(rung->asked, 2);
}

TEST(ShaderFragment, WalksDeepChainsWithoutStack) {
  std::vector<RefPtr<AShaderFragment>> chain{makeFragment(1, 1)};
  for (int i = 0; i < 100000; ++i) {
    auto next = makeFragment(1, 1);
    ASSERT_TRUE(next->setInputConnection(k0, chain.back().get(), k0));
    chain.push_back(next);
  }
  EXPECT_TRUE(chain.back()->hasAncestor(chain.front().get()));
  EXPECT_FALSE(chain.back()->hasAncestor(chain.back().get()));
}

// Cloning and clearing

TEST(ShaderFragment, ClonesShareEverythingButTheOwner) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto source = makeFragment(0, 1);
  const auto original = makeFragment(1, 1, L"first");
  const auto profile = makeProfile(L"p", 1.0f, {L"dx11"});
  const auto uniform = makeRef<AParameter>(TypeID_float, L"u");
  original->key() = L"noise";
  original->registerProfile(profile.get());
  original->addUniform(uniform.get());
  original->getShaderInputTypes().push_back(L"float");
  ASSERT_TRUE(original->setInputConnection(k0, source.get(), k0));
  graph->addFragment(original.get());

  const RefPtr<IShaderFragment> clone(original->clone(L"second"));
  EXPECT_EQ(static_cast<AShaderFragment*>(clone.get())->referenceCount(), 1u);
  EXPECT_EQ(clone->instanceName(), L"second");
  EXPECT_EQ(clone->key(), L"noise");
  EXPECT_EQ(clone->getHashString(), original->getHashString());
  EXPECT_EQ(clone->getOwnerGraph(), nullptr);
  EXPECT_TRUE(clone->getShaderInputTypes().empty());
  EXPECT_EQ(clone->getProfile(0), profile.get());
  EXPECT_EQ(clone->findBestProfile(L"p", kDx11, 0.0f), profile.get());
  EXPECT_EQ(clone->getInput(0), original->getInput(0));
  EXPECT_EQ(clone->getOutput(0), original->getOutput(0));
  EXPECT_EQ(clone->getUniform(0), uniform.get());
  EXPECT_EQ(clone->getInputConnections(), original->getInputConnections());

  // They are two fragments from then on.
  clone->addInput(TypeID_float, L"more");
  clone->clearInputConnect(k0);
  clone->registerProfile(makeProfile(L"q", 1.0f, {L"dx11"}).get());
  EXPECT_EQ(clone->getNumProfiles(), 2u);
  EXPECT_EQ(original->getNumProfiles(), 1u);
  EXPECT_EQ(original->findBestProfile(L"q", kDx11, 0.0f), nullptr);
  EXPECT_EQ(original->getNumInputs(), 1u);
  EXPECT_EQ(original->getInputConnections()[0].fragment, source.get());
}

TEST(ShaderFragment, ClonesKeepProfilesAlive) {
  const auto profile = makeProfile(L"p", 1.0f, {L"dx11"});
  RefPtr<AShaderFragment> original = makeFragment(0, 0);
  original->registerProfile(profile.get());
  RefPtr<IShaderFragment> first(original->clone(L"a"));
  RefPtr<IShaderFragment> second(first->clone(L"b"));
  original->clear();
  EXPECT_EQ(first->getProfile(0), profile.get());
  original.reset();
  first.reset();
  EXPECT_GT(profile->referenceCount(), 1u);
  EXPECT_EQ(second->findBestProfile(L"p", kDx11, 1.0f), profile.get());
  second.reset();
  EXPECT_EQ(profile->referenceCount(), 1u);
}

TEST(ShaderFragment, HoldsAProfileByEachOfItsPlaces) {
  // A place for each language and one in the list.
  const auto profile = makeProfile(L"p", 1.0f, {L"dx11", L"other"});
  const auto second = makeProfile(L"q", 1.0f, {L"dx11"});
  RefPtr<AShaderFragment> original = makeFragment(0, 0);
  original->registerProfile(profile.get());
  EXPECT_EQ(profile->referenceCount(), 1u + 3u);
  RefPtr<IShaderFragment> clone(original->clone(L"a"));
  EXPECT_EQ(profile->referenceCount(), 1u + 6u);
  RefPtr<IShaderFragment> cloneOfClone(clone->clone(L"b"));
  EXPECT_EQ(profile->referenceCount(), 1u + 9u);
  clone->registerProfile(second.get());
  clone->registerProfile(profile.get());
  EXPECT_EQ(profile->referenceCount(), 1u + 12u);
  EXPECT_EQ(second->referenceCount(), 1u + 2u);
  original->clear();
  EXPECT_EQ(profile->referenceCount(), 1u + 9u);
  original.reset();
  cloneOfClone.reset();
  EXPECT_EQ(profile->referenceCount(), 1u + 6u);
  EXPECT_EQ(clone->findBestProfile(L"p", kDx11, 1.0f), profile.get());
  clone.reset();
  EXPECT_EQ(profile->referenceCount(), 1u);
  EXPECT_EQ(second->referenceCount(), 1u);
}

TEST(ShaderFragment, ClonesAreChangedAndReadInThreadsOfTheirOwn) {
  // The two threads share nothing but what clones share by themselves: a relaxed flag orders nothing. The
  // thread sanitizer tells when what one of them reads is what the other one writes.
  for (int round = 0; round < 50; ++round) {
    RefPtr<AShaderFragment> original = makeFragment(0, 0);
    original->registerProfile(makeProfile(L"p", 1.0f, {L"dx11"}).get());
    const auto late = makeProfile(L"q", 1.0f, {L"dx11"});
    const RefPtr<IShaderFragment> changed(original->clone(L"a"));
    RefPtr<IShaderFragment> read(original->clone(L"b"));
    original.reset();

    std::atomic<bool> done{false};
    std::size_t seen = 0;
    std::thread reader([&] {
      if (read->findBestProfile(L"p", kDx11, 1.0f) != nullptr) seen = read->getNumProfiles();
      read.reset();
      done.store(true, std::memory_order_relaxed);
    });
    std::thread writer([&] {
      while (!done.load(std::memory_order_relaxed)) std::this_thread::yield();
      changed->registerProfile(late.get());
    });
    reader.join();
    writer.join();
    ASSERT_EQ(seen, 1u);
    ASSERT_EQ(changed->getNumProfiles(), 2u);
  }
}

TEST(ShaderFragment, ClonesKeepTheConsolidatableFlag) {
  const auto fragment = makeRef<AShaderFragment>();
  fragment->SetNonConsolidatable();
  const RefPtr<IShaderFragment> clone(fragment->clone(L"c"));
  EXPECT_FALSE(static_cast<AShaderFragment*>(clone.get())->isConsolidatable());
}

TEST(ShaderFragment, ClearEmptiesDefinitionAndPortsOnly) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto fragment = makeFragment(1, 1, L"name");
  const auto profile = makeProfile(L"p", 1.0f, {L"dx11"});
  fragment->key() = L"key";
  fragment->registerProfile(profile.get());
  fragment->addUniform(makeRef<AParameter>(TypeID_float, L"u").get());
  fragment->getShaderInputTypes().push_back(L"float");
  fragment->SetNonConsolidatable();
  graph->addFragment(fragment.get());

  fragment->clear();
  EXPECT_EQ(fragment->key(), L"");
  EXPECT_EQ(fragment->instanceName(), L"");
  EXPECT_EQ(fragment->getNumProfiles(), 0u);
  EXPECT_EQ(fragment->findBestProfile(L"p", kDx11, 1.0f), nullptr);
  EXPECT_EQ(profile->referenceCount(), 1u);
  EXPECT_EQ(fragment->getNumInputs(), 0u);
  EXPECT_EQ(fragment->getNumOutputs(), 0u);
  EXPECT_EQ(fragment->getNumUniforms(), 0u);
  EXPECT_TRUE(fragment->getInputConnections().empty());
  EXPECT_EQ(fragment->getOwnerGraph(), graph.get());
  EXPECT_FALSE(fragment->isConsolidatable());
  EXPECT_EQ(fragment->getShaderInputTypes(), Array<WString>{L"float"});
}

/// A parameter that tells when it dies.
class MortalParameter : public AParameter {
public:
  MortalParameter(const wchar_t* name, std::vector<WString>& deaths)
      : AParameter(TypeID_float, name), deaths_(deaths) {}
  ~MortalParameter() override { deaths_.push_back(getName()); }

private:
  std::vector<WString>& deaths_;
};

TEST(ShaderFragment, LetsUniformsGoBeforeOutputsBeforeInputs) {
  std::vector<WString> deaths;
  {
    const auto fragment = makeRef<AShaderFragment>();
    fragment->addInput(makeRef<MortalParameter>(L"input", deaths).get());
    fragment->addUniform(makeRef<MortalParameter>(L"uniform", deaths).get());
    fragment->addOutput(makeRef<MortalParameter>(L"output", deaths).get());
  }
  EXPECT_EQ(deaths, (std::vector<WString>{L"uniform", L"output", L"input"}));
}

// Ports from the first profile

TEST(ShaderFragment, TakesPortsFromItsFirstProfile) {
  const auto language = makeRef<TestLanguage>();
  const auto fragment = makeFragment(2, 2);
  const auto uniform = makeRef<AParameter>(TypeID_float, L"u");
  fragment->addUniform(uniform.get());
  const auto first = makeProfile(L"p", 1.0f, {L"dx11"});
  first->setFunctionPrototype(
      L"void f(float3 n, Light l, inout float x, inout State s, out float4 c, out Surface o)");
  const auto second = makeProfile(L"p", 2.0f, {L"dx11"});
  second->setFunctionPrototype(L"void g(float other)");
  fragment->registerProfile(first.get());
  fragment->registerProfile(second.get());

  fragment->generateAutoInputsOutputs(language.get());
  const struct {
    const wchar_t* name;
    TypeID type;
    const wchar_t* structName;
  } inputs[] = {{L"n", TypeID_fvec3, L""},
                {L"l", TypeID_struct, L"Light"},
                {L"x", TypeID_float, L""},
                {L"s", TypeID_struct, L"State"}};
  ASSERT_EQ(fragment->getNumInputs(), std::size(inputs));
  ASSERT_EQ(fragment->getInputConnections().size(), std::size(inputs));
  for (std::size_t i = 0; i < std::size(inputs); ++i) {
    EXPECT_EQ(fragment->getInputName(i), inputs[i].name);
    EXPECT_EQ(fragment->getInput(i)->getType(), inputs[i].type) << i;
    EXPECT_EQ(fragment->getInput(i)->getStructName(), inputs[i].structName);
    EXPECT_TRUE(isUnconnected(fragment->getInputConnections()[i]));
  }
  ASSERT_EQ(fragment->getNumOutputs(), 2u);
  EXPECT_EQ(fragment->getOutputName(0), L"c");
  EXPECT_EQ(fragment->getOutput(0)->getType(), TypeID_fvec4);
  EXPECT_EQ(fragment->getOutput(1)->getStructName(), L"Surface");
  EXPECT_EQ(fragment->getNumUniforms(), 1u);
}

TEST(ShaderFragment, HasNoPortsWithoutAProfileToTakeThemFrom) {
  const auto language = makeRef<TestLanguage>();
  const auto source = makeFragment(0, 1);
  const auto fragment = makeFragment(1, 1);
  ASSERT_TRUE(fragment->setInputConnection(k0, source.get(), k0));
  fragment->generateAutoInputsOutputs(language.get());
  EXPECT_EQ(fragment->getNumInputs(), 0u);
  EXPECT_EQ(fragment->getNumOutputs(), 0u);
  EXPECT_TRUE(fragment->getInputConnections().empty());
}

// Compatibility

TEST(CanConnect, ComparesWholePortListsByPosition) {
  const auto none = makeFragment(0, 0);
  const auto two = makeFragment(2, 2);
  const auto one = makeFragment(1, 1);
  const auto mixed = makeRef<AShaderFragment>();
  mixed->addInput(TypeID_float, L"a");
  mixed->addInput(TypeID_fvec3, L"b");
  const auto holed = makeRef<AShaderFragment>();
  holed->addInput(static_cast<const AParameter*>(nullptr));
  EXPECT_TRUE(canConnect(none.get(), none.get()));
  EXPECT_TRUE(canConnect(two.get(), two.get()));
  EXPECT_FALSE(canConnect(two.get(), one.get()));
  EXPECT_FALSE(canConnect(one.get(), two.get()));
  EXPECT_FALSE(canConnect(two.get(), mixed.get()));
  EXPECT_FALSE(canConnect(one.get(), holed.get()));
  const auto withoutOutput = makeRef<AShaderFragment>();
  withoutOutput->addOutput(static_cast<const AParameter*>(nullptr));
  EXPECT_FALSE(canConnect(withoutOutput.get(), one.get()));
  EXPECT_FALSE(canConnect(static_cast<IShaderFragment*>(nullptr), none.get()));
  EXPECT_FALSE(canConnect(none.get(), nullptr));
}

// Consolidation

TEST(ShaderFragment, MakesTheGraphItJoinsNonConsolidatable) {
  const auto before = makeRef<AShaderFragmentGraph>();
  const auto fragment = makeRef<AShaderFragment>();
  fragment->SetNonConsolidatable();
  before->addFragment(fragment.get());
  EXPECT_FALSE(before->isConsolidatable());

  const auto after = makeRef<AShaderFragmentGraph>();
  const auto late = makeRef<AShaderFragment>();
  after->addFragment(late.get());
  late->SetNonConsolidatable();
  EXPECT_TRUE(after->isConsolidatable());
}

// Dumps

TEST(ShaderFragment, DumpsItselfToTheCharacter) {
  const auto fragment = makeRef<AShaderFragment>(L"n3");
  fragment->key() = L"noise";
  fragment->addUniform(makeRef<AParameter>(TypeID_fvec3, L"u").get());
  fragment->addInput(TypeID_fvec3, L"p");
  fragment->addInput(L"Light", L"l");
  fragment->addOutput(TypeID_float, L"r");
  const auto profile = makeProfile(L"default", 1.0f, {L"dx11"});
  profile->setFunctionPrototype(L"void f(float a, out float r)");
  profile->setFunctionBody(L"\tr = a;\n");
  fragment->registerProfile(profile.get());
  fragment->registerProfile(profile.get());

  const std::wstring dumpedProfile = L"    profile name: default\n"
                                     L"    void f(\n"
                                     L"        float a,\n"
                                     L"        out float r)\n"
                                     L"    {\n"
                                     L"\tr = a;\n"
                                     L"\n"
                                     L"    }\n";
  WideOutputCapture capture;
  fragment->debugDump();
  EXPECT_EQ(capture.text(), L"key: noise\n"
                            L"instance: n3\n"
                            L"uniform: fvec3 u\n"
                            L"input: float3 p\n"
                            L"input: struct l\n"
                            L"output: float r\n"
                            L"profile 0 : \n" +
                                dumpedProfile + L"profile 1 : \n" + dumpedProfile);
}

TEST(ShaderFragment, DumpsNoEmptyInstanceName) {
  const auto fragment = makeRef<AShaderFragment>();
  WideOutputCapture capture;
  fragment->debugDump();
  EXPECT_EQ(capture.text(), L"key: \n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
