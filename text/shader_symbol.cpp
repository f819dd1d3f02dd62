#include "sfg/shader_symbol.h"

#include <algorithm>
#include <array>
#include <functional>
#include <mutex>
#include <string_view>

#include "text/builtin_names.h"
#include "text/scan.h"
#include "text/text_hash.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/sha1.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {

namespace {

const WString kNoKey;

Array<UString> sortStateVariables() {
  Array<UString> names;
  for (const StateVariableInfo& variable : allStateVariables()) names.push_back(variable.name);
  std::sort(names.begin(), names.end());
  return names;
}

/// The state variable of that name, or null. Looked up by view: a pooled string of every word that might be
/// one would let code fill the pool.
const UString* findStateVariableByText(std::wstring_view name) {
  // No test meets the guard of threads that come at the same time.
  static const Array<UString> sorted = sortStateVariables();  // GCOVR_EXCL_BR_LINE
  const auto found = std::lower_bound(sorted.begin(), sorted.end(), name);
  return found != sorted.end() && found->view() == name ? &*found : nullptr;
}

/// The words in front of a function's parameters or behind a uniform's qualifiers.
struct DeclarationWords {
  ScopedText first;
  ScopedText lastButOne;
  ScopedText last;
  std::size_t count = 0;
  std::size_t leadingQualifiers = 0;  // words that begin with `uniform` or `extern`

  void add(const ScopedText& word) {
    if (count == 0) first = word;
    if (leadingQualifiers == count &&
        (scan::isEqual(word, 0, L"uniform") || scan::isEqual(word, 0, L"extern")))
      ++leadingQualifiers;
    lastButOne = last;
    last = word;
    ++count;
  }
};

DeclarationWords readWords(const ScopedText& text, std::size_t& pos) {
  DeclarationWords words;
  // No attribute in brackets is looked for: the search for a symbol stops at token characters only, so the
  // words inside an attribute are met as ordinary ones.
  ScopedText word = scan::getKeyword(text, pos);
  while (!word.empty()) {
    words.add(word);
    scan::skipWhitespaces(text, pos);
    word = scan::getKeyword(text, pos);
  }
  return words;
}

bool parseStruct(ShaderSymbol& s, const ScopedText& text, std::size_t& pos) {
  const ScopedText keyword = scan::getKeyword(text, pos);
  scan::skipWhitespaces(text, pos);
  const ScopedText name = scan::getKeyword(text, pos);
  scan::skipWhitespaces(text, pos);
  if (pos >= text.length) return false;
  if (text.text[pos] == L';') {
    const ScopedText semicolon(text.text + pos++, 1);
    s.constructStruct(name, ScopedText(), scan::buildRange(keyword, semicolon));
    return true;
  }
  const ScopedText body = scan::getBracketBody(text, pos, L'{', L'}');
  scan::getOptionalSemiColon(text, pos);
  const ScopedText lineFeed = scan::getOptional(text, pos, L'\n');
  s.constructStruct(name, body, scan::buildRange(keyword, lineFeed));
  return true;
}

bool parseTechnique(ShaderSymbol& s, const ScopedText& text, std::size_t& pos) {
  const ScopedText keyword = scan::getKeyword(text, pos);
  scan::skipWhitespaces(text, pos);
  const ScopedText name = scan::getKeyword(text, pos);
  scan::skipWhitespaces(text, pos);
  const ScopedText body = scan::getBracketBody(text, pos, L'{', L'}');
  s.constructTechnique(name, scan::buildRange(keyword, body));
  return true;
}

bool parseFunction(ShaderSymbol& s, const DeclarationWords& words, const ScopedText& text, std::size_t& pos) {
  if (words.count < 2) return false;
  const ScopedText returnType = scan::buildRange(words.first, words.lastButOne);
  const ScopedText parameters = scan::getBracketBody(text, pos, L'(', L')');
  const ScopedText semicolon = scan::getOptionalSemiColon(text, pos);
  if (!semicolon.empty()) {
    const ScopedText lineFeed = scan::getOptional(text, pos, L'\n');
    s.constructFunction(returnType, words.last, parameters, lineFeed.empty() ? semicolon : lineFeed);
    return true;
  }
  const ScopedText braces = scan::getBracketBody(text, pos, L'{', L'}');
  scan::getOptionalSemiColon(text, pos);
  const ScopedText lineFeed = scan::getOptional(text, pos, L'\n');
  s.constructFunction(returnType, words.last, parameters, scan::buildRange(braces, lineFeed));
  return true;
}

/// Past a default value, to the `;` behind it or to the end.
void skipDefaultValue(const ScopedText& text, std::size_t& pos) {
  while (pos < text.length && text.text[pos] != L';') {
    if (scan::startsComment(text, pos)) {
      scan::skipStartedComment(text, pos);
    } else {
      ++pos;
    }
  }
}

/// Past annotations, constructor arguments, array sizes, semantics and default value. False when anything
/// else comes before the `;`, which `pos` then stands at.
bool skipUniformParts(const ScopedText& text, std::size_t& pos) {
  for (;;) {
    scan::skipWhitespaces(text, pos);
    if (pos >= text.length) return false;
    switch (text.text[pos]) {
    case L'<': scan::getBracketBody(text, pos, L'<', L'>'); break;
    case L'(': scan::getBracketBody(text, pos, L'(', L')'); break;
    case L'[': scan::getBracketBody(text, pos, L'[', L']'); break;
    case L':':
      ++pos;
      scan::skipWhitespaces(text, pos);
      scan::getKeyword(text, pos);
      break;
    case L'=':
      ++pos;
      skipDefaultValue(text, pos);
      break;
    case L';': return true;
    default: return false;
    }
  }
}

bool parseUniform(ShaderSymbol& s, const DeclarationWords& words, const ScopedText& text, std::size_t& pos) {
  const std::size_t unqualified = words.count - words.leadingQualifiers;
  if (unqualified != 1 && unqualified != 2) return false;

  // With one word behind the qualifiers that is the type, whose template arguments and name follow.
  ScopedText name = words.last;
  if (unqualified == 1) {
    if (text.text[pos] == L'<') {
      scan::getBracketBody(text, pos, L'<', L'>');
      scan::skipWhitespaces(text, pos);
    }
    name = scan::getKeyword(text, pos);
  }

  if (!skipUniformParts(text, pos)) return false;
  ++pos;  // the semicolon
  const ScopedText lineFeed = scan::getOptional(text, pos, L'\n');
  s.constructUniform(name, scan::buildRange(words.first, lineFeed));
  return true;
}

}  // namespace

