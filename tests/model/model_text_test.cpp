// Random texts and rules through the real functions and through literal, slow models of them.

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "sfg/code_accumulator.h"
#include "sfg/code_formatter.h"
#include "sfg/code_snippet.h"
#include "sfg/keyword_replace.h"
#include "sfg/scoped_text.h"
#include "tests/model/library_rules.h"
#include "tests/model/model_accumulator.h"
#include "tests/model/model_text.h"
#include "tests/model/scanner.h"
#include "text/test_views.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

class RandomTexts {
public:
  explicit RandomTexts(std::uint32_t seed) : random_(seed) {}

  std::size_t below(std::size_t limit) { return random_() % limit; }
  std::wstring text(std::wstring_view alphabet, std::size_t limit) {
    std::wstring result(below(limit), L' ');
    for (wchar_t& c : result) c = alphabet[below(alphabet.size())];
    return result;
  }
  /// Mostly inside or just behind a text of that length, now and then far behind it.
  std::size_t position(std::size_t length) {
    return below(50) == 0 ? kNotFound - below(2) : below(length + 3);
  }

private:
  std::minstd_rand random_;
};

/// Each test takes one share of the seeds, so that they run side by side.
class ModelTest : public ::testing::TestWithParam<std::uint32_t> {};
INSTANTIATE_TEST_SUITE_P(Seeds, ModelTest, ::testing::Range(1u, 5u));
constexpr int kRounds = 260000;

struct Rules {
  KeywordReplacePattern patterns[2];
  std::size_t count = 0;

  static Rules random(RandomTexts& texts, std::size_t length) {
    Rules rules;
    rules.count = texts.below(3);
    for (std::size_t p = 0; p < rules.count; ++p) {
      for (std::size_t i = texts.below(4); i != 0; --i)
        rules.patterns[p].addReplacePattern(WString(texts.text(L"ab", 4)), WString(texts.text(L"ABab", 4)));
      for (std::size_t i = texts.below(4); i != 0; --i)
        rules.patterns[p].addReplacePattern(KeywordPosKey{texts.position(length), texts.position(3)},
                                            WString(texts.text(L"01", 3)));
    }
    return rules;
  }

  std::string describe() const {
    std::string text;
    for (std::size_t p = 0; p < count; ++p) {
      for (std::size_t i = 0; i < patterns[p].getKeywords().size(); ++i)
        text +=
            toUtf8(patterns[p].getKeywords()[i]) + " -> " + toUtf8(patterns[p].getReplacements()[i]) + "\n";
      for (const auto& [key, replacement] : patterns[p].getPositionalReplacements())
        text += std::to_string(key.position) + ", " + std::to_string(key.length) + " -> " +
                toUtf8(replacement) + "\n";
    }
    return text;
  }
};

TEST_P(ModelTest, ReplacerAppliesRulesAsTheModelDoes) {
  RandomTexts texts(GetParam());
  for (int round = 0; round < kRounds; ++round) {
    // A small alphabet, so that keywords overlap, repeat and run past the view; now and then a NUL inside.
    const std::wstring_view alphabet =
        texts.below(20) == 0 ? std::wstring_view(L"ab\0", 3) : std::wstring_view(L"ab");
    const std::wstring text = texts.text(alphabet, 14);
    const LiveText live(text, texts.text(L"ab", 4));
    const Rules rules = Rules::random(texts, text.size());

    model::Replacer slow;
    KeywordReplacer fast;
    for (std::size_t p = 0; p < rules.count; ++p) {
      slow.add(model::patternOf(rules.patterns[p]));
      fast.addReplacePattern(rules.patterns[p]);
    }
    std::wstring expected = L"old";
    slow.appendAndReplace(expected, model::viewOf(live.view()));
    WString out = L"old";
    fast.appendAndReplace(out, live.view());
    ASSERT_EQ(std::wstring_view(out), expected) << toUtf8(text) << "\n" << rules.describe();
  }
}

TEST_P(ModelTest, FindSearchesAsTheModelDoes) {
  RandomTexts texts(GetParam());
  for (int round = 0; round < kRounds; ++round) {
    const std::wstring_view alphabet =
        texts.below(9) == 0 ? std::wstring_view(L"ab\0", 3) : std::wstring_view(L"ab");
    const std::wstring text = texts.text(alphabet, 12);
    const LiveText live(text, texts.text(L"ab", 5));
    const std::wstring needle = texts.text(L"ab", 6);
    const std::size_t from = texts.position(text.size());
    ASSERT_EQ(live.view().find(WString(needle), from), model::find(model::viewOf(live.view()), needle, from))
        << toUtf8(text) << " / " << toUtf8(needle) << " from " << from;
  }
}

