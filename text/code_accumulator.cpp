#include "sfg/code_accumulator.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string_view>

#include "sfg/size_limit.h"
#include "text/hash_index.h"
#include "text/keyword_rules.h"
#include "text/scan.h"
#include "text/symbol_rings.h"
#include "text/text_hash.h"
#include "text/text_store.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {

namespace {

using PositionalRules = KeywordReplacePattern::PositionalReplacements;

/// Ends the symbols of a family in the key of a ring; told from other empty texts by its address.
constexpr const wchar_t* kEndMark = L"";
constexpr std::wstring_view kEndOfFamily(kEndMark, 0);

bool isEndOfFamily(std::wstring_view text) { return text.data() == kEndMark; }

/// Mostly the texts of one symbol, so the address tells them apart or not.
bool areSame(std::wstring_view a, std::wstring_view b) {
  return a.size() == b.size() && (a.data() == b.data() || a == b);
}

void appendUnchanged(WString& out, const ScopedText& text) {
  checkTextLength(out.size() + text.length);
  appendString(out, text);
}

/// The key of a symbol that had none of its own when its identity was noted.
WString keyOfIdentity(std::wstring_view identity) {
  const WString code(identity);
  ShaderSymbol symbol;
  std::size_t pos = 0;
  // The identity of a function is its text; that of any other symbol is its key.
  const bool isFunction = ShaderSymbol::findFirstSymbol(symbol, ScopedText(code), pos) &&
                          symbol.getType() == EShaderSymbolType::function && symbol.getRange().view() == code;
  return isFunction ? symbol.getKey() : code;
}

}  // namespace

/// What was written, and under which names. All views point into `texts` or into the snippets kept.
struct CodeAccumulator::Impl {
  /// A name that a symbol has or was given.
  struct Name {
    std::wstring_view text;
    const WString* whole = nullptr;  // the same, of a name that was given in place of another
    Name* lastUsed = nullptr;        // in place of this one, by an earlier call; itself as a rule
    std::uint64_t givenInCall = 0;   // the last call that gave it to a symbol
    bool isTaken = false;            // an earlier call met or gave it
    bool isFunction = false;         // an earlier call wrote a function under it
  };

  /// A ring that was written: the texts that tell it from others, in `keyTexts`, and in `givenNames` the name
  /// of each of its families, null for one without a name.
  struct Ring {
    std::size_t hash;
    std::size_t firstText;
    std::size_t firstName;
    std::uint32_t numTexts;
    std::uint32_t numFamilies;
  };

  /// What a call makes of a family with a name.
  struct Decision {
    Name* own;
    Name* used;
    bool writesFunction;
  };

  TextStore texts;
  Array<std::shared_ptr<const CodeSnippet>> snippets;  // shared ones, whose texts need no copy
  std::deque<WString> wholeNames;
  std::uint64_t counter = 0;
  std::deque<Name> names;
  HashIndex namesByText;
  Array<Ring> written;  // by earlier calls
  HashIndex writtenByHash;
  Array<std::wstring_view> keyTexts;
  Array<Name*> givenNames;
  bool comparesKeys = false;  // instead of identities, which tell nothing about a key that was set by hand

  // The call in progress, or one that an exception ended.
  std::uint64_t call = 0;
  SymbolRings rings;
  Array<Ring> callRings;
  Array<Decision> decisions;
  Array<bool> isKnown;      // by symbol: an earlier call wrote it
  Array<Name*> ownNames;    // by family; null for one without a name
  bool keepsTexts = false;  // the call's snippet is among those kept
  Array<std::wstring_view> key;
  Array<std::uint32_t> keyRules;
  ProtectedSpans knownCalls;
  std::unique_ptr<Array<WrittenSymbol>> kept;  // what the call writes; null when nobody asks

