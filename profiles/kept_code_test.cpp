#include "profiles/kept_code.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "profiles/shader_temporaries.h"
#include "profiles/writer_fixture.h"

namespace TolmSDK::Graphics::sfg {
namespace {

// The key

CodeKey keyOf(std::initializer_list<const wchar_t*> parts) {
  CodeKey key;
  for (const wchar_t* part : parts) key.add(part);
  return key;
}

TEST(CodeKey, TellsItsPartsApart) {
  EXPECT_EQ(keyOf({L"ab", L"c"}).text(), keyOf({L"ab", L"c"}).text());
  EXPECT_NE(keyOf({L"ab", L"c"}).text(), keyOf({L"a", L"bc"}).text());
  EXPECT_NE(keyOf({L"ab", L""}).text(), keyOf({L"", L"ab"}).text());
}

TEST(CodeKey, TellsNumbersApartUpToTheSizeLimit) {
  Set<WString> texts;
  for (const std::size_t number : {0u, 1u, 0xffffu, 0x10000u, 0x10001u, 1u << 26}) {
    CodeKey key;
    key.addNumber(number);
    EXPECT_TRUE(texts.insert(key.text()).second) << number;
  }
}

// The store

std::shared_ptr<const CodeSnippet> snippetOf(std::size_t length) {
  auto snippet = std::make_shared<CodeSnippet>();
  snippet->addCode(WString(length, L'x'));
  return snippet;
}

TEST(KeptCode, WantsWhatIsAskedForTwice) {
  KeptCode store(7);
  EXPECT_TRUE(store.find(L"first", 7).isWanted) << "its owner was asked for it";
  EXPECT_FALSE(store.find(L"a", 1).isWanted);
  EXPECT_TRUE(store.find(L"a", 1).isWanted);
  const auto snippet = snippetOf(3);
  store.keep(L"a", 1, snippet);
  const KeptCode::Answer answer = store.find(L"a", 1);
  EXPECT_EQ(answer.snippet, snippet);
  EXPECT_FALSE(answer.isWanted);
  EXPECT_EQ(store.find(L"b", 1).snippet, nullptr) << "another key of the same hash";
  EXPECT_EQ(store.find(L"a", 2).snippet, nullptr);
}

TEST(KeptCode, KeepsTheFirstOfEqualKeys) {
  KeptCode store(1);
  const auto first = snippetOf(1);
  store.keep(L"a", 1, first);
  store.keep(L"a", 1, snippetOf(1));
  EXPECT_EQ(store.find(L"a", 1).snippet, first);
  // The second one takes no room.
  const auto half = snippetOf(KeptCode::kMostCharacters / 2 - 2);
  for (int i = 0; i < 2; ++i) store.keep(L"b", 2, half);
  store.keep(L"c", 3, snippetOf(KeptCode::kMostCharacters / 2 - 2));
  EXPECT_NE(store.find(L"c", 3).snippet, nullptr);
}

TEST(KeptCode, HoldsSoManyPieces) {
  KeptCode store(0);
  for (std::size_t i = 0; i <= KeptCode::kMostPieces; ++i)
    store.keep(itos(static_cast<int>(i)), i, snippetOf(1));
  for (std::size_t i = 0; i < KeptCode::kMostPieces; ++i)
    EXPECT_NE(store.find(itos(static_cast<int>(i)), i).snippet, nullptr) << i;
  EXPECT_EQ(store.find(itos(static_cast<int>(KeptCode::kMostPieces)), KeptCode::kMostPieces).snippet,
            nullptr);
}

TEST(KeptCode, HoldsSoManyCharacters) {
  KeptCode store(0);
  store.keep(L"ab", 1, snippetOf(KeptCode::kMostCharacters - 1));
  EXPECT_EQ(store.find(L"ab", 1).snippet, nullptr) << "longer than all that may be kept";
  store.keep(L"ab", 1, snippetOf(KeptCode::kMostCharacters - 5));
  EXPECT_NE(store.find(L"ab", 1).snippet, nullptr);
  store.keep(L"cd", 2, snippetOf(2));
  EXPECT_EQ(store.find(L"cd", 2).snippet, nullptr) << "with its key it is one too many";
  store.keep(L"cd", 2, snippetOf(1));
  EXPECT_NE(store.find(L"cd", 2).snippet, nullptr);
}

TEST(KeptCode, DropsForAnotherOnlyWhatWasNotAskedForInALongWhile) {
  KeptCode store(0);
  for (std::size_t i = 0; i < KeptCode::kMostPieces; ++i)
    store.keep(itos(static_cast<int>(i)), i, snippetOf(1));
  for (std::uint64_t i = 0; i + 1 < KeptCode::kLongWhile; ++i) store.find(L"0", 0);
  store.keep(L"new", 1000, snippetOf(1));
  EXPECT_EQ(store.find(L"new", 1000).snippet, nullptr) << "the others are not old enough";
  store.keep(L"new", 1000, snippetOf(1));
  EXPECT_NE(store.find(L"new", 1000).snippet, nullptr);
  EXPECT_NE(store.find(L"0", 0).snippet, nullptr);
  EXPECT_EQ(store.find(L"1", 1).snippet, nullptr);
  // Their characters count no more.
  store.keep(L"long", 1001, snippetOf(KeptCode::kMostCharacters - 20));
  EXPECT_NE(store.find(L"long", 1001).snippet, nullptr);
}

TEST(KeptCode, DropsNothingForAPieceThatNeverFits) {
  KeptCode store(0);
  store.keep(L"a", 1, snippetOf(1));
  for (std::uint64_t i = 0; i < KeptCode::kLongWhile; ++i) store.find(L"b", 2);
  store.keep(L"c", 3, snippetOf(KeptCode::kMostCharacters));
  EXPECT_NE(store.find(L"a", 1).snippet, nullptr);
}

TEST(KeptCode, NotesTheLastQuestionsOnly) {
  KeptCode store(1);
  for (std::size_t i = 2; i <= KeptCode::kMostPieces; ++i) store.find(L"", i);
  EXPECT_TRUE(store.find(L"", 1).isWanted);
  store.find(L"", 1000);
  EXPECT_FALSE(store.find(L"", 1).isWanted);
  EXPECT_TRUE(store.find(L"", 1000).isWanted);
}

// What profiles keep

/// A profile that is used again and again, each time by another instance.
class KeptDefinition : public test::ProfileWriter {
protected:
  using Change = std::function<void(KeptDefinition&)>;

