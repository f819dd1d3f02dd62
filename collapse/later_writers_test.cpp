#include "collapse/later_writers.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "sfg/shader_collapse_context.h"
#include "tests/support/test_graph.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;

/// Instances of fragments with profiles of some names, all of which a walk has visited unless it is said
/// otherwise. A profile named "lit.." requires the current light, "inline" is an expression.
class LaterWriting : public ::testing::Test {
protected:
  FragmentInstance& add(std::initializer_list<const wchar_t*> names, const WString& name) {
    WString profiles;
    for (const WString profile : names) {
      const WString body = profile.starts_with(L"lit") ? L"r = sfg_currentLight.x;" : L"r = 1.0;";
      profiles += profiles.empty() ? L"" : L",";
      profiles +=
          profile == L"inline"
              ? WString(LR"({"name":"inline","mode":"inline","language":["dx11"],"implementation":["1.0"]})")
              : test::namedFunctionJson(profile, L"void f(out float r)\n{\n" + body + L"\n}");
    }
    const auto fragment = test::loadFragment(name, LR"({"profiles":[)" + profiles + L"]}");
    FragmentInstance& instance = instances_.get(name);
    instance.followProfiles(profiles_);
    instance.joinContext(1, lastNumber_);
    instance.create(context_, scene_.language.get(), scene_.add(*fragment, name));
    return instance;
  }
  FragmentInstance& visited(std::initializer_list<const wchar_t*> names, const WString& name) {
    FragmentInstance& instance = add(names, name);
    visit(instance);
    return instance;
  }
  void visit(FragmentInstance& instance) {
    visited_.insert(&instance);
    writers_.add(instance);
  }
  void choose(const WString& name) { profiles_.choose(name, UString(L"dx11"), 100.0f); }
  LaterWriters::Writers& find() {
    return writers_.find([this](const FragmentInstance& instance) {
      ++questions_;
      return visited_.contains(&instance);
    });
  }
  /// The names of those found, in order.
  WString found() {
    WString names;
    for (const FragmentInstance* instance : find().instances)
      names += instance->getFragment()->instanceName();
    return names;
  }
  void writeCall(FragmentInstance& instance) {
    WString text;
    instance.writeFunctionCall(text, context_, {}, {L"r"});
  }

  TestScene scene_;
  AShaderCollapseContext context_;
  Arena arena_;
  InstanceTable instances_{arena_};
  SurfaceProfiles profiles_{instances_};
  LaterWriters writers_{profiles_};
  std::set<const FragmentInstance*> visited_;
  std::size_t questions_ = 0;
  std::uint32_t lastNumber_ = 0;
};

TEST_F(LaterWriting, AreThoseThatReadTheLight) {
  visited({L"default"}, L"a");
  FragmentInstance& b = add({L"lit", L"default"}, L"b");
  choose(L"lit");
  visit(b);
  EXPECT_EQ(found(), L"b");
}

TEST_F(LaterWriting, AreThoseWithASpecialProfileUnderTheChoiceInForce) {
  visited({L"default", L"lamp"}, L"a");
  visited({L"default", L"spot"}, L"b");
  visited({L"default"}, L"c");
  choose(L"lamp");
  EXPECT_EQ(found(), L"a");
  choose(L"spot");
  EXPECT_EQ(found(), L"b");
  choose(L"default");
  EXPECT_EQ(found(), L"");
}

TEST_F(LaterWriting, AreNoneThatWereNotVisited) {
  add({L"default", L"lamp"}, L"a");
  visited({L"default", L"lamp"}, L"b");
  choose(L"lamp");
  EXPECT_EQ(found(), L"b");
}

TEST_F(LaterWriting, AreThoseThatWereVisitedUnderAnotherChoice) {
  FragmentInstance& a = add({L"default", L"lamp"}, L"a");
  choose(L"lamp");
  visit(a);
  choose(L"default");
  EXPECT_EQ(found(), L"a") << "its default profile was not written";
}

TEST_F(LaterWriting, AreNoLongerThoseWhoseDefaultProfileIsWritten) {
  FragmentInstance& a = add({L"default", L"lamp"}, L"a");
  choose(L"lamp");
  visit(a);
  choose(L"default");
  writeCall(a);
  EXPECT_EQ(found(), L"a") << "the last time, for the caller to find out";
  writers_.changeProfile();
  EXPECT_EQ(found(), L"");
}

TEST_F(LaterWriting, AreLookedForOnceUnderAChoice) {
  FragmentInstance& a = visited({L"default", L"lamp"}, L"a");
  choose(L"lamp");
  EXPECT_EQ(found(), L"a");
  const std::size_t asked = questions_;
  EXPECT_NE(asked, 0u);
  EXPECT_EQ(found(), L"a");
  EXPECT_EQ(questions_, asked);
  find().instances.clear();
  EXPECT_EQ(found(), L"") << "what the caller takes out stays out";
  visit(a);
  EXPECT_EQ(found(), L"a");
  EXPECT_NE(questions_, asked);
}

TEST_F(LaterWriting, KeepCallsUnlessWhatIsCalledBecomesAnExpression) {
  FragmentInstance& a = add({L"default", L"lamp", L"inline"}, L"a");
  choose(L"default");
  EXPECT_TRUE(writers_.addCalled(a, 1));
  EXPECT_FALSE(writers_.addCalled(a, 2));
  EXPECT_TRUE(find().keepsCalls);
  choose(L"lamp");
  EXPECT_TRUE(find().keepsCalls);
  choose(L"inline");
  EXPECT_FALSE(find().keepsCalls);
  choose(L"default");
  EXPECT_TRUE(find().keepsCalls);
}

TEST_F(LaterWriting, KeepTheFirstCallOfAnInstance) {
  FragmentInstance& caller = visited({L"default"}, L"a");
  FragmentInstance& source = add({L"default"}, L"b");
  EXPECT_EQ(writers_.findFirstCall(source), nullptr);
  writers_.addCalled(source, 7);
  writers_.addCall(source, {&caller, 2, 7, true, true});
  writers_.addCall(source, {&caller, 3, 9, false, false});
  const LaterWriters::Call* const first = writers_.findFirstCall(source);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->input, 2u);
  std::vector<std::size_t> inputs;
  writers_.forEachCall(caller, [&](const LaterWriters::Call& call) { inputs.push_back(call.input); });
  EXPECT_EQ(inputs, (std::vector<std::size_t>{2, 3}));
  writers_.forEachCall(source, [&](const LaterWriters::Call&) { ADD_FAILURE() << "calls nothing"; });
}

TEST_F(LaterWriting, AreForgotten) {
  FragmentInstance& a = add({L"lit", L"default"}, L"a");
  choose(L"lit");
  visit(a);
  writers_.addCalled(a, 1);
  EXPECT_NE(writers_.findFirstCall(a), nullptr);
  visited_.clear();
  writers_.clear();
  EXPECT_EQ(found(), L"");
  EXPECT_EQ(writers_.findFirstCall(a), nullptr);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
