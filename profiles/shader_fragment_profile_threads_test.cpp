// Several collapses in several threads over one profile: what it builds lazily is built once and safely.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "sfg/fragment_profile_instance.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_function.h"
#include "tests/support/test_host.h"

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(SharedProfile, IsParsedOnceByManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 50;
  const auto language = makeRef<test::TestLanguage>();
  for (int round = 0; round < kRounds; ++round) {
    const auto profile = makeRef<AShaderFragmentProfileFunction>();
    profile->setProfilename(L"default");
    profile->languages().insert(UString(L"dx11"));
    profile->setFunctionPrototype(L"void f(float a, out float r)");
    profile->setFunctionBody(L"r = helper(a);");
    profile->predefines() = L"float helper(float x) { return x; }";
    const auto fragment = makeRef<AShaderFragment>(L"n0");
    fragment->registerProfile(profile.get());

    // Every thread asks at the same moment, each with a context and an instance of its own.
    std::atomic<int> ready{0};
    std::vector<const wchar_t*> parses(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
      threads.emplace_back([&, t] {
        AShaderCollapseContext context;
        context.setLanguage(language.get());
        FragmentProfileInstance instance;
        ++ready;
        while (ready != kThreads) std::this_thread::yield();
        if (!instance.create(language.get(), fragment.get(), profile.get(), L"1")) return;
        CodeSnippetInstance predefines;
        if (!profile->writePredefines(predefines, context, instance) || predefines.getNumSymbols() != 1)
          return;
        CodeSnippetInstance definition;
        if (!profile->writeDefinition(definition, context, instance) || definition.getNumSymbols() != 1)
          return;
        parses[static_cast<std::size_t>(t)] = predefines.getSymbol(0).getText().text;
      });
    for (std::thread& thread : threads) thread.join();
    for (const wchar_t* parse : parses) {
      ASSERT_NE(parse, nullptr);
      ASSERT_EQ(parse, parses[0]);
    }
  }
}

TEST(SharedProfile, BuildsItsDefaultPatternOnceForManyThreads) {
  constexpr int kThreads = 4;
  for (int round = 0; round < 50; ++round) {
    const auto profile = makeRef<AShaderFragmentProfileFunction>();
    profile->setFunctionBody(L"sfg_shader(a, x); sfg_shader(b, y); sfg_shader(c, z);");
    std::atomic<int> ready{0};
    std::vector<std::size_t> rules(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
      threads.emplace_back([&, t] {
        ++ready;
        while (ready != kThreads) std::this_thread::yield();
        rules[static_cast<std::size_t>(t)] = profile->GetDefaultShaderRepalcePattern().getKeywords().size();
      });
    for (std::thread& thread : threads) thread.join();
    ASSERT_EQ(rules, std::vector<std::size_t>(kThreads, 3));
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