/// The text that a function's key is made of may be gone before a copy is asked for it.
ShaderSymbol::ShaderSymbol(const ShaderSymbol& other)
    : type_(other.type_), hasOwnKey_(other.hasOwnKey_ || !other.keyedText_.empty()), range_(other.range_),
      name_(other.name_), stateVariables_(other.stateVariables_), builtinFunctions_(other.builtinFunctions_),
      shaderFunctions_(other.shaderFunctions_) {
  key_.text = other.getKey();
}

ShaderSymbol& ShaderSymbol::operator=(const ShaderSymbol& other) { return *this = ShaderSymbol(other); }

ShaderSymbol::~ShaderSymbol() = default;

void ShaderSymbol::clear() { clearThis(); }

void ShaderSymbol::clearThis() {
  stateVariables_.clear();
  builtinFunctions_.clear();
  shaderFunctions_.clear();
  setKey(WString());
  hasOwnKey_ = false;
  range_ = ScopedText();
  name_ = ScopedText();
  zeroThis();
}

bool ShaderSymbol::findFirstSymbol(ShaderSymbol& s, ScopedText text, std::size_t& pos) {
  s.clear();
  const bool isFound = parseFirstSymbol(s, text, pos);
  s.hasOwnKey_ = false;
  return isFound;
}

bool ShaderSymbol::parseFirstSymbol(ShaderSymbol& s, const ScopedText& text, std::size_t& pos) {
  scan::skipNonKeywords(text, pos);
  if (pos >= text.length) return false;
  if (scan::isEqual(text, pos, L"struct") || scan::isEqual(text, pos, L"samplerstate"))
    return parseStruct(s, text, pos);
  if (scan::isEqual(text, pos, L"technique")) return parseTechnique(s, text, pos);

  const DeclarationWords words = readWords(text, pos);
  if (pos >= text.length) return false;
  switch (text.text[pos]) {
  case L':':
  case L';':
  case L'<':
  case L'=':
  case L'[': return parseUniform(s, words, text, pos);
  case L'(': return parseFunction(s, words, text, pos);
  default: ++pos; return false;
  }
}

bool ShaderSymbol::findFirstSymbol(ShaderSymbol& s, ScopedText& text) {
  std::size_t pos = 0;
  findFirstSymbol(s, text, pos);
  text = text.substr(pos, text.length);
  return pos > 0;
}

void ShaderSymbol::constructFunction(ScopedText returnType, ScopedText name, ScopedText parameters,
                                     ScopedText body) {
  constructPlainFunction(returnType, name, parameters, body);
  hasOwnKey_ = true;
  parseKeywords(body);
}

void ShaderSymbol::constructPlainFunction(ScopedText returnType, ScopedText name, ScopedText parameters,
                                          ScopedText body) {
  clear();
  type_ = EShaderSymbolType::function;
  name_ = name;
  range_ = scan::buildRange(returnType, body);
  keyedText_ = range_;
  signatureLength_ = scan::buildRange(returnType, parameters).length;
  bodyLength_ = body.length;
  key_.setPending(true);
}

std::size_t ShaderSymbol::getIdentityHash() const noexcept {
  std::size_t hash = key_.identityHash.load(std::memory_order_relaxed);
  if (hash != 0) return hash;
  hash = std::max<std::size_t>(hashOfText(getIdentity()), 1);
  key_.identityHash.store(hash, std::memory_order_relaxed);
  return hash;
}

void ShaderSymbol::setKey(const WString& key) {
  key_.text = key;
  key_.setPending(false);
  hasOwnKey_ = true;
  keyedText_ = ScopedText();
}

