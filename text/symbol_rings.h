#pragma once

// Which symbols of one piece of code refer to each other by name.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "sfg/code_snippet.h"
#include "sfg/keyword_replace.h"
#include "text/hash_index.h"
#include "text/keyword_automaton.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// The keyed symbols of one non-empty name: overloads, a prototype and its function. A keyed symbol without a
/// name is a family of its own. Views point into the code.
struct SymbolFamily {
  std::wstring_view name;
  std::size_t nameHash;
  std::span<const std::uint32_t> symbols;  ///< their places in the code, in order
  std::uint32_t ring;
};

/// Lists of numbers, one behind the other in one array.
class NumberLists {
public:
  void clear() noexcept {
    numbers_.clear();
    ends_.clear();
  }
  std::size_t size() const noexcept { return ends_.size(); }
  std::span<const std::uint32_t> operator[](std::size_t list) const {
    const std::size_t begin = beginOf(list);
    return {numbers_.data() + begin, ends_[list] - begin};
  }
  /// Adds to the list that is open; it is closed by end(), which opens the next.
  void add(std::uint32_t number) { numbers_.push_back(number); }
  template <class Iterator>
  void add(Iterator first, Iterator last) {
    numbers_.insert(numbers_.end(), first, last);
  }
  std::span<std::uint32_t> open() {
    const std::size_t begin = beginOf(ends_.size());
    return {numbers_.data() + begin, numbers_.size() - begin};
  }
  void end() { ends_.push_back(numbers_.size()); }
  /// One list for each group: the places that have its number, in order.
  void group(const Array<std::uint32_t>& groups, std::size_t numGroups);

private:
  std::size_t beginOf(std::size_t list) const { return list == 0 ? 0 : ends_[list - 1]; }

  Array<std::uint32_t> numbers_;
  Array<std::size_t> ends_;
};

/// The families of one piece of code, numbered in the order of their first symbols, and its rings.
struct SymbolGroups {
  Array<std::wstring_view> names;
  Array<std::size_t> nameHashes;
  NumberLists symbols;        ///< of each family
  NumberLists held;           ///< by each family: numbers of the keywords that its texts hold, in order
  Array<std::uint32_t> ring;  ///< of each family
  NumberLists rings;          ///< the families of each ring, in order

  void clear() noexcept {
    names.clear();
    nameHashes.clear();
    symbols.clear();
    held.clear();
    ring.clear();
    rings.clear();
  }
};

/// Families whose texts hold one another's names, directly or through others, are a ring; most rings are of
/// one family. The rings stand in the order in which Tarjan's walk completes them, so that a ring comes
/// behind those whose names its texts hold. Takes time in proportion to texts, names, keywords and what is
/// found. Serves one piece of code after another; a snippet that is used again and again keeps its groups.
class SymbolRings {
public:
  /// The keywords that a text may hold are the names of the families (numbered as these are) and behind them
  /// the other keywords of `rules`.
  void find(const CodeSnippetInstance& code, const KeywordReplacePattern& rules);

  std::size_t countFamilies() const noexcept { return groups_->names.size(); }
  SymbolFamily family(std::size_t number) const {
    return {groups_->names[number], groups_->nameHashes[number], groups_->symbols[number],
            groups_->ring[number]};
  }
  std::size_t countRings() const noexcept { return groups_->rings.size(); }
  /// The numbers of a ring's families, in order.
  std::span<const std::uint32_t> ring(std::size_t number) const { return groups_->rings[number]; }

  /// Whether `isSought(rule)` holds for a rule that has the name of that family as its keyword.
  template <class IsSought>
  bool anyRuleOf(std::size_t family, IsSought&& isSought) const {
    for (std::uint32_t rule = lastRuleOf_[family]; rule != kNoRule; rule = ruleBefore_[rule])
      if (isSought(rule)) return true;
    return false;
  }
  /// Tells that the rule behind those known has the name of that family as its keyword.
  void addRule(std::size_t family);
  /// The rules whose keywords a ring's texts hold, its own names left out, in order.
  void collectRules(std::size_t ring, Array<std::uint32_t>& rules) const;

private:
  struct Visit {
    std::uint32_t family;
    std::size_t nextHeld = 0;
  };

  static constexpr std::uint32_t kNoRing = 0xffffffff;
  static constexpr std::uint32_t kNoRule = 0xffffffff;

  void group(const CodeSnippetInstance& code, const KeywordReplacePattern& rules);
  void groupOne(const ShaderSymbolInstance& symbol);
  void groupSymbols(const CodeSnippetInstance& code);
  void numberRules(const KeywordReplacePattern& rules);
  void findHeld(const CodeSnippetInstance& code);
  void findHeld(const ScopedText& text, const KeywordAutomaton* automaton);
  void hold(std::size_t keyword);
  void findRings();
  void closeRing(std::uint32_t root);
  std::size_t addKeyword(std::wstring_view keyword, std::size_t hash);
  std::size_t numberOfKeyword(std::wstring_view keyword, std::size_t hash) const;

  SymbolGroups own_;
  const SymbolGroups* groups_ = &own_;  // these, or those that a snippet keeps
  // The names of the families, then the other keywords.
  Array<std::wstring_view> keywords_;
  Array<std::size_t> keywordHashes_;
  HashIndex keywordsByText_;         // of many
  Array<std::uint32_t> lastRuleOf_;  // by keyword
  Array<std::uint32_t> ruleBefore_;  // by rule: the one before with the same keyword
  Array<std::uint32_t> familyOf_;    // by symbol; only while they are grouped
  Array<std::uint32_t> lastHolder_;  // by keyword: the family, counted from 1, that was found to hold it last
  // The walk that finds the rings; between walks these keep their memory only.
  Array<std::uint32_t> order_;   // in which families were met, from 1
  Array<std::uint32_t> lowest_;  // the first family on the path that can be reached from one
  Array<std::uint32_t> open_;    // families that no ring has taken yet
  Array<Visit> path_;
};

}  // namespace TolmSDK::Graphics::sfg