  void useFunction(const std::wstring& body, const std::wstring& members = L"") {
    text_ = L"{\"language\": [\"dx11\"], " + members +
            L"\"implementation\": [\"void f(float a, out float r)\", "
            L"\"{\", \"" +
            body + L"\", \"}\"]}";
    use(text_);
  }
  /// Where the text stands that one more instance writes.
  const wchar_t* place(const Change& prepare = {}) {
    makeInstance();
    if (prepare) prepare(*this);
    CodeSnippetInstance out;
    EXPECT_TRUE(profile->writeDefinition(out, context, *instance));
    written_ = textOf(out);
    return out.getNumSymbols() != 0 ? out.getSymbol(0).getText().text : nullptr;
  }
  /// Uses it until it is kept.
  void keep(const Change& prepare = {}) {
    place(prepare);
    const wchar_t* const kept = place(prepare);
    ASSERT_EQ(place(prepare), kept);
    ASSERT_EQ(place(prepare), kept);
  }
  /// The same change leads to the same text as with a profile that keeps nothing.
  void expectAfter(const Change& change, const std::wstring& expected) {
    place(change);
    EXPECT_EQ(written_, expected);
    const RefPtr<AShaderFragmentProfile> before = profile;
    use(text_);
    place(change);
    EXPECT_EQ(written_, expected);
    profile = before;
  }

public:
  using ProfileWriter::context;
  using ProfileWriter::instance;

protected:
  std::wstring text_;
  std::wstring written_;
};

std::wstring functionOf(const std::wstring& name, const std::wstring& state, const std::wstring& body) {
  return L"void " + name + L"(\n    float a,\n" + state + L"    out float r)\n{\n\t" + body + L"\n}\n";
}

TEST_F(KeptDefinition, IsMadeTwiceAndThenKept) {
  useFunction(L"r = a;");
  std::vector<std::shared_ptr<const CodeSnippet>> kept;
  for (int i = 0; i < 4; ++i) {
    makeInstance();
    CodeSnippetInstance out;
    EXPECT_TRUE(profile->writeDefinition(out, context, *instance));
    EXPECT_EQ(textOf(out), functionOf(L"f1", L"", L"r = a;"));
    kept.push_back(out.getSharedSnippet());
  }
  EXPECT_EQ(kept[0], nullptr);
  ASSERT_NE(kept[1], nullptr);
  EXPECT_EQ(kept[2], kept[1]);
  EXPECT_EQ(kept[3], kept[1]);
  // The text stands alone in its memory.
  EXPECT_EQ(kept[1]->getCode().capacity(), kept[1]->getCode().size());
}

TEST_F(KeptDefinition, IsParsedOnceWhenItHasBuiltInCalls) {
  useFunction(L"r = sfg_isConnected(a) ? a : 0;");
  keep();
  CodeSnippetInstance out;
  makeInstance();
  EXPECT_TRUE(profile->writeDefinition(out, context, *instance));
  ASSERT_EQ(out.getNumSymbols(), 1u);
  EXPECT_EQ(out.getSymbol(0).getRenames(), L"false") << "the values are those of the instance";
}

TEST_F(KeptDefinition, IsThatOfOneFunctionName) {
  useFunction(L"r = a;");
  keep();
  expectAfter([](KeptDefinition& test) { test.instance->setFunctionName(L"g"); },
              functionOf(L"g", L"", L"r = a;"));
}

TEST_F(KeptDefinition, IsThatOfOneCurrentLight) {
  const auto light = [](const wchar_t* type, const wchar_t* name) {
    return [=](KeptDefinition& test) { test.context.setCurrentLight(type, name); };
  };
  useFunction(L"r = sfg_currentLight.x;");
  keep(light(L"Lamp", L"lamp"));
  expectAfter(light(L"Sun", L"lamp"), functionOf(L"f1", L"    Sun lamp,\n", L"r = lamp.x;"));
  expectAfter(light(L"Lamp", L"sun"), functionOf(L"f1", L"    Lamp sun,\n", L"r = sun.x;"));
}

TEST_F(KeptDefinition, IsThatOfTheTypesOfItsState) {
  const auto type = [](const wchar_t* name) {
    return [=](KeptDefinition& test) { test.context.registerCustomStateVariable(name, L"tint"); };
  };
  useFunction(L"r = tint.x;", L"\"stateVariables\": [\"tint\"], ");
  keep(type(L"float3"));
  expectAfter(type(L"half3"), functionOf(L"f1", L"    half3 tint,\n", L"r = tint.x;"));
}

/// Calls all state by one name.
class OneNameLanguage : public test::TestLanguage {
public:
  const WString& getStateVariableParameterName(const UString&) const override { return name_; }

private:
  WString name_ = L"normal";
};

TEST_F(KeptDefinition, IsThatOfTheNamesOfItsState) {
  const auto other = makeRef<OneNameLanguage>();
  useFunction(L"r = sfg_worldNormal.x;");
  keep();
  expectAfter([&](KeptDefinition& test) { test.context.setLanguage(other.get()); },
              functionOf(L"f1", L"    inout float3 normal,\n", L"r = sfg_worldNormal.x;"));
}

TEST_F(KeptDefinition, IsThatOfTheStateThereIs) {
  useFunction(L"r = tint.x;", L"\"stateVariables\": [\"tint\"], ");
  keep();
  expectAfter([](KeptDefinition& test) { test.context.registerCustomStateVariable(L"float3", L"tint"); },
              functionOf(L"f1", L"    float3 tint,\n", L"r = tint.x;"));
}

TEST_F(KeptDefinition, IsThatOfOneSetOfRenames) {
  const auto rename = [](const wchar_t* keyword, const wchar_t* replacement) {
    return [=](KeptDefinition& test) {
      test.instance->getKeywordReplacePattern().addReplacePattern(WString(keyword), WString(replacement));
    };
  };
  useFunction(L"r = help(a);");
  keep(rename(L"help", L"help1"));
  expectAfter(rename(L"help", L"help2"), functionOf(L"f1", L"", L"r = help2(a);"));
  expectAfter(rename(L"r = ", L"help1"), functionOf(L"f1", L"", L"help1help(a);"));
  expectAfter({}, functionOf(L"f1", L"", L"r = help(a);"));
}

TEST_F(KeptDefinition, ClearsTheRenamesAsAWriterDoes) {
  const auto rename = [](KeptDefinition& test) {
    test.instance->getKeywordReplacePattern().addReplacePattern(WString(L"help"), WString(L"help1"));
  };
  useFunction(L"r = help(a);");
  keep(rename);
  place(rename);
  EXPECT_TRUE(instance->getKeywordReplacePattern().empty());
}

TEST_F(KeptDefinition, IsThatOfOneSetOfUniforms) {
  const auto uniform = [](const wchar_t* name) {
    return [=](KeptDefinition& test) {
      test.instance->getUniformOriginal() = {L"gain"};
      test.instance->getUniformNew() = {name};
    };
  };
  useFunction(L"r = gain;");
  keep(uniform(L"gainn0"));
  expectAfter(uniform(L"gainn1"), functionOf(L"f1", L"", L"r = gainn1;"));
  expectAfter({}, functionOf(L"f1", L"", L"r = gain;"));
}

TEST_F(KeptDefinition, IsThatOfOneSetOfShaderCalls) {
  const auto call = [](const wchar_t* text) {
    return [=](KeptDefinition& test) {
      test.instance->getShaderReplacePattern().overrideReplacePattern(WString(L"sfg_shader(a, x);"),
                                                                      WString(text));
    };
  };
  useFunction(L"sfg_shader(a, x);");
  keep(call(L"g1(r);"));
  expectAfter(call(L"g2(r);"), functionOf(L"f1", L"", L"g2(r);"));
  expectAfter({}, functionOf(L"f1", L"", L";"));
}

TEST_F(KeptDefinition, IsNotThatOfCallsWithTemporaries) {
  // The places of temporaries decide on their numbers, and are no part of the rules.
  const auto call = [](bool declares) {
    return [=](KeptDefinition& test) {
      ShaderCallText text;
      if (declares) {
        text.declare(L"float", L"s_temp");
      } else {
        text.text = L"float s_temp;\n";
      }
      text.text += L"g(s_temp);";
      for (const wchar_t* use : {L"sfg_shader(a, x)", L"sfg_shader(a, y)"})
        test.instance->replaceShaderUse(use, text);
    };
  };
  useFunction(L"sfg_shader(a, x) sfg_shader(a, y)");
  keep(call(false));
  expectAfter(call(true), functionOf(L"f1", L"", L"float s_temp;\ng(s_temp); float s_temp2;\ng(s_temp2);"));
  place(call(true));
  const wchar_t* const first = place(call(true));
  CodeSnippetInstance holder;
  makeInstance();
  call(true)(*this);
  EXPECT_TRUE(profile->writeDefinition(holder, context, *instance));
  EXPECT_EQ(holder.getSharedSnippet(), nullptr) << first;
}

TEST_F(KeptDefinition, IsNotThatOfSpans) {
  const auto span = [](std::size_t position) {
    return [=](KeptDefinition& test) {
      test.instance->getUniformReplacePattern().addReplacePattern(KeywordPosKey{position, 1}, WString(L"x"));
    };
  };
  useFunction(L"r = a;");
  keep();
  place(span(1));
  expectAfter(span(1), functionOf(L"f1", L"", L"x = a;"));
  expectAfter(span(5), functionOf(L"f1", L"", L"r = x;"));
}

TEST_F(KeptDefinition, IsNotThatOfVeryManyRules) {
  const auto uniforms = [](KeptDefinition& test) {
    for (int i = 0; i < 65; ++i) {
      test.instance->getUniformOriginal().push_back(L"gain" + itos(i));
      test.instance->getUniformNew().push_back(L"u" + itos(i));
    }
  };
  useFunction(L"r = gain64;");
  for (int i = 0; i < 3; ++i) {
    makeInstance();
    uniforms(*this);
    CodeSnippetInstance out;
    EXPECT_TRUE(profile->writeDefinition(out, context, *instance));
    EXPECT_EQ(textOf(out), functionOf(L"f1", L"", L"r = u64;"));
    EXPECT_EQ(out.getSharedSnippet(), nullptr);
  }
}

// Changes of the profile

struct ProfileChange {
  const char* name;
  void (*change)(AShaderFragmentProfile&);
  const wchar_t* expected;
};

void PrintTo(const ProfileChange& change, std::ostream* os) { *os << change.name; }

class ChangedProfile : public KeptDefinition, public testing::WithParamInterface<ProfileChange> {};

TEST_P(ChangedProfile, KeepsNothingOfBefore) {
  context.registerCustomStateVariable(L"float3", L"tint");
  useFunction(L"r = a;");
  keep();
  GetParam().change(*profile);
  place();
  EXPECT_EQ(written_, GetParam().expected);
  place();
  EXPECT_EQ(written_, GetParam().expected);
}

const ProfileChange kChanges[] = {
    {"body", [](AShaderFragmentProfile& p) { p.setFunctionBody(L"\tr = 2;\n"); },
     L"void f1(\n    float a,\n    out float r)\n{\n\tr = 2;\n}\n"},
    {"writableBody", [](AShaderFragmentProfile& p) { p.getFunctionBody() += L"\tr = 2;\n"; },
     L"void f1(\n    float a,\n    out float r)\n{\n\tr = a;\n\tr = 2;\n}\n"},
    {"prototype", [](AShaderFragmentProfile& p) { p.setFunctionPrototype(L"void f(out half r)"); },
     L"void f1(\n    out half r)\n{\n\tr = a;\n}\n"},
    {"parameters", [](AShaderFragmentProfile& p) { p.getFunctionParameters()->addInput(L"float", L"b"); },
     L"void f1(\n    float a,\n    float b,\n    out float r)\n{\n\tr = a;\n}\n"},
    {"stateVariables",
     [](AShaderFragmentProfile& p) { p.stateVariables().insert(UString(L"sfg_worldNormal")); },
     L"void f1(\n    float a,\n    inout float3 sfg_worldNormal,\n    out float r)\n{\n\tr = a;\n}\n"},
    {"customStateVariables", [](AShaderFragmentProfile& p) { p.customStateVariables().insert(L"tint"); },
     L"void f1(\n    float a,\n    float3 tint,\n    out float r)\n{\n\tr = a;\n}\n"},
    {"functionName", [](AShaderFragmentProfile& p) { p.setFunctionName(L"g"); },
     L"void g1(\n    float a,\n    out float r)\n{\n\tr = a;\n}\n"},
    {"clear",
     [](AShaderFragmentProfile& p) {
       p.clear();
       p.setFunctionName(L"f");
     },
     L"void f1()\n{\n}\n"},
};
INSTANTIATE_TEST_SUITE_P(Changes, ChangedProfile, testing::ValuesIn(kChanges),
                         [](const auto& change) { return change.param.name; });

TEST_F(KeptDefinition, IsMadeAnewEveryTimeThatAReferenceMayHaveChangedIt) {
  useFunction(L"r = a;");
  ITextParameterList* const parameters = profile->getFunctionParameters();
  for (const wchar_t* name : {L"b", L"c", L"d"}) {
    place();
    parameters->addInput(L"float", name);
    place();
    EXPECT_NE(written_.find(std::wstring(L"    float ") + name), std::wstring::npos) << written_.size();
  }
}

// Predefines

class KeptPredefines : public test::ProfileWriter {
protected:
  void useHelper(const std::wstring& helper) {
    use(L"{\"language\": [\"dx11\"], \"predefine\": [\"" + helper +
        L"\"], \"implementation\": [\"void f(float a)\", \"{\", \"}\"]}");
  }
  std::shared_ptr<const CodeSnippet> write(const wchar_t* uniform, std::wstring& text) {
    makeInstance();
    if (uniform != nullptr) {
      instance->getUniformOriginal() = {L"gain"};
      instance->getUniformNew() = {uniform};
    }
    CodeSnippetInstance out;
    EXPECT_TRUE(profile->writePredefines(out, context, *instance));
    text = textOf(out);
    return out.getSharedSnippet();
  }
};

TEST_F(KeptPredefines, AreParsedOnceForEachSetOfUniforms) {
  useHelper(L"float h() { return gain; }");
  std::wstring text;
  EXPECT_EQ(write(L"u", text), nullptr);
  const auto kept = write(L"u", text);
  EXPECT_NE(kept, nullptr);
  EXPECT_EQ(write(L"u", text), kept);
  EXPECT_EQ(text, L"float h() { return u; }\n");
  write(L"v", text);
  EXPECT_EQ(text, L"float h() { return v; }\n");
  const auto plain = write(nullptr, text);
  EXPECT_EQ(text, L"float h() { return gain; }\n");
  EXPECT_EQ(write(nullptr, text), plain) << "as they are they are parsed once anyway";
}

TEST_F(KeptPredefines, AreToldFromDefinitions) {
  useHelper(L"float h() { return gain; }");
  std::wstring text;
  for (int i = 0; i < 3; ++i) {
    write(L"u", text);
    EXPECT_EQ(text, L"float h() { return u; }\n");
    EXPECT_EQ(definition(), L"void f1(\n    float a)\n{\n}\n");
  }
}

TEST_F(KeptPredefines, AreMadeAnewEveryTimeThatAReferenceMayHaveChangedThem) {
  useHelper(L"float h() { return gain; }");
  std::wstring text;
  for (int i = 0; i < 3; ++i) write(L"u", text);
  WString& predefines = profile->predefines();
  for (const wchar_t* value : {L"2", L"3", L"4"}) {
    predefines = WString(L"float h() { return gain * ") + value + L"; }\n";
    write(L"u", text);
    EXPECT_EQ(text, std::wstring(L"float h() { return u * ") + value + L"; }\n");
  }
}

TEST_F(KeptPredefines, WithoutAShaderCallThatNobodyReplaces) {
  useHelper(L"float h() { sfg_shader(a, x) return 1; }");
  std::wstring text;
  write(nullptr, text);
  EXPECT_EQ(text, L"float h() {  return 1; }\n");
}

TEST_F(KeptPredefines, ThatHoldNothingAreNotKept) {
  useHelper(L"gain");
  std::wstring text;
  for (int i = 0; i < 3; ++i) {
    makeInstance();
    instance->getUniformOriginal() = {L"gain"};
    instance->getUniformNew() = {L" "};
    CodeSnippetInstance out;
    EXPECT_TRUE(profile->writePredefines(out, context, *instance));
    EXPECT_EQ(out.getNumSymbols(), 0u);
  }
}

// Threads

TEST_F(KeptDefinition, IsSharedByThreads) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 200;
  useFunction(L"r = gain + sfg_currentLight.x;");
  std::vector<std::thread> threads;
  std::vector<int> wrong(kThreads, 0);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < kRounds; ++round) {
        AShaderCollapseContext ownContext;
        ownContext.setLanguage(language.get());
        const WString number = itos(round % 3);
        ownContext.setCurrentLight(L"Lamp", L"lamp" + number);
        FragmentProfileInstance own;
        own.create(language.get(), fragment.get(), profile.get(), L"1");
        own.getUniformOriginal() = {L"gain"};
        own.getUniformNew() = {L"gain" + number};
        CodeSnippetInstance out;
        const bool isWritten = profile->writeDefinition(out, ownContext, own);
        const std::wstring suffix(number.begin(), number.end());
        if (!isWritten || textOf(out) != functionOf(L"f1", L"    Lamp lamp" + suffix + L",\n",
                                                    L"r = gain" + suffix + L" + lamp" + suffix + L".x;"))
          ++wrong[static_cast<std::size_t>(t)];
        // The hash and the key are made by whichever thread asks first.
        if (out.getSymbol(0).getIdentityHash() == 0 || out.getSymbol(0).getInstanceKey().empty())
          ++wrong[static_cast<std::size_t>(t)];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(kThreads, 0));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
