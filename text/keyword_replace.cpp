#include "sfg/keyword_replace.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>
#include <utility>

#include "sfg/size_limit.h"
#include "text/scan.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// A keyword rule with the place of the keyword's first occurrence at or behind the cursor of its last
/// look-up.
struct KeywordCursor {
  const WString* keyword;
  const WString* replacement;
  std::size_t next;
};

/// The keyword rules that still occur in the text being copied, in order. Few rules live on the stack.
class KeywordCursors {
public:
  KeywordCursors(const Array<const WString*>& keywords, const Array<const WString*>& replacements,
                 const ScopedText& text)
      : text_(text.text), limit_(scan::lengthBeforeNul(text)) {
    if (keywords.size() > few_.size()) {
      many_.resize(keywords.size());
      cursors_ = many_.data();
    }
    for (std::size_t i = 0; i < keywords.size(); ++i) {
      if (!scan::isSearchable(*keywords[i])) continue;
      const std::size_t next = scan::findOccurrence(text_, limit_, *keywords[i], 0);
      if (next != kNotFound) cursors_[count_++] = {keywords[i], replacements[i], next};
    }
  }
  KeywordCursors(const KeywordCursors&) = delete;
  KeywordCursors& operator=(const KeywordCursors&) = delete;

  /// The rule to apply next at or behind `cursor`: the first in the text, of those at one place the longest,
  /// of equal ones the last. Null when none is left.
  const KeywordCursor* findNext(std::size_t cursor) {
    const KeywordCursor* best = nullptr;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count_; ++i) {
      KeywordCursor rule = cursors_[i];
      if (rule.next < cursor) rule.next = scan::findOccurrence(text_, limit_, *rule.keyword, cursor);
      if (rule.next == kNotFound) continue;
      cursors_[kept] = rule;
      if (best == nullptr || !comesBefore(*best, rule)) best = &cursors_[kept];
      ++kept;
    }
    count_ = kept;
    return best;
  }

private:
  static bool comesBefore(const KeywordCursor& a, const KeywordCursor& b) {
    return a.next != b.next ? a.next < b.next : a.keyword->size() > b.keyword->size();
  }

  const wchar_t* text_;
  std::size_t limit_;
  std::array<KeywordCursor, 16> few_;
  Array<KeywordCursor> many_;
  KeywordCursor* cursors_ = few_.data();
  std::size_t count_ = 0;
};

/// Room for `count` more. Grown at least by half: many small additions stay linear.
void reserveFor(Array<WString>& texts, std::size_t count) {
  const std::size_t needed = texts.size() + count;
  if (needed > texts.capacity()) texts.reserve(std::max(needed, texts.size() + texts.size() / 2));
}

/// Appends to a text that stays below the size limit.
void appendChecked(WString& out, std::wstring_view text) {
  checkTextLength(out.size() + text.size());
  out.append(text);
}

}  // namespace

void KeywordReplacePattern::addReplacePattern(const WString& keyword, const WString& replacement) {
  WString own(replacement);  // it may be one of the keywords, which move
  keywords_.push_back(keyword);
  replacements_.push_back(std::move(own));
}

void KeywordReplacePattern::addReplacePattern(const Array<WString>& keywords,
                                              const Array<WString>& replacements) {
  if (keywords.size() != replacements.size())
    throw Exception(L"sfgError : keywords and replacements should be the same in number!");
  // Neither array moves once the first pair is added: they may be those that pairs are taken from.
  const std::size_t count = keywords.size();
  reserveFor(keywords_, count);
  reserveFor(replacements_, count);
  for (std::size_t i = 0; i < count; ++i) {
    keywords_.push_back(keywords[i]);
    replacements_.push_back(replacements[i]);
  }
}

void KeywordReplacePattern::addReplacePattern(const KeywordPosKey& key, const WString& replacement) {
  positionalReplacements_[key] = replacement;
}

void KeywordReplacePattern::overrideReplacePattern(const WString& keyword, const WString& replacement) {
  const WString sought(keyword);  // it may be one of the replacements, which change
  bool isKnown = false;
  for (std::size_t i = 0; i < keywords_.size(); ++i) {
    if (keywords_[i] != sought) continue;
    replacements_[i] = replacement;
    isKnown = true;
  }
  if (!isKnown) addReplacePattern(keyword, replacement);
}

void KeywordReplacePattern::clearReplacePattern() {
  keywords_.clear();
  replacements_.clear();
  positionalReplacements_.clear();
}

void KeywordReplacer::addReplacePattern(const KeywordReplacePattern& pattern) {
  for (const WString& keyword : pattern.getKeywords()) keywords_.push_back(&keyword);
  for (const WString& replacement : pattern.getReplacements()) replacements_.push_back(&replacement);
  for (const auto& [key, replacement] : pattern.getPositionalReplacements())
    positionalReplacements_[key] = &replacement;
}

void KeywordReplacer::clearReplacePattern() {
  keywords_.clear();
  replacements_.clear();
  positionalReplacements_.clear();
}

void KeywordReplacer::appendAndReplace(WString& out, const ScopedText& text) const {
  if (text.empty()) return;
  if (empty()) return appendChecked(out, text.view());
  // Built apart from `out`, which the text may view. The buffer is a new one then too, so nothing is gained
  // by reuse.
  WString result;
  appendReplaced(result, text);
  out.swap(result);
}

void KeywordReplacer::appendReplaced(WString& out, const ScopedText& text) const {
  if (text.empty()) return;
  if (out.empty()) out.reserve(text.length);
  KeywordCursors keywords(keywords_, replacements_, text);
  auto positional = positionalReplacements_.begin();
  std::size_t cursor = 0;
  for (;;) {
    // Spans that begin in text already passed are dropped.
    while (positional != positionalReplacements_.end() && positional->first.position < cursor) ++positional;
    const KeywordCursor* keyword = keywords.findNext(cursor);

    // The first of both kinds; at one place the longer; of equal spans the keyword.
    KeywordPosKey span;
    const WString* replacement = nullptr;
    if (keyword != nullptr) {
      span = {keyword->next, keyword->keyword->size()};
      replacement = keyword->replacement;
    }
    if (positional != positionalReplacements_.end() && (keyword == nullptr || positional->first < span)) {
      span = positional->first;
      replacement = positional->second;
      ++positional;
    }
    if (replacement == nullptr) break;

    appendChecked(out, text.substr(cursor, span.position - cursor).view());
    appendChecked(out, *replacement);
    cursor = span.position + std::min(span.length, kNotFound - span.position);
  }
  appendChecked(out, text.substr(cursor, text.length).view());
}

}  // namespace TolmSDK::Graphics::sfg
