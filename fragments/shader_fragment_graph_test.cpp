#include "sfg/shader_fragment_graph.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "tests/support/cost.h"
#include "tests/support/test_host.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestLanguage;

constexpr std::size_t kFirst = 0;
constexpr std::size_t kSecond = 1;

RefPtr<AShaderFragment> makeNode(std::size_t inputs, std::size_t outputs, TypeID type = TypeID_float) {
  auto fragment = makeRef<AShaderFragment>();
  for (std::size_t i = 0; i < inputs; ++i) fragment->addInput(type, L"in" + itos(static_cast<int>(i)));
  for (std::size_t i = 0; i < outputs; ++i) fragment->addOutput(type, L"out" + itos(static_cast<int>(i)));
  return fragment;
}

TEST(ShaderFragmentGraph, StartsEmpty) {
  auto* graph = new AShaderFragmentGraph();
  EXPECT_EQ(graph->referenceCount(), 0u);
  const RefPtr<AShaderFragmentGraph> holder(graph);
  EXPECT_STREQ(graph->getKey(), L"");
  EXPECT_EQ(graph->getHashString(), L"");
  EXPECT_EQ(graph->getShaderFlags(), nullptr);
  EXPECT_TRUE(graph->isConsolidatable());
  EXPECT_EQ(graph->getNumInputs() + graph->getNumOutputs() + graph->getNumFragments() +
                graph->getNumUniforms() + graph->getNumPreprocessFragment() +
                graph->getNumPostprocessFragments() + graph->getOutputConnections().size(),
            0u);
  EXPECT_EQ(graph->QueryInterface({0x4fe71654u, 0x25c00a56u}), graph);
  EXPECT_EQ(graph->QueryInterface({1, 2}), nullptr);
}

TEST(ShaderFragmentGraph, KeepsKeyHashAndFlags) {
  struct Flags : RefCounted<IShaderFlags> {};
  const auto graph = makeRef<AShaderFragmentGraph>();
  graph->setKey(L"material");
  EXPECT_STREQ(graph->getKey(), L"material");
  graph->setKey(nullptr);
  EXPECT_STREQ(graph->getKey(), L"");
  graph->setHashString(L"abc");
  EXPECT_EQ(graph->getHashString(), L"abc");

  const auto first = makeRef<Flags>();
  const auto second = makeRef<Flags>();
  graph->setShaderFlags(first.get());
  EXPECT_EQ(graph->getShaderFlags(), first.get());
  EXPECT_EQ(first->referenceCount(), 2u);
  graph->setShaderFlags(first.get());
  EXPECT_EQ(first->referenceCount(), 2u);
  graph->setShaderFlags(second.get());
  EXPECT_EQ(first->referenceCount(), 1u);
  graph->setShaderFlags(nullptr);
  EXPECT_EQ(graph->getShaderFlags(), nullptr);
  EXPECT_EQ(second->referenceCount(), 1u);
}

TEST(ShaderFragmentGraph, HasPortsAndUniforms) {
  const auto language = makeRef<TestLanguage>();
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto parameter = makeRef<AParameter>(TypeID_fvec2, L"uv");
  graph->addInput(parameter.get());
  graph->addInput(TypeID_float, L"t");
  graph->addInput(L"Light", L"l");
  graph->addOutput(parameter.get());
  graph->addOutput(TypeID_fvec4, L"c");
  graph->addOutput(L"Surface", L"s");
  graph->addUniform(parameter.get());

  EXPECT_EQ(graph->getInput(0), parameter.get());
  EXPECT_EQ(graph->getOutput(0), parameter.get());
  EXPECT_EQ(graph->getUniform(0), parameter.get());
  EXPECT_EQ(graph->getNumUniforms(), 1u);
  EXPECT_EQ(parameter->referenceCount(), 4u);
  EXPECT_EQ(graph->getInputType(language.get(), 0), L"float2");
  EXPECT_EQ(graph->getInputType(language.get(), 2), L"Light");
  EXPECT_EQ(graph->getInputName(2), L"l");
  EXPECT_EQ(graph->getOutputType(language.get(), 1), L"float4");
  EXPECT_EQ(graph->getOutputType(language.get(), 2), L"Surface");
  EXPECT_EQ(graph->getOutputName(2), L"s");

  // Every output comes with an unconnected entry; inputs have none.
  ASSERT_EQ(graph->getOutputConnections().size(), 3u);
  EXPECT_EQ(graph->getOutputConnections()[2], (ShaderFragmentConnection{nullptr, kNotFound}));

  EXPECT_EQ(graph->findInputIndex(L"t"), 1u);
  EXPECT_EQ(graph->findInputIndex(L"T"), kNotFound);
  EXPECT_EQ(graph->findInputIndex(nullptr), kNotFound);
  EXPECT_EQ(graph->findOutputIndex(L"s"), 2u);
  EXPECT_EQ(graph->findOutputIndex(L"t"), kNotFound);
  EXPECT_EQ(graph->findOutputIndex(nullptr), kNotFound);
}