TEST_P(ModelTest, ScanningMovesAsTheModelDoes) {
  constexpr std::wstring_view kAlphabets[] = {L"/* \n", L"/*\\\n\r #a", L"{}/*#\n a", L"(a);/* \n",
                                              L"S[sT_9\u00e9\t"};
  RandomTexts texts(GetParam());
  for (int round = 0; round < kRounds; ++round) {
    const std::wstring text = texts.text(kAlphabets[texts.below(std::size(kAlphabets))], 12);
    const model::Scanner scanner(text);
    const LiveText live(text, texts.text(L"/*\n;{}a", 3));
    const ExactText exact(text);
    const ScopedText view = round % 2 == 0 ? live.view() : exact.view();
    const std::size_t start = texts.position(text.size());
    SCOPED_TRACE(::testing::Message() << '"' << toUtf8(text) << "\" from " << start);

    const auto moves = [&](auto real, auto modelled) {
      std::size_t pos = start;
      std::size_t expected = start;
      real(view, pos);
      modelled(expected);
      ASSERT_EQ(pos, expected);
    };
    moves(skipLine, [&](std::size_t& pos) { scanner.skipLine(pos); });
    moves(skipComment, [&](std::size_t& pos) { scanner.skipComment(pos); });
    moves(skipMacros, [&](std::size_t& pos) { scanner.skipMacros(pos); });
    moves(skipWhitespaces, [&](std::size_t& pos) { scanner.skipWhitespaces(pos); });
    moves(skipNonKeywords, [&](std::size_t& pos) { scanner.skipNonKeywords(pos); });

    const auto takes = [&](auto real, auto modelled) {
      std::size_t pos = start;
      std::size_t expectedPos = start;
      const ScopedText taken = real(pos);
      const model::Part expected = modelled(expectedPos);
      ASSERT_EQ(static_cast<std::size_t>(taken.text - view.text), expected.start);
      ASSERT_EQ(taken.length, expected.length);
      ASSERT_EQ(pos, expectedPos);
    };
    for (const auto& [open, close] : {std::pair(L'{', L'}'), std::pair(L'(', L')'), std::pair(L'/', L'*')})
      takes([&, o = open, c = close](std::size_t& pos) { return getBracketBody(view, pos, o, c); },
            [&, o = open, c = close](std::size_t& pos) { return scanner.getBracketBody(pos, o, c); });
    takes([&](std::size_t& pos) { return getKeyword(view, pos); },
          [&](std::size_t& pos) { return scanner.getKeyword(pos); });
    takes([&](std::size_t& pos) { return getOptionalReturn(view, pos); },
          [&](std::size_t& pos) { return scanner.getOptionalReturn(pos); });
    takes([&](std::size_t& pos) { return getOptionalSemiColon(view, pos); },
          [&](std::size_t& pos) { return scanner.getOptionalSemiColon(pos); });

    for (const wchar_t* literal : {L"", L"s", L"sT", L"S[", L"\u00e9", L"//"})
      ASSERT_EQ(isEqual(view, start, literal), scanner.isEqual(start, literal)) << toUtf8(literal);
    WString key;
    buildKey(key, view);
    ASSERT_EQ(std::wstring_view(key), scanner.buildKey());
    ScopedText trimmed = view;
    trimWhiteSpaces(trimmed);
    ASSERT_EQ(trimmed.view(), scanner.trimmed());
    if (HasFatalFailure()) return;
  }
}

// ---- Symbols

