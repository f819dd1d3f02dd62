#pragma once

// One fragment with one profile, as a collapse uses it: for tests of what profiles write.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "sfg/fragment_profile_instance.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tests/support/json.h"
#include "tests/support/test_host.h"

namespace TolmSDK::Graphics::sfg::test {

class ProfileWriter : public ::testing::Test {
protected:
  ProfileWriter() { context.initialize(language, environment, makeRef<AShaderFragmentGraph>(), options); }

  /// Loads the profile of a fragment `n0` and makes its instance, under the short name "1".
  void use(const std::wstring& profileText) {
    profile = AShaderFragmentProfile::loadProfile(TolmSDK::test::parseJson(profileText).get());
    ASSERT_TRUE(profile);
    makeInstance();
  }
  /// Another instance of the same profile.
  void makeInstance() {
    fragment = makeRef<AShaderFragment>(L"n0");
    fragment->registerProfile(profile.get());
    instance = std::make_unique<FragmentProfileInstance>();
    ASSERT_TRUE(instance->create(language.get(), fragment.get(), profile.get(), L"1"));
  }

  /// The text of all symbols that a writer constructed.
  static std::wstring textOf(const CodeSnippetInstance& code) {
    std::wstring text;
    for (std::size_t i = 0; i < code.getNumSymbols(); ++i) text += code.getSymbol(i).getText().view();
    return text;
  }
  std::wstring definition() {
    CodeSnippetInstance out;
    EXPECT_TRUE(profile->writeDefinition(out, context, *instance));
    return textOf(out);
  }
  std::wstring predefines() {
    CodeSnippetInstance out;
    EXPECT_TRUE(profile->writePredefines(out, context, *instance));
    return textOf(out);
  }
  std::wstring call(const Array<WString>& inputs, const Array<WString>& outputs) {
    WString out;
    EXPECT_TRUE(profile->writeFunctionCall(out, context, *instance, inputs, outputs));
    return std::wstring(std::wstring_view(out));
  }
  /// What went through the context into the result.
  std::wstring written() const {
    return std::wstring(std::wstring_view(context.getResultProfile()->predefines()));
  }

  RefPtr<TestLanguage> language = makeRef<TestLanguage>();
  RefPtr<TestEnvironment> environment = makeRef<TestEnvironment>();
  RefPtr<TestOptions> options = makeRef<TestOptions>();
  AShaderCollapseContext context;
  RefPtr<AShaderFragmentProfile> profile;
  RefPtr<AShaderFragment> fragment;
  std::unique_ptr<FragmentProfileInstance> instance;
};

}  // namespace TolmSDK::Graphics::sfg::test
