#pragma once

// Textual replacement while code is copied: by keyword (any occurrence, also inside longer identifiers) and
// by position (an exact span).

#include <cstddef>
#include <memory>
#include <unordered_map>

#include "sfg/export.h"
#include "sfg/scoped_text.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class KeywordRules;

/// A span of the text being copied. Ordered by position; at one position the longer span comes first.
struct KeywordPosKey {
  std::size_t position = 0;
  std::size_t length = 0;  ///< 0 inserts at `position`

  friend bool operator==(const KeywordPosKey&, const KeywordPosKey&) = default;
  friend bool operator<(const KeywordPosKey& a, const KeywordPosKey& b) noexcept {
    return a.position != b.position ? a.position < b.position : a.length > b.length;
  }
};

/// Rules; owns its strings, which may also be handed back to it. Keywords may repeat, and their order
/// matters: at one place and length the later rule wins.
class SFG_API KeywordReplacePattern {
public:
  using PositionalReplacements = Map<KeywordPosKey, WString, std::less<KeywordPosKey>>;

  /// Appends a keyword rule; never merges with an equal keyword.
  void addReplacePattern(const WString& keyword, const WString& replacement);
  /// Appends all pairs, also those of this pattern itself. Arrays of different lengths throw "sfgError :
  /// keywords and replacements should be the same in number!" and change nothing.
  void addReplacePattern(const Array<WString>& keywords, const Array<WString>& replacements);
  /// Sets the positional rule of a span.
  void addReplacePattern(const KeywordPosKey& key, const WString& replacement);
  /// Sets the replacement of every entry whose keyword equals `keyword`; appends the pair when there is none.
  /// Many calls take time in proportion to the rules and to what they set.
  void overrideReplacePattern(const WString& keyword, const WString& replacement);
  void clearReplacePattern();

  bool empty() const noexcept { return keywords_.empty() && positionalReplacements_.empty(); }
  const Array<WString>& getKeywords() const noexcept { return keywords_; }
  /// Parallel to getKeywords().
  const Array<WString>& getReplacements() const noexcept { return replacements_; }
  const PositionalReplacements& getPositionalReplacements() const noexcept { return positionalReplacements_; }

private:
  /// Places of keywords by their hashes; made when it pays, and not copied.
  struct Index {
    Index() = default;
    Index(const Index&) noexcept {}
    Index(Index&&) noexcept = default;
    Index& operator=(const Index&) noexcept {
      places.reset();
      return *this;
    }
    Index& operator=(Index&&) noexcept = default;
    ~Index() = default;
    std::unique_ptr<std::unordered_multimap<std::size_t, std::size_t>> places;
  };

  void indexKeywords();

  Array<WString> keywords_;
  Array<WString> replacements_;
  PositionalReplacements positionalReplacements_;
  Index byHash_;
};

/// Where the replacement of a keyword rule stands in a copy, and the pattern's own text of it.
struct PlacedReplacement {
  std::size_t position = 0;
  const WString* replacement = nullptr;
};

/// Applies the rules of any number of patterns. Holds pointers into the patterns added: each stays alive and
/// keeps its rules as they are until the replacer is cleared or destroyed. Not copied; for one thread.
class SFG_API KeywordReplacer {
public:
  KeywordReplacer();
  ~KeywordReplacer();
  KeywordReplacer(const KeywordReplacer&) = delete;
  KeywordReplacer& operator=(const KeywordReplacer&) = delete;

  /// Adds the pattern's rules behind those added before; an equal span is overwritten.
  void addReplacePattern(const KeywordReplacePattern& pattern);
  /// Adds one rule for each pair, as if they were those of a pattern. The arrays stay as they are too; in
  /// number they are the same, else this throws as KeywordReplacePattern::addReplacePattern does.
  void addReplacePattern(const Array<WString>& keywords, const Array<WString>& replacements);
  /// Forgets all rules; the patterns are not touched.
  void clearReplacePattern();

  /// Copies `text` to `out` with the rules applied: the first match wins, at one place the longest, of equal
  /// spans a keyword over a position and the later rule over the earlier. Replacements are not scanned again.
  /// With rules `out` is replaced; without rules (and for empty text) it is appended to. A span behind the
  /// end of the text appends the rest of the text, then its replacement. `text` must be followed by a NUL
  /// somewhere (see ScopedText::find) and may view `out`. Throws, with `out` unchanged, when it would pass
  /// the size limit of generated code.
  void appendAndReplace(WString& out, const ScopedText& text) const;

  /// The same, but appends in any case: `out` keeps what it holds. `text` does not view `out`, which holds a
  /// part of the copy when this throws.
  void appendReplaced(WString& out, const ScopedText& text) const;
  /// appendReplaced, answering the replacements of keyword rules in the order in which they stand in `out`.
  Array<PlacedReplacement> appendAndLocate(WString& out, const ScopedText& text) const;

  bool empty() const noexcept { return !rules_ && positionalReplacements_.empty(); }
  bool hasPositionalRules() const noexcept { return !positionalReplacements_.empty(); }
  /// The keyword rules, in the order in which they were added.
  std::size_t countRules() const noexcept;
  const WString& getKeyword(std::size_t rule) const;
  const WString& getReplacement(std::size_t rule) const;

private:
  std::unique_ptr<KeywordRules> rules_;  // null without any keyword
  Map<KeywordPosKey, const WString*, std::less<KeywordPosKey>> positionalReplacements_;
};

}  // namespace TolmSDK::Graphics::sfg