// Members

TEST(ShaderFragmentGraph, TakesFragmentsThatBelongToNoGraph) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto other = makeRef<AShaderFragmentGraph>();
  const auto fragment = makeNode(0, 0);
  other->addFragment(fragment.get());
  graph->addFragment(fragment.get());
  EXPECT_EQ(graph->getNumFragments(), 0u);
  EXPECT_EQ(fragment->getOwnerGraph(), other.get());
  graph->removeFragment(fragment.get());  // not ours
  EXPECT_EQ(fragment->getOwnerGraph(), other.get());

  other->removeFragment(fragment.get());
  EXPECT_EQ(other->getNumFragments(), 0u);
  EXPECT_EQ(fragment->getOwnerGraph(), nullptr);
  graph->addFragment(fragment.get());
  graph->addFragment(fragment.get());
  ASSERT_EQ(graph->getNumFragments(), 1u);
  EXPECT_EQ(graph->getFragment(0), fragment.get());
  EXPECT_EQ(fragment->getOwnerGraph(), graph.get());
  EXPECT_EQ(fragment->referenceCount(), 2u);

  // A member whose owner was forgotten by hand is still no second time a member.
  fragment->setOwnerGraph(nullptr);
  graph->addFragment(fragment.get());
  EXPECT_EQ(graph->getNumFragments(), 1u);
  graph->removeFragment(fragment.get());
  EXPECT_EQ(graph->getNumFragments(), 1u);
  graph->addFragment(nullptr);
  graph->removeFragment(nullptr);
}

TEST(ShaderFragmentGraph, KeepsTheOrderOfMembers) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  RefPtr<AShaderFragment> members[4];
  for (auto& member : members) {
    member = makeNode(0, 0);
    graph->addFragment(member.get());
  }
  EXPECT_EQ(graph->findFragment(members[2].get()), 2u);
  graph->removeFragment(members[1].get());
  EXPECT_EQ(members[1]->referenceCount(), 1u);
  ASSERT_EQ(graph->getNumFragments(), 3u);
  EXPECT_EQ(graph->findFragment(members[0].get()), 0u);
  EXPECT_EQ(graph->findFragment(members[1].get()), kNotFound);
  EXPECT_EQ(graph->findFragment(members[2].get()), 1u);
  EXPECT_EQ(graph->findFragment(members[3].get()), 2u);
  EXPECT_EQ(graph->findFragment(nullptr), kNotFound);
}

TEST(ShaderFragmentGraph, LeavesConnectionsOfRemovedMembers) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto source = makeNode(0, 1);
  const auto target = makeNode(1, 1);
  graph->addFragment(source.get());
  graph->addFragment(target.get());
  graph->addOutput(TypeID_float, L"o");
  ASSERT_TRUE(target->setInputConnection(kFirst, source.get(), kFirst));
  ASSERT_TRUE(graph->setOutputConnection(kFirst, source.get(), kFirst));
  graph->removeFragment(source.get());
  EXPECT_EQ(target->getInputConnections()[0].fragment, source.get());
  EXPECT_EQ(graph->getOutputConnections()[0].fragment, source.get());
}

