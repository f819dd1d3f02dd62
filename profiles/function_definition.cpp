#include "profiles/function_definition.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "profiles/parameter_text.h"
#include "sfg/scoped_text.h"
#include "sfg/size_limit.h"

namespace TolmSDK::Graphics::sfg {

namespace {

constexpr std::size_t kTypicalHeadLength = 256;

bool isWord(std::wstring_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isTokenChar);
}

/// Whether the rules turn words into words, wherever they match: brackets and comments then stay what they
/// are. Should a new word spell a built-in function, its call would have no value and stay as written too.
bool keepsStructure(const KeywordReplacer& rules) {
  if (rules.hasPositionalRules()) return false;
  for (std::size_t i = 0; i < rules.countRules(); ++i)
    if (!isWord(rules.getKeyword(i)) || !isWord(rules.getReplacement(i))) return false;
  return true;
}

/// Whether a text holds neither parentheses nor what begins comments and preprocessor lines, which is so of
/// nearly all parameter lists.
bool isWithoutBrackets(std::wstring_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](wchar_t c) { return c == L'(' || c == L')' || c == L'/' || c == L'#'; });
}

}  // namespace

bool FunctionDefinition::write(CodeSnippetInstance& out, const KeywordReplacePattern& first) const {
  ATextParameterList state;
  if (!addStateInputs(state, profile_, context_)) return false;
  KeywordReplacer replacer;
  addRules(replacer, first);
  CodeKey key;
  const bool isKept = profile_.keepsDefinitions() && canKeepCode(replacer, instance_);
  if (isKept) key = makeKey(state, replacer);
  constructCode(out, profile_, isKept ? &key : nullptr, instance_.getBuiltinFunctionValueInBody(),
                [&](bool isWanted) { return make(state, replacer, isWanted); });
  clearKeywordRules();
  return true;
}

CodeKey FunctionDefinition::makeKey(const ATextParameterList& state, const KeywordReplacer& replacer) const {
  constexpr std::size_t kTypicalLength = 64;
  CodeKey key;
  key.reserve(kTypicalLength);
  sfg::addRules(key, replacer);
  key.addNumber(state.getNumInputs());
  for (std::size_t i = 0; i < state.getNumInputs(); ++i) {
    key.add(state.getInputType(i));
    key.add(state.getInputName(i));
  }
  instance_.appendFunctionName(key.end());
  return key;
}

std::unique_ptr<CodeSnippet> FunctionDefinition::make(const ATextParameterList& state,
                                                      const KeywordReplacer& replacer, bool isKept) const {
  Text text;
  writeHead(text, state);
  const bool isPlain = isPlainFunction(text, replacer);
  appendBody(text, replacer);
  finish(text);
  if (!isPlain) return parseCode(text.code);
  if (isKept) text.code.shrink_to_fit();
  auto snippet = std::make_unique<CodeSnippet>();
  snippet->takePlainFunction(std::move(text.code), kResult.size(), text.nameLength, text.body);
  return snippet;
}

void FunctionDefinition::writeHead(Text& text, const ATextParameterList& state) const {
  text.code.reserve(profile_.getFunctionBody().size() + kTypicalHeadLength);
  text.code += kResult;
  instance_.appendFunctionName(text.code);
  text.nameLength = text.code.size() - kResult.size();
  text.code += L'(';
  appendDeclaredParameters(text.code, 4, profile_, state);
  text.code += L")\n";
  text.body = text.code.size();
  text.code += kOpening;
}

void FunctionDefinition::addRules(KeywordReplacer& replacer, const KeywordReplacePattern& first) const {
  replacer.addReplacePattern(first);
  if (const KeywordReplacePattern* keywords = instance_.findKeywordReplacePattern())
    replacer.addReplacePattern(*keywords);
  instance_.addReplacements(replacer);
}

void FunctionDefinition::appendBody(Text& text, const KeywordReplacer& replacer) const {
  appendWithCalls(text, replacer, profile_.getFunctionBody(), instance_);
}

/// They serve one definition.
void FunctionDefinition::clearKeywordRules() const {
  if (KeywordReplacePattern* keywords = instance_.findKeywordReplacePattern())
    keywords->clearReplacePattern();
}

void FunctionDefinition::finish(Text& text) {
  numberTemporaries(text, bodyBegin(text));
  text.code += kTail;
}

/// Whether a parse would find one function and nothing else, without any call of a built-in function. That is
/// known of the profile's body, and the rules leave it so; the head is looked at.
bool FunctionDefinition::isPlainFunction(const Text& text, const KeywordReplacer& replacer) const {
  const std::wstring_view name = std::wstring_view(text.code).substr(kResult.size(), text.nameLength);
  if (!profile_.hasPlainBody() || !isWord(name) || !keepsStructure(replacer)) return false;
  std::size_t open = kResult.size() + text.nameLength;
  const std::size_t close = text.body - 2;  // a line feed stands between
  if (isWithoutBrackets(std::wstring_view(text.code).substr(open + 1, close - open - 1))) return true;
  getBracketBody(text.code, open, L'(', L')');
  return open == close + 1;
}

}  // namespace TolmSDK::Graphics::sfg
