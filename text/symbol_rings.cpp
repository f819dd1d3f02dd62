#include "text/symbol_rings.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>
#include <optional>
#include <utility>

#include "text/scan.h"
#include "text/text_hash.h"

namespace TolmSDK::Graphics::sfg {

void NumberLists::group(const Array<std::uint32_t>& groups, std::size_t numGroups) {
  ends_.assign(numGroups, 0);
  for (const std::uint32_t group : groups)
    if (group < numGroups) ++ends_[group];
  std::partial_sum(ends_.begin(), ends_.end(), ends_.begin());
  numbers_.resize(ends_.empty() ? 0 : ends_.back());
  // Filled from behind, the ends become beginnings.
  for (std::size_t place = groups.size(); place-- > 0;)
    if (groups[place] < numGroups) numbers_[--ends_[groups[place]]] = static_cast<std::uint32_t>(place);
  std::rotate(ends_.begin(), ends_.begin() + std::min<std::ptrdiff_t>(1, std::ssize(ends_)), ends_.end());
  if (!ends_.empty()) ends_.back() = numbers_.size();
}

void SymbolRings::find(const CodeSnippetInstance& code, const KeywordReplacePattern& rules) {
  const CodeSnippet* shared = rules.getKeywords().empty() ? code.getSharedSnippet().get() : nullptr;
  groups_ = shared != nullptr ? shared->findGroups() : nullptr;
  if (groups_ != nullptr) {
    lastRuleOf_.assign(groups_->names.size(), kNoRule);
    ruleBefore_.clear();
    return;
  }
  group(code, rules);
  groups_ = &own_;
  if (shared != nullptr && countFamilies() > 1) shared->keepGroups(own_);
}

void SymbolRings::group(const CodeSnippetInstance& code, const KeywordReplacePattern& rules) {
  own_.clear();
  if (code.getNumSymbols() == 1 && rules.getKeywords().empty() && code.getSymbol(0).hasInstanceKey())
    return groupOne(code.getSymbol(0));
  groupSymbols(code);
  numberRules(rules);
  findHeld(code);
  findRings();
}

/// Most definitions are one symbol.
void SymbolRings::groupOne(const ShaderSymbolInstance& symbol) {
  own_.names.push_back(symbol.getName().view());
  own_.nameHashes.push_back(hashOfText(own_.names.front()));
  own_.ring.push_back(0);
  for (NumberLists* list : {&own_.symbols, &own_.rings}) {
    list->add(0);
    list->end();
  }
  own_.held.end();
  lastRuleOf_.assign(1, kNoRule);
  ruleBefore_.clear();
}

/// Few are compared one by one.
std::size_t SymbolRings::numberOfKeyword(std::wstring_view keyword, std::size_t hash) const {
  if (keywords_.size() > KeywordAutomaton::kFew)
    return keywordsByText_.find(hash, [&](std::size_t i) { return keywords_[i] == keyword; });
  for (std::size_t i = 0; i < keywords_.size(); ++i)
    if (keywordHashes_[i] == hash && keywords_[i] == keyword) return i;
  return kNotFound;
}

std::size_t SymbolRings::addKeyword(std::wstring_view keyword, std::size_t hash) {
  const std::size_t number = keywords_.size();
  keywords_.push_back(keyword);
  keywordHashes_.push_back(hash);
  if (number < KeywordAutomaton::kFew) return number;
  const std::size_t firstMissing = number == KeywordAutomaton::kFew ? 0 : number;
  for (std::size_t i = firstMissing; i <= number; ++i) keywordsByText_.add(keywordHashes_[i], i);
  return number;
}

void SymbolRings::groupSymbols(const CodeSnippetInstance& code) {
  constexpr std::uint32_t kNoFamily = 0xffffffff;
  keywords_.clear();
  keywordHashes_.clear();
  keywordsByText_.clear();
  familyOf_.assign(code.getNumSymbols(), kNoFamily);
  for (std::size_t i = 0; i < code.getNumSymbols(); ++i) {
    if (!code.getSymbol(i).hasInstanceKey()) continue;
    const std::wstring_view name = code.getSymbol(i).getName().view();
    const std::size_t hash = hashOfText(name);
    std::size_t number = name.empty() ? kNotFound : numberOfKeyword(name, hash);
    if (number == kNotFound) number = addKeyword(name, hash);
    familyOf_[i] = static_cast<std::uint32_t>(number);
  }
  own_.names = keywords_;
  own_.nameHashes = keywordHashes_;
  own_.symbols.group(familyOf_, own_.names.size());
}

void SymbolRings::numberRules(const KeywordReplacePattern& rules) {
  lastRuleOf_.assign(keywords_.size(), kNoRule);
  ruleBefore_.assign(rules.getKeywords().size(), kNoRule);
  for (std::size_t rule = 0; rule < ruleBefore_.size(); ++rule) {
    const WString& keyword = rules.getKeywords()[rule];
    if (keyword.empty()) continue;
    const std::size_t hash = hashOfText(keyword);
    std::size_t number = numberOfKeyword(keyword, hash);
    if (number == kNotFound) {
      number = addKeyword(keyword, hash);
      lastRuleOf_.push_back(kNoRule);
    }
    ruleBefore_[rule] = std::exchange(lastRuleOf_[number], static_cast<std::uint32_t>(rule));
  }
}

void SymbolRings::findHeld(const CodeSnippetInstance& code) {
  lastHolder_.assign(keywords_.size(), 0);
  const bool areFew = keywords_.size() <= KeywordAutomaton::kFew &&
                      std::all_of(keywords_.begin(), keywords_.end(), [](std::wstring_view keyword) {
                        return keyword.size() <= KeywordAutomaton::kLong;
                      });
  std::optional<KeywordAutomaton> automaton;
  if (!areFew) automaton.emplace(keywords_);
  for (std::size_t i = 0; i < own_.names.size(); ++i) {
    // A family alone is not asked for its own name.
    if (keywords_.size() > 1)
      for (const std::uint32_t symbol : own_.symbols[i])
        findHeld(code.getSymbol(symbol).getText(), automaton ? &*automaton : nullptr);
    const std::span<std::uint32_t> held = own_.held.open();
    std::sort(held.begin(), held.end());
    own_.held.end();
  }
}

/// Of the family whose list is open.
void SymbolRings::findHeld(const ScopedText& text, const KeywordAutomaton* automaton) {
  if (automaton == nullptr) {
    const std::size_t limit = scan::lengthBeforeNul(text);
    for (std::size_t i = 0; i < keywords_.size(); ++i) {
      if (scan::isSearchable(keywords_[i]) &&
          scan::findOccurrence(text.text, limit, keywords_[i], 0) != kNotFound)
        hold(i);
    }
    return;
  }
  const auto holder = static_cast<std::uint32_t>(own_.held.size() + 1);
  automaton->scan(text, [&](std::size_t, KeywordAutomaton::Found found) {
    // Behind a keyword that is known to be held the shorter ones are known too.
    for (; found != KeywordAutomaton::kNothing && lastHolder_[automaton->keyword(found)] != holder;
         found = automaton->shorter(found))
      hold(automaton->keyword(found));
  });
}

void SymbolRings::hold(std::size_t keyword) {
  const auto holder = static_cast<std::uint32_t>(own_.held.size() + 1);
  if (lastHolder_[keyword] == holder) return;
  lastHolder_[keyword] = holder;
  own_.held.add(static_cast<std::uint32_t>(keyword));
}

/// Tarjan's walk, with a path of its own in place of recursion.
void SymbolRings::findRings() {
  const auto numFamilies = static_cast<std::uint32_t>(own_.names.size());
  own_.ring.assign(numFamilies, kNoRing);
  order_.assign(numFamilies, 0);
  lowest_.assign(numFamilies, 0);
  std::uint32_t met = 0;
  const auto enter = [&](std::uint32_t family) {
    order_[family] = lowest_[family] = ++met;
    open_.push_back(family);
    path_.push_back({family});
  };
  for (std::uint32_t start = 0; start < numFamilies; ++start) {
    if (order_[start] == 0) enter(start);
    while (!path_.empty()) {
      // Follow the next name that the texts of the family at the end of the path hold.
      Visit& visit = path_.back();
      const std::span<const std::uint32_t> held = own_.held[visit.family];
      // Names come in front of the other keywords.
      if (visit.nextHeld < held.size() && held[visit.nextHeld] < numFamilies) {
        const std::uint32_t other = held[visit.nextHeld++];
        if (order_[other] == 0) {
          enter(other);
        } else if (own_.ring[other] == kNoRing) {
          lowest_[visit.family] = std::min(lowest_[visit.family], order_[other]);
        }
        continue;
      }
      // All are followed: the family hands on what it reaches, and closes its ring when it is the first of
      // it.
      const std::uint32_t done = visit.family;
      path_.pop_back();
      if (!path_.empty())
        lowest_[path_.back().family] = std::min(lowest_[path_.back().family], lowest_[done]);
      if (lowest_[done] == order_[done]) closeRing(done);
    }
  }
}

void SymbolRings::closeRing(std::uint32_t root) {
  const auto first = std::find(open_.rbegin(), open_.rend(), root).base() - 1;
  for (auto family = first; family != open_.end(); ++family)
    own_.ring[*family] = static_cast<std::uint32_t>(own_.rings.size());
  std::sort(first, open_.end());
  own_.rings.add(first, open_.end());
  own_.rings.end();
  open_.erase(first, open_.end());
}

void SymbolRings::addRule(std::size_t family) {
  const auto rule = static_cast<std::uint32_t>(ruleBefore_.size());
  ruleBefore_.push_back(std::exchange(lastRuleOf_[family], rule));
}

void SymbolRings::collectRules(std::size_t ring, Array<std::uint32_t>& rules) const {
  rules.clear();
  if (ruleBefore_.empty()) return;
  for (const std::uint32_t family : this->ring(ring)) {
    for (const std::uint32_t keyword : groups_->held[family]) {
      if (keyword < countFamilies() && groups_->ring[keyword] == ring) continue;
      for (std::uint32_t rule = lastRuleOf_[keyword]; rule != kNoRule; rule = ruleBefore_[rule])
        rules.push_back(rule);
    }
  }
  std::sort(rules.begin(), rules.end());
  rules.erase(std::unique(rules.begin(), rules.end()), rules.end());
}

}  // namespace TolmSDK::Graphics::sfg