  void append(WString& out, const CodeSnippetInstance& code, const KeywordReplacePattern& pattern,
              KeywordReplacePattern& renamePattern, std::wstring_view definition);
  const WString& getRename(const WString& name) const;
  const Name* findName(std::wstring_view text) const;

private:
  void beginCall(const CodeSnippetInstance& code);
  void compareKeys();
  void finishCall();
  void findOwnNames();
  void decide(std::size_t ring, const CodeSnippetInstance& code, KeywordReplacePattern& renamePattern);
  std::size_t makeKey(std::size_t ring, const CodeSnippetInstance& code,
                      const KeywordReplacePattern& renamePattern);
  const Ring* findWritten(std::size_t hash) const;
  std::size_t hashOfKey(const std::wstring_view* text, std::size_t numTexts, std::size_t numFamilies) const;
  std::size_t nameAnew(std::size_t ring, std::size_t hash, const CodeSnippetInstance& code);
  void keepKey(const CodeSnippetInstance& code, std::size_t numFamilies);
  void useName(std::size_t family, Name& used, KeywordReplacePattern& renamePattern);
  bool isTaken(const Name& name) const { return name.isTaken || name.givenInCall == call; }
  Name& getName(std::wstring_view text) { return getName(text, hashOfText(text)); }
  Name& getName(std::wstring_view text, std::size_t hash);
  std::size_t numberOfName(std::wstring_view text, std::size_t hash) const;
  Name& generateName(std::wstring_view own);
  void write(WString& out, const CodeSnippetInstance& code, const KeywordReplacePattern& pattern,
             const KeywordReplacePattern& renamePattern, std::wstring_view definition);
  void writeSymbol(WString& out, const ShaderSymbolInstance& symbol, const KeywordRules& keywords,
                   const KeywordReplacePattern& pattern, const KeywordReplacePattern& renamePattern,
                   std::wstring_view definition);
  void keep(const CodeSnippetInstance& code, std::size_t symbol, std::size_t begin, std::size_t end);
  void findKnownCalls(const ShaderSymbolInstance& symbol);
};

/// First all rings are decided, then what is not known is written, with the rules that all of them gave.
void CodeAccumulator::Impl::append(WString& out, const CodeSnippetInstance& code,
                                   const KeywordReplacePattern& pattern, KeywordReplacePattern& renamePattern,
                                   std::wstring_view definition) {
  beginCall(code);
  rings.find(code, renamePattern);
  findOwnNames();
  for (std::size_t ring = 0; ring < rings.countRings(); ++ring) decide(ring, code, renamePattern);
  write(out, code, pattern, renamePattern, definition);
  finishCall();
}

void CodeAccumulator::Impl::beginCall(const CodeSnippetInstance& code) {
  ++call;
  callRings.clear();
  decisions.clear();
  keepsTexts = false;
  isKnown.assign(code.getNumSymbols(), false);
  if (kept) kept->clear();
  for (std::size_t i = 0; i < code.getNumSymbols() && !comparesKeys; ++i)
    if (code.getSymbol(i).hasOwnKey()) compareKeys();
}

/// From now on symbols are compared by their keys, which take time to make.
void CodeAccumulator::Impl::compareKeys() {
  comparesKeys = true;
  writtenByHash = {};
  for (std::size_t i = 0; i < written.size(); ++i) {
    std::wstring_view* text = keyTexts.data() + written[i].firstText;
    // The families come first, then the rules.
    std::size_t families = written[i].numFamilies;
    for (std::size_t at = 0; families != 0;) {
      if (isEndOfFamily(text[at])) {
        --families;
        ++at;
        continue;
      }
      text[at] = texts.add(keyOfIdentity(text[at]) + WString(text[at + 1]));
      text[at + 1] = {};
      at += 2;
    }
    text = keyTexts.data() + written[i].firstText;
    written[i].hash = hashOfKey(text, written[i].numTexts, written[i].numFamilies);
    writtenByHash.add(written[i].hash, i);
  }
}

/// What the call wrote and how it named it is known to later calls only.
void CodeAccumulator::Impl::finishCall() {
  for (const Ring& ring : callRings) {
    // Of rings that cannot be told apart the first one stays known.
    if (callRings.size() > 1) {
      const auto begin = keyTexts.begin() + static_cast<std::ptrdiff_t>(ring.firstText);
      key.assign(begin, begin + static_cast<std::ptrdiff_t>(ring.numTexts));
      if (findWritten(ring.hash) != nullptr) continue;
    }
    written.push_back(ring);
    writtenByHash.add(ring.hash, written.size() - 1);
  }
  for (const Decision& decision : decisions) {
    decision.own->isTaken = true;
    decision.own->lastUsed = decision.used;
    decision.used->isTaken = true;
    if (decision.writesFunction) decision.used->isFunction = true;
  }
}

