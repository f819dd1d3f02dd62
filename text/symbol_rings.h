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
/// name is a family of its own. Views point into the code and into the rules it was made from.
struct SymbolFamily {
  std::wstring_view name;
  std::size_t nameHash = 0;
  Array<std::uint32_t> symbols;  ///< their places in the code, in order
  Array<std::uint32_t> held;     ///< numbers of the keywords that its texts hold, in order
  std::uint32_t ring = 0;
};

/// The families of one piece of code, in the order of their first symbols, and its rings.
struct SymbolGroups {
  Array<SymbolFamily> families;  ///< the first of them are in use, the others keep memory for later
  std::size_t numFamilies = 0;
  Array<std::uint32_t> ringFamilies;  ///< of all rings, one behind another
  Array<std::size_t> ringEnds;
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

  std::size_t countFamilies() const noexcept { return groups_->numFamilies; }
  /// In the order of their first symbols.
  const SymbolFamily& family(std::size_t number) const { return groups_->families[number]; }
  std::size_t countRings() const noexcept { return groups_->ringEnds.size(); }
  /// The numbers of a ring's families, in order.
  std::span<const std::uint32_t> ring(std::size_t number) const {
    const std::size_t begin = number == 0 ? 0 : groups_->ringEnds[number - 1];
    return {groups_->ringFamilies.data() + begin, groups_->ringEnds[number] - begin};
  }

  /// The rules with that keyword, in order.
  const Array<std::uint32_t>& rulesOf(std::size_t keyword) const { return rulesOf_[keyword]; }
  /// Tells that rule `rule` has the name of that family as its keyword.
  void addRule(std::size_t family, std::size_t rule);
  /// The rules whose keywords a ring's texts hold, its own names left out, in order.
  void collectRules(std::size_t ring, Array<std::uint32_t>& rules) const;

private:
  struct Visit {
    std::uint32_t family;
    std::size_t nextHeld = 0;
  };

  static constexpr std::uint32_t kNoRing = 0xffffffff;

  void clear();
  void group(const CodeSnippetInstance& code, const KeywordReplacePattern& rules);
  void groupOne(const ShaderSymbolInstance& symbol);
  void groupSymbols(const CodeSnippetInstance& code);
  void numberRules(const KeywordReplacePattern& rules);
  void findHeld(const CodeSnippetInstance& code);
  void findHeld(SymbolFamily& family, const ScopedText& text, const KeywordAutomaton* automaton);
  void hold(SymbolFamily& family, std::size_t keyword);
  void findRings();
  void closeRing(std::uint32_t root);
  std::size_t addKeyword(std::wstring_view keyword, std::size_t hash);
  std::size_t numberOfKeyword(std::wstring_view keyword, std::size_t hash) const;

  SymbolGroups own_;
  const SymbolGroups* groups_ = &own_;  // these, or those that a snippet keeps
  std::size_t numRules_ = 0;
  Array<std::wstring_view> keywords_;
  Array<std::size_t> keywordHashes_;
  HashIndex keywordsByText_;  // of many
  Array<Array<std::uint32_t>> rulesOf_;
  Array<std::uint32_t> lastHolder_;  // by keyword: the family, counted from 1, that was found to hold it last
  // The walk that finds the rings; between walks these keep their memory only.
  Array<std::uint32_t> order_;   // in which families were met, from 1
  Array<std::uint32_t> lowest_;  // the first family on the path that can be reached from one
  Array<std::uint32_t> open_;    // families that no ring has taken yet
  Array<Visit> path_;
};

}  // namespace TolmSDK::Graphics::sfg
