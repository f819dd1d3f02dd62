#include "sfg/code_snippet.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/cost.h"
#include "text/test_views.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/sha1.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using Type = EShaderSymbolType;
using Symbols = std::vector<std::pair<Type, std::wstring>>;

/// Kinds and texts of the symbols.
Symbols symbols(const CodeSnippet& snippet) {
  Symbols result;
  for (std::size_t i = 0; i < snippet.getNumSymbols(); ++i)
    result.emplace_back(snippet.getSymbol(i).getType(), snippet.getSymbol(i).getRange().view());
  return result;
}

Symbols parsed(const wchar_t* code) {
  CodeSnippet snippet;
  snippet.addCode(code);
  EXPECT_TRUE(snippet.parse());
  EXPECT_EQ(snippet.getCode(), code);
  return symbols(snippet);
}

std::vector<std::wstring> calls(const Array<BuiltinFunction>& functions) {
  std::vector<std::wstring> result;
  for (const BuiltinFunction& f : functions) result.emplace_back(f.range.view());
  return result;
}

TEST(CodeSnippet, CannotBeCopiedOrMoved) {
  EXPECT_FALSE(std::is_copy_constructible_v<CodeSnippet>);
  EXPECT_FALSE(std::is_copy_assignable_v<CodeSnippet>);
  EXPECT_FALSE(std::is_move_constructible_v<CodeSnippet>);
  EXPECT_FALSE(std::is_move_assignable_v<CodeSnippet>);
  EXPECT_FALSE(std::is_copy_constructible_v<CodeSnippetInstance>);
  EXPECT_FALSE(std::is_copy_assignable_v<CodeSnippetInstance>);
  EXPECT_FALSE(std::is_move_constructible_v<CodeSnippetInstance>);
  EXPECT_FALSE(std::is_move_assignable_v<CodeSnippetInstance>);
}

TEST(CodeSnippetParse, BlanksAreNoSymbol) {
  EXPECT_EQ(parsed(L""), Symbols{});
  EXPECT_EQ(parsed(L" \t\r\n"), Symbols{});
}

TEST(CodeSnippetParse, ACommentAloneIsRawText) {
  EXPECT_EQ(parsed(L" // only this\n"), (Symbols{{Type::unknown, L"// only this\n"}}));
}

TEST(CodeSnippetParse, KeepsTextBetweenSymbolsAsRawText) {
  EXPECT_EQ(parsed(L"// c\n#define A 1\nfloat x;\n\n  // d\nvoid f() {};\n /* e */ "),
            (Symbols{{Type::unknown, L"// c\n#define A 1\n"},
                     {Type::uniform, L"float x;\n"},
                     {Type::unknown, L"// d\n"},
                     {Type::function, L"void f() {};\n"},
                     {Type::unknown, L"/* e */ "}}));
  EXPECT_EQ(parsed(L"void f() {}\n /* e */ "), (Symbols{{Type::function, L"void f() {}\n /* e */ "}}));
  EXPECT_EQ(parsed(L"float x;float y;"),
            (Symbols{{Type::uniform, L"float x;"}, {Type::uniform, L"float y;"}}));
}

TEST(CodeSnippetParse, TheFirstUnknownConstructTurnsTheRestIntoRawText) {
  EXPECT_EQ(
      parsed(L"float x;\n cbuffer C : register(b0) { };\nfloat y;"),
      (Symbols{{Type::uniform, L"float x;\n"}, {Type::unknown, L"cbuffer C : register(b0) { };\nfloat y;"}}));
  EXPECT_EQ(parsed(L"[numthreads(8, 8, 1)] void cs() {}\nfloat y;"),
            (Symbols{{Type::unknown, L"[numthreads(8, 8, 1)] void cs() {}\nfloat y;"}}));
  EXPECT_EQ(parsed(L"float x;\nfloat y"),
            (Symbols{{Type::uniform, L"float x;\n"}, {Type::unknown, L"float y"}}));
}

