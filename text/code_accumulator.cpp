#include "sfg/code_accumulator.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string_view>
#include <utility>

#include "sfg/size_limit.h"
#include "text/hash_index.h"
#include "text/text_store.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {

namespace {

using Texts = std::pair<std::wstring_view, std::wstring_view>;

std::size_t combineHash(std::size_t hash, std::wstring_view text) {
  return hash * 1099511628211u + std::hash<std::wstring_view>()(text);
}

bool holdsRule(const KeywordReplacePattern& pattern, std::wstring_view keyword,
               std::wstring_view replacement) {
  for (std::size_t i = 0; i < pattern.getKeywords().size(); ++i)
    if (pattern.getKeywords()[i] == keyword && pattern.getReplacements()[i] == replacement) return true;
  return false;
}

}  // namespace

/// What was written, and under which names. All views point into `texts`.
struct CodeAccumulator::Impl {
  /// A symbol as it was written. A null name stands for its own.
  struct Written {
    std::size_t hash;  // of all that follows
    std::wstring_view identity;
    std::wstring_view callRenames;
    Array<Texts> renames;
    const WString* name;
  };

  /// What a name is used as. A null text stands for the name itself.
  struct Name {
    std::wstring_view text;
    bool isRecorded = false;  // by an earlier call
    const WString* recorded = nullptr;
    std::uint64_t call = 0;  // the last one that used it
    const WString* inCall = nullptr;
  };

  TextStore texts;
  std::deque<WString> generatedNames;
  std::uint64_t counter = 0;
  std::deque<Name> names;
  HashIndex namesByText;
  std::deque<Written> written;
  HashIndex writtenByHash;

  // The call in progress, or one that an exception ended.
  std::uint64_t call = 0;
  Array<Name*> callNames;
  Array<Written> callWritten;

  // The symbol in progress.
  Array<Texts> renamesInForce;  // views into the caller's pattern
  std::size_t hash = 0;
  WString ownName;
  KeywordReplacer replacer;

  void beginCall();
  void finishCall();
  void append(WString& out, const ShaderSymbolInstance& symbol, const KeywordReplacePattern& pattern,
              KeywordReplacePattern& renamePattern);
  const Name* findName(std::wstring_view text) const;

private:
  void identify(const ShaderSymbolInstance& symbol, const KeywordReplacePattern& renamePattern);
  const Written* findWritten(std::size_t hash, std::wstring_view identity, std::wstring_view callRenames,
                             const Array<Texts>& renames) const;
  std::size_t numberOfName(std::wstring_view text, std::size_t hashOfText) const;
  Name& getName(std::wstring_view text);
  bool useInCall(Name& name);
  void reuseName(const WString* used, KeywordReplacePattern& renamePattern);
  const WString* chooseName(KeywordReplacePattern& renamePattern);
  const WString* generateName();
  Written& rememberWritten(const ShaderSymbolInstance& symbol);
};

void CodeAccumulator::Impl::beginCall() {
  ++call;
  callNames.clear();
  callWritten.clear();
}

/// What the call wrote is known to later calls only.
void CodeAccumulator::Impl::finishCall() {
  for (Written& symbol : callWritten) {
    if (findWritten(symbol.hash, symbol.identity, symbol.callRenames, symbol.renames) != nullptr) continue;
    written.push_back(std::move(symbol));
    writtenByHash.add(written.back().hash, written.size() - 1);
  }
  for (Name* name : callNames) {
    name->isRecorded = true;
    name->recorded = name->inCall;
  }
}

void CodeAccumulator::Impl::append(WString& out, const ShaderSymbolInstance& symbol,
                                   const KeywordReplacePattern& pattern,
                                   KeywordReplacePattern& renamePattern) {
  if (!symbol.hasInstanceKey()) {
    checkTextLength(out.size() + symbol.getText().length);
    appendString(out, symbol.getText());
    return;
  }

  identify(symbol, renamePattern);
  if (const Written* same = findWritten(hash, symbol.getIdentity(), symbol.getRenames(), renamesInForce))
    return reuseName(same->name, renamePattern);

  // Remembered before a name is chosen: a new rule may move the texts that the renames in force view.
  Written& record = rememberWritten(symbol);
  record.name = chooseName(renamePattern);
  replacer.clearReplacePattern();
  replacer.addReplacePattern(pattern);
  replacer.addReplacePattern(symbol.getKeywordReplacePattern());
  replacer.addReplacePattern(renamePattern);
  replacer.appendReplaced(out, symbol.getText());
}

