#pragma once

// Keyword rules ready to be applied to any number of texts.

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

#include "sfg/keyword_replace.h"
#include "sfg/scoped_text.h"
#include "sfg/size_limit.h"
#include "text/keyword_automaton.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Spans of a text that no keyword rule may touch, in order and apart from each other.
class ProtectedSpans {
public:
  void add(KeywordPosKey span) { spans_.push_back(span); }
  void clear() noexcept { spans_.clear(); }
  bool empty() const noexcept { return spans_.empty(); }

  /// Whether a span shares a character with the text from `position` on.
  bool touch(std::size_t position, std::size_t length) const {
    const auto behind = std::upper_bound(
        spans_.begin(), spans_.end(), position,
        [](std::size_t at, const KeywordPosKey& span) { return at < span.position + span.length; });
    return behind != spans_.end() && behind->position < position + length;
  }

private:
  Array<KeywordPosKey> spans_;
};

/// Points to keywords and replacements, which stay alive and as they are.
class KeywordRules {
public:
  void add(const KeywordReplacePattern& pattern) { add(pattern.getKeywords(), pattern.getReplacements()); }
  /// As many of one as of the other.
  void add(const Array<WString>& keywords, const Array<WString>& replacements);
  bool empty() const noexcept { return keywords_.empty(); }
  std::size_t count() const noexcept { return keywords_.size(); }
  const WString& keyword(std::size_t rule) const { return *keywords_[rule]; }
  const WString& replacement(std::size_t rule) const { return *replacements_[rule]; }

private:
  friend class KeywordMatches;

  /// False when every keyword is longer than the text and what may be read behind it.
  bool mayOccurIn(const ScopedText& text) const;
  /// The automaton when it pays for a text of that length, else null.
  const KeywordAutomaton* automatonFor(std::size_t textLength) const;

  Array<const WString*> keywords_;
  Array<const WString*> replacements_;
  std::size_t totalLength_ = 0;
  std::size_t longest_ = 0;
  std::size_t shortest_ = kNotFound;
  mutable std::size_t searched_ = 0;  // characters that were searched for keywords one by one
  mutable std::unique_ptr<const KeywordAutomaton> automaton_;
};

/// The places of one text at which keyword rules apply.
class KeywordMatches {
public:
  struct Match {
    std::size_t position = 0;
    std::size_t rule = 0;
    std::size_t length = 0;
  };

  KeywordMatches(const KeywordRules& rules, const ScopedText& text, const ProtectedSpans& spans);
  KeywordMatches(const KeywordMatches&) = delete;
  KeywordMatches& operator=(const KeywordMatches&) = delete;

  /// The match to apply next at or behind `cursor`, which never goes back: the first in the text, of those at
  /// one place the longest, of equal ones the last. Null when none is left.
  const Match* findNext(std::size_t cursor);

private:
  std::size_t findOccurrence(std::size_t rule, std::size_t from) const;
  void collect(const KeywordAutomaton& automaton);
  const Match* findNextOfFew(std::size_t cursor);

  const KeywordRules& rules_;
  const ScopedText& text_;
  const ProtectedSpans& spans_;
  const KeywordAutomaton* automaton_ = nullptr;
  std::size_t limit_ = 0;
  // Without an automaton: the next match of each rule that still has one. Few rules live on the stack.
  std::array<Match, KeywordAutomaton::kFew> few_;
  Array<Match> many_;
  Match* next_ = few_.data();
  std::size_t count_ = 0;
  // With one: the longest match at each place, the last place first.
  Array<Match> matches_;

  friend class KeywordRules;
};

/// The text that a positional rule holds or points to.
inline const WString& positionalText(const WString& text) { return text; }
inline const WString& positionalText(const WString* text) { return *text; }

struct NoPlaces {
  void operator()(std::size_t /*position*/, const WString& /*replacement*/) const noexcept {}
};

/// Appends `text` to `out` with keyword rules and positional rules applied: see KeywordReplacer. `Positional`
/// is an ordered map from KeywordPosKey. `onKeyword` is told where in `out` the replacement of a keyword rule
/// begins.
template <class Positional, class OnKeyword = NoPlaces>
void appendReplaced(WString& out, const ScopedText& text, const KeywordRules& rules,
                    const Positional& positionalRules, const ProtectedSpans& spans,
                    OnKeyword&& onKeyword = {}) {
  const auto append = [&out](std::wstring_view piece) {
    checkTextLength(out.size() + piece.size());
    out.append(piece);
  };
  if (text.empty()) return;
  if (out.empty()) out.reserve(text.length);
  KeywordMatches keywords(rules, text, spans);
  auto positional = positionalRules.begin();
  std::size_t cursor = 0;
  for (;;) {
    // Spans that begin in text already passed are dropped.
    while (positional != positionalRules.end() && positional->first.position < cursor) ++positional;
    const KeywordMatches::Match* keyword = keywords.findNext(cursor);

    // The first of both kinds; at one place the longer; of equal spans the keyword.
    KeywordPosKey span;
    const WString* replacement = nullptr;
    bool isKeyword = keyword != nullptr;
    if (isKeyword) {
      span = {keyword->position, keyword->length};
      replacement = &rules.replacement(keyword->rule);
    }
    if (positional != positionalRules.end() && (keyword == nullptr || positional->first < span)) {
      span = positional->first;
      replacement = &positionalText(positional->second);
      isKeyword = false;
      ++positional;
    }
    if (replacement == nullptr) break;

    append(text.substr(cursor, span.position - cursor).view());
    if (isKeyword) onKeyword(out.size(), *replacement);
    append(*replacement);
    cursor = span.position + std::min(span.length, kNotFound - span.position);
  }
  append(text.substr(cursor, text.length).view());
}

}  // namespace TolmSDK::Graphics::sfg