TEST(CodeSnippetParse, GathersStateVariablesAndCalls) {
  CodeSnippet snippet;
  snippet.addCode(
      L"float f() { return sfg_time * sfg_isConnected(a, b) + sfg_shader(c); }\n"
      L"float x = sfg_isConnected(no);\n"
      L"float g() { return sfg_isFinalOutput(d) * sfg_isConnected(e) * state.normal + sfg_shader(f); }");
  ASSERT_TRUE(snippet.parse());
  ASSERT_EQ(snippet.getNumSymbols(), 3u);
  EXPECT_EQ(snippet.getStateVariables(), (Set<UString>{UString(L"sfg_time"), UString(L"state.normal")}));
  EXPECT_EQ(
      calls(snippet.getBuiltinFunctions()),
      (std::vector<std::wstring>{L"sfg_isConnected(a, b)", L"sfg_isFinalOutput(d)", L"sfg_isConnected(e)"}));
  EXPECT_EQ(calls(snippet.getShaderFunctions()),
            (std::vector<std::wstring>{L"sfg_shader(c)", L"sfg_shader(f)"}));
  EXPECT_EQ(snippet.getBuiltinFunctions()[0].id, eBuiltinFunctionIsConnected);
  ASSERT_EQ(snippet.getBuiltinFunctions()[0].arguments.size(), 2u);
  EXPECT_EQ(snippet.getBuiltinFunctions()[0].arguments[0].view(), L"a");
  EXPECT_EQ(snippet.getBuiltinFunctions()[0].arguments[1].view(), L"b");
  EXPECT_EQ(calls(snippet.getSymbol(0).getBuiltinFunctions()),
            (std::vector<std::wstring>{L"sfg_isConnected(a, b)"}));
}

TEST(CodeSnippetParse, FindsTheLastSymbolWithAKey) {
  CodeSnippet snippet;
  snippet.addCode(L"void f() {};\nvoid g() {};\nvoid f() {};\n// raw");
  ASSERT_TRUE(snippet.parse());
  ASSERT_EQ(snippet.getNumSymbols(), 4u);
  EXPECT_EQ(snippet.getSymbol(0).getKey(), snippet.getSymbol(2).getKey());
  EXPECT_EQ(snippet.findSymbol(snippet.getSymbol(0).getKey()), 2u);
  EXPECT_EQ(snippet.findSymbol(snippet.getSymbol(1).getKey()), 1u);
  EXPECT_EQ(snippet.findSymbol(L"voidf()"), kNotFound);
  EXPECT_EQ(snippet.findSymbol(L""), kNotFound) << "raw text has no entry";
}

TEST(CodeSnippetParse, FindsASymbolWithoutANameByItsEmptyKey) {
  CodeSnippet snippet;
  snippet.addCode(L"// raw\ntechnique { }\n// raw");
  ASSERT_TRUE(snippet.parse());
  ASSERT_EQ(snippet.getNumSymbols(), 3u);
  EXPECT_EQ(snippet.findSymbol(L""), 1u);
}

TEST(CodeSnippetParse, StartsAnew) {
  CodeSnippet snippet;
  snippet.addCode(L"float f() { return sfg_time * sfg_isConnected(a) + sfg_shader(c); }\n");
  ASSERT_TRUE(snippet.parse());
  ASSERT_TRUE(snippet.parse());
  EXPECT_EQ(snippet.getNumSymbols(), 1u);
  EXPECT_EQ(snippet.getBuiltinFunctions().size(), 1u);
  EXPECT_EQ(snippet.getShaderFunctions().size(), 1u);
  snippet.addCode(L"float y;");
  ASSERT_TRUE(snippet.parse());
  EXPECT_EQ(snippet.getNumSymbols(), 2u);
}

TEST(CodeSnippet, AppendsCode) {
  CodeSnippet snippet;
  snippet.addCode(L"float ");
  snippet.addCode(static_cast<const wchar_t*>(nullptr));
  snippet.addCode(WString(L"x;"));
  EXPECT_EQ(snippet.getCode(), L"float x;");
  EXPECT_EQ(snippet.getNumSymbols(), 0u) << "not parsed yet";
}

TEST(CodeSnippet, CodeAddedLaterLeavesTheViewsOfAParse) {
  CodeSnippet snippet;
  snippet.addCode(L"float x;");
  ASSERT_TRUE(snippet.parse());
  const WString more(1000, L' ');
  for (int i = 0; i < 10; ++i) snippet.addCode(more);
  EXPECT_EQ(symbols(snippet), (Symbols{{Type::uniform, L"float x;"}}));
  EXPECT_EQ(snippet.getCode(), L"float x;" + WString(10000, L' '));
  ASSERT_TRUE(snippet.parse());
  EXPECT_EQ(symbols(snippet), (Symbols{{Type::uniform, L"float x;"}}));
}