TEST(ShaderFragmentGraph, StaysNonConsolidatable) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto fragment = makeNode(0, 0);
  fragment->SetNonConsolidatable();
  graph->addFragment(fragment.get());
  EXPECT_FALSE(graph->isConsolidatable());
  graph->removeFragment(fragment.get());
  EXPECT_FALSE(graph->isConsolidatable());
}

TEST(ShaderFragmentGraph, LetsMembersGoWhenItDies) {
  const auto fragment = makeNode(0, 0);
  const auto chained = makeNode(0, 0);
  {
    const auto graph = makeRef<AShaderFragmentGraph>();
    graph->addFragment(fragment.get());
    graph->addPreprocessFragment(chained.get());
    EXPECT_TRUE(graph->addPostprocessFragment(chained.get()));
    EXPECT_EQ(chained->getOwnerGraph(), nullptr);  // no member
  }
  EXPECT_EQ(fragment->getOwnerGraph(), nullptr);
  EXPECT_EQ(fragment->referenceCount(), 1u);
  EXPECT_EQ(chained->referenceCount(), 1u);
}

/// A fragment that tells what happens to it.
class WitnessFragment : public AShaderFragment {
public:
  WitnessFragment(const wchar_t* name, std::vector<WString>& events)
      : AShaderFragment(name), events_(events) {}
  ~WitnessFragment() override { events_.push_back(instanceName() + L" dies"); }
  void setOwnerGraph(IShaderFragmentGraph* graph) override {
    AShaderFragment::setOwnerGraph(graph);
    if (graph == nullptr)
      events_.push_back(instanceName() + L" is free");
    else
      events_.push_back(instanceName() + L" joins " + itos(static_cast<int>(graph->getNumFragments())));
  }

private:
  std::vector<WString>& events_;
};

TEST(ShaderFragmentGraph, TellsAFragmentItsOwnerBeforeItIsAMember) {
  std::vector<WString> events;
  const auto graph = makeRef<AShaderFragmentGraph>();
  graph->addFragment(makeRef<WitnessFragment>(L"a", events).get());
  graph->addFragment(makeRef<WitnessFragment>(L"b", events).get());
  graph->removeFragment(graph->getFragment(0));
  EXPECT_EQ(events, (std::vector<WString>{L"a joins 0", L"b joins 1", L"a is free", L"a dies"}));
}

/// A fragment that asks its graph where it is while it is told of its owner.
class AskingFragment : public AShaderFragment {
public:
  void setOwnerGraph(IShaderFragmentGraph* graph) override {
    AShaderFragment::setOwnerGraph(graph);
    places.push_back(asked->findFragment(this));
    if (meanwhile) meanwhile();
  }

  const AShaderFragmentGraph* asked = nullptr;
  std::vector<std::size_t> places;
  std::function<void()> meanwhile;
};

TEST(ShaderFragmentGraph, FindsAFragmentOnlyOnceItHasToldIt) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto fragment = makeRef<AskingFragment>();
  fragment->asked = graph.get();
  graph->addFragment(makeNode(0, 0).get());
  graph->addFragment(fragment.get());
  EXPECT_EQ(fragment->places, std::vector<std::size_t>{kNotFound});
  EXPECT_EQ(graph->findFragment(fragment.get()), 1u);
  fragment->places.clear();
  graph->removeFragment(fragment.get());
  EXPECT_EQ(fragment->places, std::vector<std::size_t>{1});
  EXPECT_EQ(graph->findFragment(fragment.get()), kNotFound);
}

