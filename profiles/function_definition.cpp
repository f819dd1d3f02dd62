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

bool areWords(const Array<WString>& texts) { return std::all_of(texts.begin(), texts.end(), isWord); }

/// Whether the rules turn words into words, wherever they match: brackets and comments then stay what they
/// are. Should a new word spell a built-in function, its call would have no value and stay as written too.
bool keepsStructure(const KeywordReplacePattern& rules) {
  return rules.getPositionalReplacements().empty() && areWords(rules.getKeywords()) &&
         areWords(rules.getReplacements());
}

}  // namespace

bool FunctionDefinition::write(CodeSnippetInstance& out, const KeywordReplacePattern& first) const {
  Text text;
  if (!writeHead(text)) return false;

  const bool isPlain = isPlainFunction(text, first);
  appendBody(text, first);
  finish(text);
  if (!isPlain) {
    AShaderFragmentProfile::constructOwned(out, text.code, instance_.getBuiltinFunctionValueInBody());
    return true;
  }
  auto snippet = std::make_unique<CodeSnippet>();
  snippet->takePlainFunction(std::move(text.code), kResult.size(), text.nameLength, text.body);
  out.construct(snippet.release(), {}, true);
  return true;
}

bool FunctionDefinition::writeHead(Text& text) const {
  text.code.reserve(profile_.getFunctionBody().size() + kTypicalHeadLength);
  text.code += kResult;
  instance_.appendFunctionName(text.code);
  text.nameLength = text.code.size() - kResult.size();
  text.code += L'(';
  if (!appendDeclaredParameters(text.code, L"    ", profile_, context_)) return false;
  text.code += L")\n";
  text.body = text.code.size();
  text.code += kOpening;
  return true;
}

void FunctionDefinition::appendBody(Text& text, const KeywordReplacePattern& first) const {
  KeywordReplacer replacer;
  replacer.addReplacePattern(first);
  for (const KeywordReplacePattern* pattern : instancePatterns()) replacer.addReplacePattern(*pattern);
  appendWithCalls(text, replacer, profile_.getFunctionBody(), instance_);
  instance_.getKeywordReplacePattern().clearReplacePattern();
}

void FunctionDefinition::finish(Text& text) {
  numberTemporaries(text, bodyBegin(text));
  text.code += kTail;
}

/// Whether a parse would find one function and nothing else, without any call of a built-in function. That is
/// known of the profile's body, and the rules leave it so; the head is looked at.
bool FunctionDefinition::isPlainFunction(const Text& text, const KeywordReplacePattern& first) const {
  const std::wstring_view name = std::wstring_view(text.code).substr(kResult.size(), text.nameLength);
  if (!profile_.hasPlainBody() || !isWord(name) || !keepsStructure(first)) return false;
  for (const KeywordReplacePattern* pattern : instancePatterns())
    if (!keepsStructure(*pattern)) return false;
  std::size_t pos = kResult.size() + text.nameLength;
  getBracketBody(text.code, pos, L'(', L')');
  return pos + 1 == text.body;
}

}  // namespace TolmSDK::Graphics::sfg