/// Pieces of shader text that decide what a symbol is.
std::wstring randomCode(RandomTexts& texts) {
  static const std::vector<std::wstring> pieces = {L"float ",
                                                   L"void ",
                                                   L"f",
                                                   L"g",
                                                   L"(",
                                                   L")",
                                                   L"{",
                                                   L"}",
                                                   L";",
                                                   L";\n",
                                                   L"\n",
                                                   L" ",
                                                   L"struct ",
                                                   L"STRUCTS ",
                                                   L"samplerstate ",
                                                   L"technique ",
                                                   L"uniform ",
                                                   L"extern ",
                                                   L"<",
                                                   L">",
                                                   L"[",
                                                   L"]",
                                                   L":",
                                                   L"=",
                                                   L",",
                                                   L"//",
                                                   L"/*",
                                                   L"*/",
                                                   L"#",
                                                   L"sfg_isConnected",
                                                   L"sfg_shader(",
                                                   L"sfg_isFinalOutput(f, g)",
                                                   L"state.normal",
                                                   L"State.normal",
                                                   L"sfg_matWorld",
                                                   L"__x",
                                                   L"static const ",
                                                   L"float f(float a) { return ",
                                                   L"sfg_isConnected( a b,, c )",
                                                   L"; }\n"};
  std::wstring code;
  for (std::size_t i = texts.below(25); i != 0; --i) code += pieces[texts.below(pieces.size())];
  return code;
}

std::string describeCalls(const std::vector<model::BuiltinCall>& calls) {
  std::string text;
  for (const model::BuiltinCall& call : calls) {
    const std::size_t start = call.text.empty() ? 0 : call.start;
    text += std::to_string(static_cast<int>(call.id)) + " at " + std::to_string(start) + " \"" +
            toUtf8(call.text) + "\":";
    for (const std::wstring& argument : call.arguments) text += " [" + toUtf8(argument) + "]";
    text += '\n';
  }
  return text;
}

std::string describeSymbol(const model::Snippet& snippet, const model::Symbol& symbol) {
  std::string text = std::to_string(static_cast<int>(symbol.kind)) + " " + std::to_string(symbol.start) +
                     " \"" + toUtf8(snippet.view(symbol).str()) + "\" named " + toUtf8(symbol.name) + "\n";
  for (const std::wstring& name : symbol.keywords.stateVariables) text += toUtf8(name) + "\n";
  return text + describeCalls(symbol.keywords.builtins) + describeCalls(symbol.keywords.shaders);
}

std::vector<model::BuiltinCall> callsOf(const Array<BuiltinFunction>& real, const ScopedText& range) {
  std::vector<model::BuiltinCall> calls;
  for (const BuiltinFunction& function : real) {
    model::BuiltinCall call;
    call.id = function.id == eBuiltinFunctionShader          ? model::BuiltinId::shader
              : function.id == eBuiltinFunctionIsFinalOutput ? model::BuiltinId::isFinalOutput
                                                             : model::BuiltinId::isConnected;
    for (const ScopedText& argument : function.arguments) call.arguments.emplace_back(argument.view());
    call.text = std::wstring(function.range.view());
    if (!call.text.empty()) call.start = static_cast<std::size_t>(function.range.text - range.text);
    calls.push_back(call);
  }
  return calls;
}

/// A symbol of the library in the model's terms, without its key.
model::Symbol symbolOf(const CodeSnippet& snippet, const ShaderSymbol& real) {
  model::Symbol symbol;
  constexpr model::SymbolKind kKinds[] = {model::SymbolKind::raw, model::SymbolKind::structure,
                                          model::SymbolKind::uniform, model::SymbolKind::function,
                                          model::SymbolKind::technique};
  symbol.kind = kKinds[static_cast<std::size_t>(real.getType())];
  symbol.name = std::wstring(real.getName().view());
  symbol.start = static_cast<std::size_t>(real.getRange().text - snippet.getCode().c_str());
  symbol.length = real.getRange().length;
  for (const UString& name : real.getStateVariables()) symbol.keywords.stateVariables.emplace(name.view());
  symbol.keywords.builtins = callsOf(real.getBuiltinFunctions(), real.getRange());
  symbol.keywords.shaders = callsOf(real.getShaderFunctions(), real.getRange());
  return symbol;
}

TEST_P(ModelTest, SnippetsHoldTheSymbolsOfTheModel) {
  RandomTexts texts(GetParam());
  std::size_t functions = 0;
  for (int round = 0; round < 60000; ++round) {
    const std::wstring code = randomCode(texts);
    SCOPED_TRACE(::testing::Message() << '"' << toUtf8(code) << '"');
    const model::Snippet expected = model::parseSnippet(code);
    CodeSnippet snippet;
    snippet.addCode(code.c_str());
    snippet.parse();
    ASSERT_EQ(snippet.getNumSymbols(), expected.symbols.size());
    for (std::size_t i = 0; i < expected.symbols.size(); ++i) {
      const ShaderSymbol& real = snippet.getSymbol(i);
      ASSERT_EQ(describeSymbol(expected, symbolOf(snippet, real)),
                describeSymbol(expected, expected.symbols[i]));
      functions += expected.symbols[i].kind == model::SymbolKind::function ? 1 : 0;
      // Keys are compared by what they tell apart.
      for (std::size_t k = 0; k < i; ++k)
        ASSERT_EQ(real.getKey() == snippet.getSymbol(k).getKey(),
                  expected.symbols[i].key == expected.symbols[k].key);
    }
  }
  EXPECT_GT(functions, 6000u);
}