void CodeAccumulator::Impl::findOwnNames() {
  ownNames.clear();
  for (std::size_t i = 0; i < rings.countFamilies(); ++i) {
    const SymbolFamily family = rings.family(i);
    ownNames.push_back(family.name.empty() ? nullptr : &getName(family.name, family.nameHash));
  }
}

/// Skips a ring that an earlier call wrote, or finds names for it. Hands back the rules that lead to the
/// names used.
void CodeAccumulator::Impl::decide(std::size_t ring, const CodeSnippetInstance& code,
                                   KeywordReplacePattern& renamePattern) {
  const std::size_t hash = makeKey(ring, code, renamePattern);
  const Ring* same = findWritten(hash);
  const std::size_t firstName = same != nullptr ? same->firstName : nameAnew(ring, hash, code);
  for (std::size_t i = 0; i < rings.ring(ring).size(); ++i) {
    const std::size_t number = rings.ring(ring)[i];
    bool hasFunction = false;
    for (const std::uint32_t symbol : rings.family(number).symbols) {
      isKnown[symbol] = same != nullptr;
      hasFunction = hasFunction || code.getSymbol(symbol).getType() == EShaderSymbolType::function;
    }
    Name* used = givenNames[firstName + i];
    // `float x;` and `floatx;` have one key, and the second has no name.
    if (used == nullptr || ownNames[number] == nullptr) continue;
    decisions.push_back({ownNames[number], used, same == nullptr && hasFunction});
    useName(number, *used, renamePattern);
  }
}

/// Puts together what tells the ring from others: its symbols, and the renames in force of other names that
/// its texts hold.
std::size_t CodeAccumulator::Impl::makeKey(std::size_t ring, const CodeSnippetInstance& code,
                                           const KeywordReplacePattern& renamePattern) {
  key.clear();
  std::uint64_t hash = 0;
  for (const std::uint32_t family : rings.ring(ring)) {
    for (const std::uint32_t number : rings.family(family).symbols) {
      const ShaderSymbolInstance& symbol = code.getSymbol(number);
      key.push_back(comparesKeys ? std::wstring_view(symbol.getInstanceKey()) : symbol.getIdentity());
      key.push_back(comparesKeys ? std::wstring_view() : symbol.getRenames());
      hash = mixHash(hash, comparesKeys ? hashOfText(key[key.size() - 2]) : symbol.getIdentityHash());
      if (!key.back().empty()) hash = mixHash(hash, hashOfText(key.back()));
    }
    key.push_back(kEndOfFamily);
  }
  rings.collectRules(ring, keyRules);
  for (const std::uint32_t rule : keyRules) {
    for (const Array<WString>* side : {&renamePattern.getKeywords(), &renamePattern.getReplacements()}) {
      key.push_back((*side)[rule]);
      hash = mixHash(hash, hashOfText(key.back()));
    }
  }
  return static_cast<std::size_t>(hash);
}

/// The same hash of texts that were put together before.
std::size_t CodeAccumulator::Impl::hashOfKey(const std::wstring_view* text, std::size_t numTexts,
                                             std::size_t numFamilies) const {
  std::uint64_t hash = 0;
  const std::wstring_view* const end = text + numTexts;
  for (; numFamilies != 0; --numFamilies, ++text) {
    for (; !isEndOfFamily(*text); text += 2) {
      hash = mixHash(hash, hashOfText(text[0]));
      if (!text[1].empty()) hash = mixHash(hash, hashOfText(text[1]));
    }
  }
  for (; text != end; ++text) hash = mixHash(hash, hashOfText(*text));
  return static_cast<std::size_t>(hash);
}

/// The ring of that key which an earlier call wrote; null without one.
const CodeAccumulator::Impl::Ring* CodeAccumulator::Impl::findWritten(std::size_t hash) const {
  // Different rings of one hash are too rare to be met by a test.
  const std::size_t known = writtenByHash.find(hash, [&](std::size_t i) {
    return written[i].hash == hash && written[i].numTexts == key.size() &&  // GCOVR_EXCL_BR_LINE
           std::equal(key.begin(), key.end(),                               // GCOVR_EXCL_BR_LINE
                      keyTexts.begin() + static_cast<std::ptrdiff_t>(written[i].firstText), areSame);
  });
  return known != kNotFound ? &written[known] : nullptr;
}