TEST(CodeSnippet, SharedCodeOutlivesItAndNeverChanges) {
  auto snippet = std::make_unique<CodeSnippet>();
  snippet->addCode(L"float x;");
  const std::shared_ptr<const WString> code = snippet->shareCode();
  snippet->addCode(L"float y;");
  EXPECT_EQ(*code, L"float x;");
  ASSERT_TRUE(snippet->parse());
  const std::shared_ptr<const WString> all = snippet->shareCode();
  const ScopedText range = snippet->getSymbol(1).getRange();
  snippet->clear();
  EXPECT_EQ(range.view(), L"float y;");
  snippet.reset();
  EXPECT_EQ(*all, L"float x;float y;");
  EXPECT_EQ(range.view(), L"float y;");
}

TEST(CodeSnippet, CopiesOfSymbolsHaveTheirKeysWhenItIsGone) {
  auto snippet = std::make_unique<CodeSnippet>();
  snippet->addCode(L"float f() { return 1; }");
  ASSERT_TRUE(snippet->parse());
  const ShaderSymbol copy = snippet->getSymbol(0);
  const WString key = L"floatf()13" + SHA1_GetStringHash(snippet->getCode());
  snippet.reset();
  EXPECT_EQ(copy.getKey(), key);
  EXPECT_EQ(copy.getIdentity(), key);
}

TEST(CodeSnippet, AddsRawTextAndSymbols) {
  const WString text = L"raw float x;";
  ShaderSymbol symbol;
  symbol.constructUniform(ScopedText(text, 10, 1), ScopedText(text, 4, 8));
  const WString body = L"sfg_time sfg_isConnected(a) sfg_shader(b)";
  symbol.parseKeywords(body);
  CodeSnippet snippet;
  snippet.addSymbol(ScopedText());
  snippet.addSymbol(ShaderSymbol());
  EXPECT_EQ(snippet.getNumSymbols(), 0u) << "empty ones are ignored";
  snippet.addSymbol(ScopedText(text, 0, 4));
  snippet.addSymbol(symbol);
  EXPECT_EQ(symbols(snippet), (Symbols{{Type::unknown, L"raw "}, {Type::uniform, L"float x;"}}));
  EXPECT_EQ(snippet.findSymbol(L"floatx;"), 1u);
  EXPECT_EQ(snippet.getStateVariables(), Set<UString>{UString(L"sfg_time")});
  EXPECT_EQ(calls(snippet.getBuiltinFunctions()), std::vector<std::wstring>{L"sfg_isConnected(a)"});
  EXPECT_EQ(calls(snippet.getShaderFunctions()), std::vector<std::wstring>{L"sfg_shader(b)"});
  EXPECT_EQ(symbol.getRange().view(), L"float x;") << "a copy was added";
}

TEST(CodeSnippet, FindsASymbolWithAnEmptyKeyThatWasAdded) {
  const WString text = L"raw text";
  ShaderSymbol symbol;
  symbol.setRange(text);
  CodeSnippet snippet;
  snippet.addSymbol(symbol);
  snippet.addSymbol(ScopedText(text));
  EXPECT_EQ(snippet.getNumSymbols(), 2u);
  EXPECT_EQ(snippet.findSymbol(L""), 0u) << "text without a symbol has no entry";
  snippet.addSymbol(symbol);
  EXPECT_EQ(snippet.findSymbol(L""), 2u) << "the last one of a key";
  snippet.clear();
  EXPECT_EQ(snippet.findSymbol(L""), kNotFound);
}