TEST(ShaderFragmentGraph, StaysAsItWasWhenAFragmentRefusesItsOwner) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto fragment = makeRef<AskingFragment>();
  fragment->asked = graph.get();
  fragment->meanwhile = [] { throw Exception(L"no"); };
  EXPECT_THROW(graph->addFragment(fragment.get()), Exception);
  EXPECT_EQ(graph->findFragment(fragment.get()), kNotFound);
  EXPECT_EQ(graph->getNumFragments(), 0u);
  fragment->meanwhile = nullptr;
  fragment->setOwnerGraph(nullptr);
  graph->addFragment(fragment.get());
  EXPECT_EQ(graph->findFragment(fragment.get()), 0u);
}

/// A fragment that says it has no owner until it has added itself, and the other way round.
class SelfAddingFragment : public AShaderFragment {
public:
  IShaderFragmentGraph* getOwnerGraph() const override { return told; }
  void setOwnerGraph(IShaderFragmentGraph* graph) override {
    if (std::exchange(isBusy, true)) return;
    if (graph != nullptr) graph->addFragment(this);
    if (graph == nullptr) told->removeFragment(this);
    told = graph;
    isBusy = false;
  }
  IShaderFragmentGraph* told = nullptr;
  bool isBusy = false;
};

TEST(ShaderFragmentGraph, TakesAFragmentOnceThatAddsItself) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto fragment = makeRef<SelfAddingFragment>();
  graph->addFragment(fragment.get());
  EXPECT_EQ(graph->getNumFragments(), 1u);
  EXPECT_EQ(graph->findFragment(fragment.get()), 0u);
  graph->addFragment(makeNode(0, 0).get());
  graph->removeFragment(fragment.get());
  EXPECT_EQ(graph->getNumFragments(), 1u);
  EXPECT_EQ(graph->findFragment(fragment.get()), kNotFound);
}

TEST(ShaderFragmentGraph, FreesAllMembersAndThenLetsItsChainsGoFirst) {
  std::vector<WString> events;
  {
    const auto graph = makeRef<AShaderFragmentGraph>();
    for (const wchar_t* name : {L"a", L"b"}) graph->addFragment(makeRef<WitnessFragment>(name, events).get());
    graph->addPreprocessFragment(makeRef<WitnessFragment>(L"pre", events).get());
    EXPECT_TRUE(graph->addPostprocessFragment(makeRef<WitnessFragment>(L"post", events).get()));
    events.clear();
  }
  EXPECT_EQ(events, (std::vector<WString>{L"a is free", L"b is free", L"post dies", L"pre dies", L"a dies",
                                          L"b dies"}));
}