/// Gives every family of the ring its own name, or a new one when that is taken. Answers the first one's
/// place.
std::size_t CodeAccumulator::Impl::nameAnew(std::size_t ring, std::size_t hash,
                                            const CodeSnippetInstance& code) {
  const std::size_t firstName = givenNames.size();
  const auto numFamilies = static_cast<std::uint32_t>(rings.ring(ring).size());
  callRings.push_back(
      {hash, keyTexts.size(), firstName, static_cast<std::uint32_t>(key.size()), numFamilies});
  keepKey(code, numFamilies);
  for (const std::uint32_t number : rings.ring(ring)) {
    Name* name = ownNames[number];
    if (name != nullptr) {
      if (isTaken(*name)) name = &generateName(name->text);
      name->givenInCall = call;
    }
    givenNames.push_back(name);
  }
  return firstName;
}

/// The identities of symbols of a shared snippet are kept with the snippet, all other texts are copied.
void CodeAccumulator::Impl::keepKey(const CodeSnippetInstance& code, std::size_t numFamilies) {
  if (!keepsTexts && !comparesKeys && code.getSharedSnippet() != nullptr) {
    snippets.push_back(code.getSharedSnippet());
    keepsTexts = true;
  }
  std::size_t endedFamilies = 0;
  bool isIdentity = true;
  for (const std::wstring_view text : key) {
    if (endedFamilies == numFamilies) isIdentity = false;
    const bool stays = isEndOfFamily(text) || (isIdentity && keepsTexts);
    keyTexts.push_back(stays ? text : texts.add(text));
    if (isEndOfFamily(text)) ++endedFamilies;
    isIdentity = isEndOfFamily(text) || !isIdentity;
  }
}

/// Hands back the rule that leads from a family's own name to another one.
void CodeAccumulator::Impl::useName(std::size_t family, Name& used, KeywordReplacePattern& renamePattern) {
  const std::wstring_view own = rings.family(family).name;
  if (own == used.text) return;
  if (used.whole == nullptr) used.whole = &wholeNames.emplace_back(used.text);
  const bool isThere = rings.anyRuleOf(
      family, [&](std::uint32_t rule) { return renamePattern.getReplacements()[rule] == *used.whole; });
  if (isThere) return;
  rings.addRule(family);
  renamePattern.addReplacePattern(WString(own), *used.whole);
}

// Names.

std::size_t CodeAccumulator::Impl::numberOfName(std::wstring_view text, std::size_t hash) const {
  return namesByText.find(hash, [&](std::size_t i) { return names[i].text == text; });
}

/// Null for a name that was never used.
const CodeAccumulator::Impl::Name* CodeAccumulator::Impl::findName(std::wstring_view text) const {
  const std::size_t known = numberOfName(text, hashOfText(text));
  return known != kNotFound ? &names[known] : nullptr;
}

CodeAccumulator::Impl::Name& CodeAccumulator::Impl::getName(std::wstring_view text, std::size_t hash) {
  const std::size_t known = numberOfName(text, hash);
  if (known != kNotFound) return names[known];
  Name& name = names.emplace_back(Name{.text = texts.add(text)});
  namesByText.add(hash, names.size() - 1);
  return name;
}

/// Numbers are appended to what was refused before: `foo3` is followed by `foo34`.
CodeAccumulator::Impl::Name& CodeAccumulator::Impl::generateName(std::wstring_view own) {
  WString candidate(own);
  for (;;) {
    appendDecimal(candidate, static_cast<std::size_t>(++counter));
    Name& name = getName(candidate);
    if (!isTaken(name)) return name;
  }
}

// Writing.

void CodeAccumulator::Impl::write(WString& out, const CodeSnippetInstance& code,
                                  const KeywordReplacePattern& pattern,
                                  const KeywordReplacePattern& renamePattern, std::wstring_view definition) {
  KeywordRules keywords;
  keywords.add(pattern);
  keywords.add(renamePattern);
  for (std::size_t i = 0; i < code.getNumSymbols(); ++i) {
    if (isKnown[i]) continue;
    const std::size_t begin = out.size();
    writeSymbol(out, code.getSymbol(i), keywords, pattern, renamePattern, definition);
    if (kept) keep(code, i, begin, out.size());
  }
}