TEST(CodeSnippet, FindsWhatWasAddedSinceTheLastLookUp) {
  CodeSnippet snippet;
  snippet.addCode(L"float x;");
  ASSERT_TRUE(snippet.parse());
  EXPECT_EQ(snippet.findSymbol(L"floaty;"), kNotFound);
  ShaderSymbol symbol;
  symbol.setRange(snippet.getSymbol(0).getRange());
  symbol.setKey(L"floaty;");
  snippet.addSymbol(symbol);
  EXPECT_EQ(snippet.findSymbol(L"floaty;"), 1u);
  snippet.addSymbol(ScopedText(snippet.getCode()));
  EXPECT_EQ(snippet.findSymbol(L"floatx;"), 0u);
  ASSERT_TRUE(snippet.parse());
  EXPECT_EQ(snippet.findSymbol(L"floaty;"), kNotFound);
  snippet.takePlainFunction(L"void f() {}", 5, 1, 9);
  EXPECT_EQ(snippet.findSymbol(L"floatx;"), kNotFound);
  EXPECT_EQ(snippet.findSymbol(snippet.getSymbol(0).getKey()), 0u);
}

TEST(CodeSnippet, TakesItsOwnSymbols) {
  CodeSnippet snippet;
  snippet.addCode(L"float x;\nfloat y() { return sfg_isConnected(a); }");
  ASSERT_TRUE(snippet.parse());
  // As often as it takes for the array to grow on either.
  for (int i = 0; i < 20; ++i) {
    snippet.addSymbol(snippet.getSymbol(0).getRange());
    snippet.addSymbol(snippet.getSymbol(1));
  }
  ASSERT_EQ(snippet.getNumSymbols(), 42u);
  for (std::size_t i = 2; i < 42; i += 2) {
    EXPECT_EQ(snippet.getSymbol(i).getRange().view(), L"float x;\n");
    EXPECT_EQ(snippet.getSymbol(i).getKey(), L"");
    EXPECT_EQ(snippet.getSymbol(i + 1).getKey(), snippet.getSymbol(1).getKey());
  }
  EXPECT_EQ(snippet.getBuiltinFunctions().size(), 21u);
}