TEST(ShaderFragmentGraph, TakesManyMembersInLinearTime) {
  const double growth = TolmSDK::test::timeGrowth(4000, [](std::size_t count) {
    std::vector<RefPtr<AShaderFragment>> fragments;
    for (std::size_t i = 0; i < count; ++i) fragments.push_back(makeRef<AShaderFragment>());
    const auto graph = makeRef<AShaderFragmentGraph>();
    const std::clock_t time = TolmSDK::test::processorTime([&] {
      for (const auto& fragment : fragments) graph->addFragment(fragment.get());
    });
    EXPECT_EQ(graph->getNumFragments(), count);
    return time;
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

// Outputs

TEST(ShaderFragmentGraph, ConnectsOutputsToMembers) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto member = makeNode(0, 2, TypeID_sampler2D);
  const auto stranger = makeNode(0, 2);
  graph->addFragment(member.get());
  graph->addOutput(TypeID_float, L"a");
  graph->addOutput(TypeID_float, L"b");

  EXPECT_TRUE(graph->setOutputConnection(kSecond, member.get(), kSecond));  // types are not compared
  EXPECT_FALSE(graph->setOutputConnection(kFirst, stranger.get(), kFirst));
  EXPECT_FALSE(graph->setOutputConnection(kFirst, nullptr, kFirst));
  EXPECT_FALSE(graph->setOutputConnection(kFirst, member.get(), std::size_t{2}));
  EXPECT_FALSE(graph->setOutputConnection(std::size_t{2}, member.get(), kFirst));
  EXPECT_EQ(graph->getOutputConnections()[0], ShaderFragmentConnection());
  EXPECT_EQ(graph->getOutputConnections()[1], (ShaderFragmentConnection{member.get(), 1}));

  EXPECT_TRUE(graph->setOutputConnection(L"a", member.get(), L"out1"));
  EXPECT_EQ(graph->getOutputConnections()[0], (ShaderFragmentConnection{member.get(), 1}));
  EXPECT_FALSE(graph->setOutputConnection(L"a", nullptr, L"out0"));
  EXPECT_FALSE(graph->setOutputConnection(L"c", member.get(), L"out0"));
  EXPECT_FALSE(graph->setOutputConnection(L"a", member.get(), L"out9"));
  EXPECT_FALSE(graph->setOutputConnection(nullptr, member.get(), L"out0"));
  EXPECT_EQ(graph->getOutputConnections()[0], (ShaderFragmentConnection{member.get(), 1}));
}

TEST(ShaderFragmentGraph, KnowsWhatFeedsAnOutputOfIt) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto member = makeNode(0, 2);
  const auto other = makeNode(0, 1);
  graph->addFragment(member.get());
  graph->addFragment(other.get());
  graph->addOutput(TypeID_float, L"a");
  graph->addOutput(TypeID_float, L"b");
  EXPECT_FALSE(graph->isFinalOutput(member.get(), 0));
  EXPECT_FALSE(graph->isFinalOutput(nullptr, kNotFound));  // what an unconnected output holds

  graph->setOutputConnection(kFirst, member.get(), kSecond);
  graph->setOutputConnection(kSecond, member.get(), kSecond);
  EXPECT_TRUE(graph->isFinalOutput(member.get(), 1));
  EXPECT_FALSE(graph->isFinalOutput(member.get(), 0));
  EXPECT_FALSE(graph->isFinalOutput(other.get(), 0));

  graph->setOutputConnection(kFirst, other.get(), kFirst);
  EXPECT_TRUE(graph->isFinalOutput(member.get(), 1));
  EXPECT_TRUE(graph->isFinalOutput(other.get(), 0));
  graph->setOutputConnection(kSecond, other.get(), kFirst);
  EXPECT_FALSE(graph->isFinalOutput(member.get(), 1));
  EXPECT_TRUE(graph->isFinalOutput(other.get(), 0));
}

// Chains

TEST(ShaderFragmentGraph, KeepsPreprocessFragmentsInOrder) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto a = makeNode(0, 1);
  const auto b = makeNode(2, 0);
  graph->addPreprocessFragment(nullptr);
  EXPECT_EQ(graph->getNumPreprocessFragment(), 0u);
  graph->addPreprocessFragment(a.get());
  graph->addPreprocessFragment(b.get());  // fits nothing, and need not
  graph->addPreprocessFragment(a.get());
  EXPECT_EQ(graph->getPreprocessFragment(1), b.get());
  graph->removePreprocessFragment(3);
  EXPECT_EQ(graph->getNumPreprocessFragment(), 3u);
  graph->removePreprocessFragment(1);
  ASSERT_EQ(graph->getNumPreprocessFragment(), 2u);
  EXPECT_EQ(graph->getPreprocessFragment(1), a.get());
  EXPECT_EQ(b->referenceCount(), 1u);
}

TEST(ShaderFragmentGraph, AppendsPostprocessFragmentsThatFitTheLast) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto oneToTwo = makeNode(1, 2);
  const auto twoToOne = makeNode(2, 1);
  EXPECT_FALSE(graph->addPostprocessFragment(nullptr));
  EXPECT_TRUE(graph->addPostprocessFragment(oneToTwo.get()));
  EXPECT_FALSE(graph->addPostprocessFragment(oneToTwo.get()));
  EXPECT_TRUE(graph->addPostprocessFragment(twoToOne.get()));
  EXPECT_EQ(graph->getNumPostprocessFragments(), 2u);
  // An index past the end appends, and only the last element is tested.
  EXPECT_FALSE(graph->insertPostprocessFragment(100, twoToOne.get()));
  EXPECT_TRUE(graph->insertPostprocessFragment(100, oneToTwo.get()));
  EXPECT_EQ(graph->getPostprocessFragment(2), oneToTwo.get());
  EXPECT_FALSE(graph->insertPostprocessFragment(0, nullptr));

  graph->removePostprocessFragment(3);
  EXPECT_EQ(graph->getNumPostprocessFragments(), 3u);
  graph->removePostprocessFragment(0);
  ASSERT_EQ(graph->getNumPostprocessFragments(), 2u);
  EXPECT_EQ(graph->getPostprocessFragment(0), twoToOne.get());
}