void CodeAccumulator::Impl::writeSymbol(WString& out, const ShaderSymbolInstance& symbol,
                                        const KeywordRules& keywords, const KeywordReplacePattern& pattern,
                                        const KeywordReplacePattern& renamePattern,
                                        std::wstring_view definition) {
  if (!symbol.hasInstanceKey()) return appendUnchanged(out, symbol.getText());
  knownCalls.clear();
  if (!keywords.empty() && !definition.empty() && symbol.getType() == EShaderSymbolType::function &&
      symbol.getName().view() == definition)
    findKnownCalls(symbol);
  const bool hasPositional =
      !pattern.getPositionalReplacements().empty() || !renamePattern.getPositionalReplacements().empty();
  const PositionalRules& own = symbol.getKeywordReplacePattern().getPositionalReplacements();
  if (keywords.empty() && own.empty() && !hasPositional) return appendUnchanged(out, symbol.getText());
  if (!hasPositional) return appendReplaced(out, symbol.getText(), keywords, own, knownCalls);
  // At one span the rule of `renamePattern` wins over the symbol's, and that over the one of `pattern`.
  PositionalRules positional = renamePattern.getPositionalReplacements();
  positional.insert(own.begin(), own.end());
  positional.insert(pattern.getPositionalReplacements().begin(), pattern.getPositionalReplacements().end());
  appendReplaced(out, symbol.getText(), keywords, positional, knownCalls);
}

/// Places in the code are counted from its first symbol on.
void CodeAccumulator::Impl::keep(const CodeSnippetInstance& code, std::size_t symbol, std::size_t begin,
                                 std::size_t end) {
  const ScopedText text = code.getSymbol(symbol).getText();
  const auto codeBegin = static_cast<std::size_t>(text.text - code.getSymbol(0).getText().text);
  kept->push_back({codeBegin, codeBegin + text.length, begin, end});
}

/// The names of functions that earlier calls wrote, where a definition calls them behind its parameter list.
void CodeAccumulator::Impl::findKnownCalls(const ShaderSymbolInstance& symbol) {
  const ScopedText text = symbol.getText();
  const ScopedText own = symbol.getName();
  // A name that was set by hand may stand elsewhere.
  const bool isInside =
      !std::less<>()(own.text, text.text) && !std::less<>()(text.text + text.length, own.text + own.length);
  if (!isInside) return;
  std::size_t pos = static_cast<std::size_t>(own.text - text.text) + own.length;
  scan::getBracketBody(text, pos, L'(', L')');
  for (;;) {
    scan::skipNonKeywords(text, pos);
    if (pos >= text.length) return;
    const std::size_t start = pos;
    const ScopedText word = scan::getKeyword(text, pos);
    std::size_t behind = pos;
    scan::skipBlanksAndComments(text, behind);
    if (behind >= text.length || text.text[behind] != L'(') continue;
    const Name* name = findName(word.view());
    if (name != nullptr && name->isFunction) knownCalls.add({start, word.length});
  }
}

CodeAccumulator::CodeAccumulator() : impl_(std::make_unique<Impl>()) {}
CodeAccumulator::~CodeAccumulator() = default;

void CodeAccumulator::append(WString& out, const CodeSnippetInstance& code,
                             const KeywordReplacePattern& pattern, KeywordReplacePattern& renamePattern) {
  impl_->append(out, code, pattern, renamePattern, {});
}

const WString& CodeAccumulator::appendDefinition(WString& out, const CodeSnippetInstance& code,
                                                 const KeywordReplacePattern& pattern,
                                                 KeywordReplacePattern& renamePattern,
                                                 const WString& function) {
  impl_->append(out, code, pattern, renamePattern, function);
  return impl_->getRename(function);
}

/// Mostly it is asked for the one name that the last call decided.
const WString& CodeAccumulator::Impl::getRename(const WString& name) const {
  const bool isLast = decisions.size() == 1 && decisions.front().own->text == name;
  const Name* known = isLast ? decisions.front().own : findName(name);
  const bool isRenamed = known != nullptr && known->lastUsed != nullptr && known->lastUsed != known;
  return isRenamed ? *known->lastUsed->whole : name;
}

const WString& CodeAccumulator::getRename(const WString& name) const { return impl_->getRename(name); }

void CodeAccumulator::keepWritten() { impl_->kept = std::make_unique<Array<WrittenSymbol>>(); }

const Array<WrittenSymbol>& CodeAccumulator::getWritten() const noexcept {
  static const Array<WrittenSymbol> none;
  return impl_->kept ? *impl_->kept : none;
}

void CodeAccumulator::clear() { impl_ = std::make_unique<Impl>(); }

}  // namespace TolmSDK::Graphics::sfg