TEST(CodeSnippet, FindsSymbolsInManyThreads) {
  CodeSnippet snippet;
  for (int i = 0; i < 200; ++i) snippet.addCode(formatted(L"void f%d() {}\n", i));
  ASSERT_TRUE(snippet.parse());
  CodeSnippet same;
  same.addCode(snippet.getCode());
  ASSERT_TRUE(same.parse());
  std::vector<std::size_t> found(4);
  std::vector<std::thread> threads;
  for (std::size_t& sum : found) {
    threads.emplace_back([&snippet, &same, &sum] {
      for (std::size_t i = 0; i < 200; ++i) sum += snippet.findSymbol(same.getSymbol(i).getKey()) == i;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(found, std::vector<std::size_t>(4, 200));
}

TEST(CodeSnippet, LooksSymbolsUpInAnIndex) {
  const double growth = TolmSDK::test::timeGrowth(1000, [](std::size_t symbols) {
    CodeSnippet snippet;
    WString code;
    for (std::size_t i = 0; i < symbols; ++i) code += formatted(L"float x%Iu;\n", i);
    snippet.addCode(code);
    EXPECT_TRUE(snippet.parse());
    return TolmSDK::test::processorTime([&] {
      for (std::size_t i = 0; i < symbols; ++i) EXPECT_EQ(snippet.findSymbol(L"none"), kNotFound);
    });
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

TEST(CodeSnippet, Clears) {
  CodeSnippet snippet;
  snippet.addCode(L"float f() { return sfg_time * sfg_isConnected(a) + sfg_shader(c); }\n");
  ASSERT_TRUE(snippet.parse());
  const WString key = snippet.getSymbol(0).getKey();
  snippet.clear();
  EXPECT_EQ(snippet.getCode(), L"");
  EXPECT_EQ(snippet.getNumSymbols(), 0u);
  EXPECT_EQ(snippet.findSymbol(key), kNotFound);
  EXPECT_TRUE(snippet.getStateVariables().empty());
  EXPECT_TRUE(snippet.getBuiltinFunctions().empty());
  EXPECT_TRUE(snippet.getShaderFunctions().empty());
}

TEST(CodeSnippet, DumpsKindsAndKeys) {
  CodeSnippet snippet;
  snippet.addCode(L"// raw\nstruct S { int a; };\nfloat x;\ntechnique T { }\n");
  ASSERT_TRUE(snippet.parse());
  std::wostringstream os;
  snippet.dump(os);
  EXPECT_EQ(os.str(), L"[ Unknown Symbol ]\n// raw\n\n\n"
                      L"[ struct ]\nstructS{inta;};\n\n"
                      L"[ uniform ]\nfloatx;\n\n"
                      L"[ technique ]\nT\n\n");
}

TEST(CodeSnippetParse, TakesTimeInProportionToTheCode) {
  const double growth = TolmSDK::test::timeGrowth(1000, [](std::size_t count) {
    CodeSnippet snippet;
    WString code;
    for (std::size_t i = 0; i < count; ++i) code += L"void f() { /* c */ } // d\nfloat x;\n";
    snippet.addCode(code);
    const std::clock_t time = TolmSDK::test::processorTime([&] { EXPECT_TRUE(snippet.parse()); });
    // Blanks and a comment behind a body belong to the function.
    EXPECT_EQ(snippet.getNumSymbols(), 2 * count);
    return time;
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

WString written(const CodeSnippetInstance& instance) {
  WString out;
  for (std::size_t i = 0; i < instance.getNumSymbols(); ++i) {
    KeywordReplacer replacer;
    replacer.addReplacePattern(instance.getSymbol(i).getKeywordReplacePattern());
    replacer.appendReplaced(out, instance.getSymbol(i).getText());
  }
  return out;
}

TEST(CodeSnippetInstance, TakesRenamesOfTheWholeSnippetInOrder) {
  CodeSnippet snippet;
  snippet.addCode(L"bool f() { return sfg_isConnected(a) && sfg_isConnected(b); }\n"
                  L"bool s() { return sfg_shader(no); }\n"
                  L"// raw\n"
                  L"bool g() { return sfg_shader(x) + sfg_isFinalOutput(c); }\n");
  ASSERT_TRUE(snippet.parse());
  CodeSnippetInstance instance;
  instance.construct(&snippet, {L"r0", L"r1", L"r2"}, false);
  ASSERT_EQ(instance.getNumSymbols(), snippet.getNumSymbols());
  EXPECT_EQ(written(instance), L"bool f() { return r0 && r1; }\nbool s() { return sfg_shader(no); }\n// raw\n"
                               L"bool g() { return sfg_shader(x) + r2; }\n");
  EXPECT_EQ(instance.getSymbol(0).getInstanceKey(), snippet.getSymbol(0).getKey() + L"r0r1");
  const std::size_t last = instance.getNumSymbols() - 1;
  EXPECT_EQ(instance.getSymbol(last).getInstanceKey(), snippet.getSymbol(last).getKey() + L"r2");
  instance.construct(&snippet, {L"r0"}, false);
  EXPECT_EQ(written(instance), L"bool f() { return r0 && sfg_isConnected(b); }\n"
                               L"bool s() { return sfg_shader(no); }\n// raw\n"
                               L"bool g() { return sfg_shader(x) + sfg_isFinalOutput(c); }\n");
}

TEST(CodeSnippetInstance, IsEmptyWithoutASnippet) {
  CodeSnippet snippet;
  snippet.addCode(L"float x;");
  ASSERT_TRUE(snippet.parse());
  CodeSnippetInstance instance;
  EXPECT_EQ(instance.getNumSymbols(), 0u);
  instance.construct(&snippet, {}, false);
  EXPECT_EQ(instance.getNumSymbols(), 1u);
  instance.construct(nullptr, {}, true);
  EXPECT_EQ(instance.getNumSymbols(), 0u);
  EXPECT_EQ(snippet.getNumSymbols(), 1u) << "not owned, still there";
}

/// A parsed snippet, and a witness that tells when it is gone.
std::pair<const CodeSnippet*, std::weak_ptr<const WString>> newSnippet(const wchar_t* code) {
  auto snippet = std::make_unique<CodeSnippet>();
  snippet->addCode(code);
  EXPECT_TRUE(snippet->parse());
  const std::weak_ptr<const WString> witness = snippet->shareCode();
  return {snippet.release(), witness};
}

TEST(CodeSnippetInstance, DestroysTheSnippetItOwns) {
  std::weak_ptr<const WString> last;
  {
    CodeSnippetInstance instance;
    const auto [first, firstWitness] = newSnippet(L"float x;");
    instance.construct(first, {}, true);
    EXPECT_FALSE(firstWitness.expired());
    const auto [second, secondWitness] = newSnippet(L"float y;");
    instance.construct(second, {}, true);
    EXPECT_TRUE(firstWitness.expired()) << "destroyed when another is taken";
    EXPECT_EQ(written(instance), L"float y;");
    // Handed over again: still the same one.
    instance.construct(second, {}, true);
    EXPECT_EQ(written(instance), L"float y;");
    EXPECT_FALSE(secondWitness.expired());
    last = secondWitness;
  }
  EXPECT_TRUE(last.expired()) << "destroyed with the instance";
}

TEST(CodeSnippetInstance, SharesASnippet) {
  auto snippet = std::make_shared<CodeSnippet>();
  snippet->addCode(L"float f() { return sfg_isConnected(a); }");
  ASSERT_TRUE(snippet->parse());
  const std::weak_ptr<const CodeSnippet> watched = snippet;
  CodeSnippetInstance instance;
  instance.construct(std::move(snippet), {L"true"});
  EXPECT_EQ(instance.getSharedSnippet(), watched.lock());
  ASSERT_EQ(instance.getNumSymbols(), 1u);
  EXPECT_EQ(instance.getSymbol(0).getRenames(), L"true");

  const CodeSnippet other;
  instance.construct(&other, {}, false);
  EXPECT_EQ(instance.getSharedSnippet(), nullptr);
  EXPECT_TRUE(watched.expired());
  instance.construct(std::shared_ptr<const CodeSnippet>(), {});
  EXPECT_EQ(instance.getNumSymbols(), 0u);
}

TEST(CodeSnippetInstance, ReleasesTheSnippetToACallerThatTakesItBack) {
  const auto [snippet, witness] = newSnippet(L"float x;");
  const std::unique_ptr<const CodeSnippet> owner(snippet);
  CodeSnippetInstance instance;
  {
    CodeSnippetInstance other;
    other.construct(owner.get(), {}, true);
    other.construct(owner.get(), {}, false);
  }
  EXPECT_FALSE(witness.expired());
}

TEST(CodeSnippetPlainFunction, IsTheSymbolThatTheParseFinds) {
  const WString code = L"void f(float a)\n{\n\ta = 1;\n}\n";
  CodeSnippet parsed;
  parsed.addCode(code);
  ASSERT_TRUE(parsed.parse());
  ASSERT_EQ(parsed.getNumSymbols(), 1u);

  CodeSnippet taken;
  taken.addCode(L"struct Former;");
  taken.parse();
  taken.takePlainFunction(WString(code), 5, 1, code.find(L'{'));
  ASSERT_EQ(taken.getNumSymbols(), 1u);
  EXPECT_EQ(taken.getCode(), code);
  EXPECT_EQ(taken.getSymbol(0).getType(), Type::function);
  EXPECT_EQ(taken.getSymbol(0).getName().view(), L"f");
  EXPECT_EQ(taken.getSymbol(0).getRange().view(), parsed.getSymbol(0).getRange().view());
  EXPECT_EQ(taken.getSymbol(0).getKey(), parsed.getSymbol(0).getKey());
  EXPECT_EQ(taken.findSymbol(parsed.getSymbol(0).getKey()), 0u);
}

TEST(CodeSnippetInstance, AnswersTheSameInstanceKeyEachTime) {
  CodeSnippet snippet;
  snippet.addCode(L"float f() { return sfg_isConnected(a); }");
  ASSERT_TRUE(snippet.parse());
  CodeSnippetInstance instance;
  instance.construct(&snippet, {L"true"}, false);
  const WString expected = snippet.getSymbol(0).getKey() + L"true";
  EXPECT_EQ(instance.getSymbol(0).getInstanceKey(), expected);
  EXPECT_EQ(instance.getSymbol(0).getInstanceKey(), expected);
}

TEST(CodeSnippet, FindsASymbolOfUnknownKindByTheKeyItWasGiven) {
  const WString text = L"anything";
  ShaderSymbol symbol;
  symbol.setRange(text);
  symbol.setKey(L"k");
  CodeSnippet snippet;
  snippet.addSymbol(symbol);
  EXPECT_EQ(snippet.findSymbol(L"k"), 0u);
  EXPECT_EQ(snippet.findSymbol(L""), kNotFound);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