const WString& ShaderSymbol::makeKey() const {
  // A few locks for all symbols: threads seldom ask for the key of the same one at a time.
  static std::array<std::mutex, 64> mutexes;
  const std::lock_guard<std::mutex> lock(mutexes[std::hash<const void*>()(this) / sizeof *this % 64]);
  // Another thread may have made it since the caller looked, which no test can time.
  if (!key_.isPending()) return key_.text;  // GCOVR_EXCL_BR_LINE
  constexpr std::size_t kLengthAndHash = 60;
  WString key;
  key.reserve(signatureLength_ + kLengthAndHash);
  buildKey(key, keyedText_.substr(0, signatureLength_));
  appendDecimal(key, bodyLength_);
  key += SHA1_GetStringHash(keyedText_.view());
  key_.text = std::move(key);
  key_.pending.store(false, std::memory_order_release);
  return key_.text;
}

void ShaderSymbol::constructStruct(ScopedText name, ScopedText /*body*/, ScopedText range) {
  clear();
  hasOwnKey_ = true;
  type_ = EShaderSymbolType::structure;
  name_ = name;
  range_ = range;
  buildKey(key_.text, range);
}

void ShaderSymbol::constructTechnique(ScopedText name, ScopedText range) {
  clear();
  hasOwnKey_ = true;
  type_ = EShaderSymbolType::technique;
  name_ = name;
  range_ = range;
  buildKey(key_.text, name);
}

void ShaderSymbol::constructUniform(ScopedText name, ScopedText range) {
  clear();
  hasOwnKey_ = true;
  type_ = EShaderSymbolType::uniform;
  name_ = name;
  range_ = range;
  buildKey(key_.text, range);
}

void ShaderSymbol::parseKeywords(ScopedText body) {
  stateVariables_.clear();
  builtinFunctions_.clear();
  std::size_t pos = 0;
  for (;;) {
    scan::skipNonKeywords(body, pos);
    if (pos >= body.length) return;
    const std::size_t start = pos;
    // Most words are told from ours by their first character.
    const wchar_t first = toLowerAscii(body.text[pos]);
    const bool isMember = first == L's' && scan::isEqual(body, pos, L"state.");
    const bool isOurs = isMember || (first == L's' && scan::isEqual(body, pos, L"sfg_")) ||
                        (first == L'_' && scan::isEqual(body, pos, L"__"));
    if (isMember) pos += std::wstring_view(L"state.").size();
    scan::getKeyword(body, pos);
    if (isOurs) parseKeyword({body.text + start, pos - start}, body, pos);
  }
}

void ShaderSymbol::parseKeyword(const ScopedText& word, const ScopedText& text, std::size_t& pos) {
  if (const UString* variable = findStateVariableByText(word.view())) {
    stateVariables_.insert(*variable);
    return;
  }
  const EBuiltinFunctionId id = findBuiltinFunctionId(word.view());
  if (id == eBuiltinFunctionUnknown) return;
  Array<BuiltinFunction>& calls = id == eBuiltinFunctionShader ? shaderFunctions_ : builtinFunctions_;
  // A call without an argument list keeps its entry, without a range.
  calls.emplace_back().parse(id, text, pos - word.length, pos);
}

const wchar_t* ShaderSymbol::getTypeString() const {
  static constexpr const wchar_t* kTexts[] = {L"Unknown Symbol", L"struct", L"uniform", L"function",
                                              L"technique"};
  return kTexts[static_cast<std::size_t>(type_)];
}

void ShaderSymbolInstance::construct(const ShaderSymbol* symbol, const Array<WString>& renames,
                                     std::size_t firstRename) {
  renames_.clear();
  instanceKey_.clear();
  keywordReplacePattern_.clearReplacePattern();
  symbol_ = symbol;
  if (symbol == nullptr) return;

  const Array<BuiltinFunction>& calls = symbol->getBuiltinFunctions();
  const std::size_t left = renames.size() - std::min(firstRename, renames.size());
  const std::size_t count = std::min(calls.size(), left);
  for (std::size_t i = 0; i < count; ++i) {
    const WString& rename = renames[firstRename + i];
    const ScopedText& call = calls[i].range;
    renames_ += rename;
    if (call.empty()) continue;
    const std::size_t position = static_cast<std::size_t>(call.text - symbol->getRange().text);
    keywordReplacePattern_.addReplacePattern(KeywordPosKey{position, call.length}, rename);
  }
}

const WString& ShaderSymbolInstance::getInstanceKey() const {
  if (renames_.empty()) return getKey();
  if (instanceKey_.empty()) instanceKey_ = getKey() + renames_;
  return instanceKey_;
}

const WString& ShaderSymbolInstance::getKey() const {
  return symbol_ == nullptr ? kNoKey : symbol_->getKey();
}

ScopedText ShaderSymbolInstance::getName() const {
  return symbol_ == nullptr ? ScopedText() : symbol_->getName();
}

ScopedText ShaderSymbolInstance::getText() const {
  return symbol_ == nullptr ? ScopedText() : symbol_->getRange();
}

}  // namespace TolmSDK::Graphics::sfg