TEST(ShaderFragmentGraph, TestsAnInsertedFragmentAgainstTheElementAfterTheNext) {
  // A takes 1, B takes 2, C takes 3; each produces what the next takes.
  const auto a = makeNode(1, 2);
  const auto b = makeNode(2, 3);
  const auto c = makeNode(3, 1);
  const struct {
    std::size_t index;
    std::size_t inputs;
    std::size_t outputs;
    bool expected;
  } cases[] = {
      {0, 9, 2, true},   // fits B, not A
      {0, 9, 1, false},  // fits A, not B
      {1, 2, 3, true},   // behind A, and fits C
      {1, 2, 2, false},  // fits B, not C
      {1, 9, 3, false},  // not behind A
      {2, 3, 9, true},   // nothing is tested but B
      {2, 2, 3, false}, {3, 1, 9, true}, {7, 1, 9, true}, {3, 2, 9, false},
  };
  for (const auto& test : cases) {
    const auto graph = makeRef<AShaderFragmentGraph>();
    for (const auto* member : {&a, &b, &c}) ASSERT_TRUE(graph->addPostprocessFragment(member->get()));
    const auto inserted = makeNode(test.inputs, test.outputs);
    EXPECT_EQ(graph->insertPostprocessFragment(test.index, inserted.get()), test.expected)
        << test.index << ' ' << test.inputs << ' ' << test.outputs;
    ASSERT_EQ(graph->getNumPostprocessFragments(), test.expected ? 4u : 3u);
    if (!test.expected) continue;
    EXPECT_EQ(graph->getPostprocessFragment(std::min<std::size_t>(test.index, 3)), inserted.get());
  }
}

// Compatibility

TEST(IsFragmentCompatible, AllowsMoreOutputsThanInputs) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  const auto none = makeNode(0, 0);
  EXPECT_TRUE(isFragmentCompatible(graph.get(), none.get()));
  EXPECT_TRUE(canConnect(graph.get(), none.get()));
  for (const wchar_t* name : {L"a", L"b", L"c"}) graph->addOutput(TypeID_float, name);

  const auto two = makeNode(2, 0);
  EXPECT_TRUE(isFragmentCompatible(graph.get(), two.get()));
  EXPECT_FALSE(canConnect(graph.get(), two.get()));
  EXPECT_TRUE(isFragmentCompatible(graph.get(), none.get()));
  EXPECT_FALSE(canConnect(graph.get(), none.get()));
  EXPECT_TRUE(canConnect(graph.get(), makeNode(3, 0).get()));
  EXPECT_FALSE(isFragmentCompatible(graph.get(), makeNode(4, 0).get()));
  EXPECT_FALSE(isFragmentCompatible(graph.get(), makeNode(2, 0, TypeID_fvec3).get()));
  EXPECT_FALSE(canConnect(graph.get(), makeNode(3, 0, TypeID_fvec3).get()));

  const auto holed = makeRef<AShaderFragment>();
  holed->addInput(static_cast<const AParameter*>(nullptr));
  EXPECT_FALSE(isFragmentCompatible(graph.get(), holed.get()));
  const auto withoutOutput = makeRef<AShaderFragmentGraph>();
  withoutOutput->addOutput(static_cast<const AParameter*>(nullptr));
  EXPECT_FALSE(isFragmentCompatible(withoutOutput.get(), makeNode(1, 0).get()));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