/// Finds the renames that tell this use of a symbol from others: those of other names that occur in its text.
void CodeAccumulator::Impl::identify(const ShaderSymbolInstance& symbol,
                                     const KeywordReplacePattern& renamePattern) {
  const ScopedText text = symbol.getText();
  symbol.getName().toString(ownName);
  hash = combineHash(combineHash(0, symbol.getIdentity()), symbol.getRenames());
  renamesInForce.clear();
  for (std::size_t i = 0; i < renamePattern.getKeywords().size(); ++i) {
    const WString& keyword = renamePattern.getKeywords()[i];
    const WString& replacement = renamePattern.getReplacements()[i];
    if (keyword.empty() || keyword == ownName || text.find(keyword, 0) == kNotFound) continue;
    renamesInForce.emplace_back(keyword, replacement);
    hash = combineHash(combineHash(hash, keyword), replacement);
  }
}

const CodeAccumulator::Impl::Written* CodeAccumulator::Impl::findWritten(std::size_t hashOfAll,
                                                                         std::wstring_view identity,
                                                                         std::wstring_view callRenames,
                                                                         const Array<Texts>& renames) const {
  // Different symbols of one hash are too rare to be met by a test.
  const std::size_t known = writtenByHash.find(hashOfAll, [&](std::size_t i) {
    const Written& symbol = written[i];
    return symbol.identity == identity &&        // GCOVR_EXCL_BR_LINE
           symbol.callRenames == callRenames &&  // GCOVR_EXCL_BR_LINE
           symbol.renames == renames;            // GCOVR_EXCL_BR_LINE
  });
  return known != kNotFound ? &written[known] : nullptr;
}

std::size_t CodeAccumulator::Impl::numberOfName(std::wstring_view text, std::size_t hashOfText) const {
  return namesByText.find(hashOfText, [&](std::size_t i) { return names[i].text == text; });
}

/// Null for a name that was never used.
const CodeAccumulator::Impl::Name* CodeAccumulator::Impl::findName(std::wstring_view text) const {
  const std::size_t known = numberOfName(text, std::hash<std::wstring_view>()(text));
  return known != kNotFound ? &names[known] : nullptr;
}

CodeAccumulator::Impl::Name& CodeAccumulator::Impl::getName(std::wstring_view text) {
  const std::size_t hashOfText = std::hash<std::wstring_view>()(text);
  const std::size_t known = numberOfName(text, hashOfText);
  if (known != kNotFound) return names[known];
  Name& name = names.emplace_back(Name{.text = texts.add(text)});
  namesByText.add(hashOfText, names.size() - 1);
  return name;
}

/// Whether this is the name's first use in the call.
bool CodeAccumulator::Impl::useInCall(Name& name) {
  if (name.call == call) return false;
  name.call = call;
  callNames.push_back(&name);
  return true;
}

/// The symbol is not written again: this call refers to it under the name it was written under.
void CodeAccumulator::Impl::reuseName(const WString* used, KeywordReplacePattern& renamePattern) {
  Name& name = getName(ownName);
  if (useInCall(name)) name.inCall = used;
  if (used != nullptr && !holdsRule(renamePattern, ownName, *used))
    renamePattern.addReplacePattern(ownName, *used);
}

const WString* CodeAccumulator::Impl::chooseName(KeywordReplacePattern& renamePattern) {
  Name& name = getName(ownName);
  if (useInCall(name)) {
    name.inCall = name.isRecorded ? generateName() : nullptr;
    if (name.inCall != nullptr) renamePattern.addReplacePattern(ownName, *name.inCall);
  }
  return name.inCall;
}

/// Numbers are appended to what was refused before: `foo3` is followed by `foo34`.
const WString* CodeAccumulator::Impl::generateName() {
  WString candidate = ownName;
  for (;;) {
    appendDecimal(candidate, static_cast<std::size_t>(++counter));
    const Name* known = findName(candidate);
    if (known == nullptr || !known->isRecorded) return &generatedNames.emplace_back(std::move(candidate));
  }
}

CodeAccumulator::Impl::Written& CodeAccumulator::Impl::rememberWritten(const ShaderSymbolInstance& symbol) {
  Written& entry = callWritten.emplace_back(
      Written{hash, texts.add(symbol.getIdentity()), texts.add(symbol.getRenames()), {}, nullptr});
  for (const auto& [keyword, replacement] : renamesInForce)
    entry.renames.emplace_back(texts.add(keyword), texts.add(replacement));
  return entry;
}

CodeAccumulator::CodeAccumulator() : impl_(std::make_unique<Impl>()) {}
CodeAccumulator::~CodeAccumulator() = default;

void CodeAccumulator::append(WString& out, const CodeSnippetInstance& code,
                             const KeywordReplacePattern& pattern, KeywordReplacePattern& renamePattern) {
  impl_->beginCall();
  for (std::size_t i = 0; i < code.getNumSymbols(); ++i)
    impl_->append(out, code.getSymbol(i), pattern, renamePattern);
  impl_->finishCall();
}

const WString& CodeAccumulator::getRename(const WString& name) const {
  const Impl::Name* known = impl_->findName(name);
  return known != nullptr && known->recorded != nullptr ? *known->recorded : name;
}

void CodeAccumulator::clear() { impl_ = std::make_unique<Impl>(); }

}  // namespace TolmSDK::Graphics::sfg