TEST_P(ModelTest, FormatterIndentsAsTheModelDoes) {
  RandomTexts texts(GetParam());
  for (int round = 0; round < 20000; ++round) {
    const int indent = static_cast<int>(texts.below(4)) - 1;
    CodeFormatter formatter(indent);
    model::Formatter slow(indent);
    for (std::size_t i = texts.below(6); i != 0; --i) {
      const std::wstring line = texts.text(L"{} \ta", 6);
      formatter.addLine(line.c_str());
      slow.addLine(line);
    }
    ASSERT_EQ(std::wstring_view(formatter.getResult()), slow.text());
  }
}

// ---- The accumulator

/// Symbols of few names and few texts, so that families, rings and clashes are common.
std::wstring randomSymbols(RandomTexts& texts) {
  static const std::vector<std::wstring> names = {L"h", L"g", L"k", L"h1", L"hh", L"g2", L"h12"};
  const auto name = [&] { return names[texts.below(names.size())]; };
  std::wstring code;
  for (std::size_t i = 1 + texts.below(4); i != 0; --i) {
    const std::wstring type = texts.below(3) == 0 ? L"float2" : L"float";
    const std::wstring head = L"float " + name() + L"(" + type + L" a)";
    switch (texts.below(9)) {
    case 0: code += head + L";\n"; break;
    case 1:
      code += L"struct " + name() + (texts.below(2) == 0 ? L" { float " + name() + L"; };\n" : L";\n");
      break;
    case 2: code += L"uniform float " + name() + L" = 1;\n"; break;
    case 3: code += head + L" { return sfg_isConnected(a) + sfg_isConnected; }\n"; break;
    case 4: code += L"technique T { pass " + name() + L" {} }\n"; break;
    case 5: code += L"struct { float " + name() + L"; };\n"; break;
    default: code += head + L" { return " + name() + L"(1); }\n";
    }
  }
  if (texts.below(12) == 0) code += L"static const float c = " + name() + L"(1);\n";
  return code;
}

TEST_P(ModelTest, AccumulatorWritesWhatTheModelWrites) {
  RandomTexts texts(GetParam());
  for (int round = 0; round < 6000; ++round) {
    CodeAccumulator accumulator;
    model::Accumulator slow;
    WString out;
    std::wstring expected;
    std::wstring read;
    for (std::size_t call = 2 + texts.below(4); call != 0; --call) {
      const std::wstring code = randomSymbols(texts);
      read += code + L"----\n";
      CodeSnippet snippet;
      snippet.addCode(code.c_str());
      snippet.parse();
      Array<WString> values;
      for (std::size_t i = texts.below(4); i != 0; --i)
        values.emplace_back(texts.below(2) == 0 ? L"true" : L"h");
      CodeSnippetInstance instance;
      instance.construct(&snippet, values, false);
      KeywordReplacePattern pattern;
      if (texts.below(3) == 0) pattern.addReplacePattern(L"a", L"h");
      KeywordReplacePattern rules;
      if (texts.below(3) == 0) rules.addReplacePattern(L"h", texts.below(2) == 0 ? L"h1" : L"x");
      model::Pattern slowRules = model::patternOf(rules);

      const model::Snippet parsed = model::parseSnippet(code);
      const std::vector<std::wstring> slowValues(values.begin(), values.end());
      slow.append(expected, model::instantiate(parsed, slowValues), parsed, model::patternOf(pattern),
                  slowRules, L"");
      accumulator.append(out, instance, pattern, rules);
      ASSERT_EQ(toUtf8(out), toUtf8(expected)) << toUtf8(read);
      ASSERT_EQ(model::patternOf(rules).keywords, slowRules.keywords) << toUtf8(read);
      for (const wchar_t* name : {L"h", L"g", L"k", L"h1"})
        ASSERT_EQ(std::wstring(accumulator.getRename(name)), slow.rename(name)) << toUtf8(read);
    }
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
