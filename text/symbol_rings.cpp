#include "text/symbol_rings.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "text/scan.h"

namespace TolmSDK::Graphics::sfg {

void SymbolRings::find(const CodeSnippetInstance& code, const KeywordReplacePattern& rules) {
  clear();
  groupSymbols(code);
  numberRules(rules);
  findHeld(code);
  findRings();
}

void SymbolRings::clear() {
  numFamilies_ = 0;
  keywords_.clear();
  keywordsByText_.clear();
  rulesOf_.clear();
  ringFamilies_.clear();
  ringEnds_.clear();
}

std::size_t SymbolRings::numberOfKeyword(std::wstring_view keyword) const {
  return keywordsByText_.find(std::hash<std::wstring_view>()(keyword),
                              [&](std::size_t i) { return keywords_[i] == keyword; });
}

void SymbolRings::groupSymbols(const CodeSnippetInstance& code) {
  for (std::size_t i = 0; i < code.getNumSymbols(); ++i) {
    if (!code.getSymbol(i).hasInstanceKey()) continue;
    const std::wstring_view name = code.getSymbol(i).getName().view();
    std::size_t number = name.empty() ? kNotFound : numberOfKeyword(name);
    if (number == kNotFound) {
      number = numFamilies_++;
      if (families_.size() < numFamilies_) families_.emplace_back();
      families_[number].name = name;
      families_[number].symbols.clear();
      families_[number].held.clear();
      keywords_.push_back(name);
      if (!name.empty()) keywordsByText_.add(std::hash<std::wstring_view>()(name), number);
    }
    families_[number].symbols.push_back(static_cast<std::uint32_t>(i));
  }
}

void SymbolRings::numberRules(const KeywordReplacePattern& rules) {
  rulesOf_.resize(numFamilies_);
  for (std::size_t rule = 0; rule < rules.getKeywords().size(); ++rule) {
    const WString& keyword = rules.getKeywords()[rule];
    if (keyword.empty()) continue;
    std::size_t number = numberOfKeyword(keyword);
    if (number == kNotFound) {
      number = keywords_.size();
      keywords_.push_back(keyword);
      keywordsByText_.add(std::hash<std::wstring_view>()(keyword), number);
      rulesOf_.emplace_back();
    }
    rulesOf_[number].push_back(static_cast<std::uint32_t>(rule));
  }
}

void SymbolRings::findHeld(const CodeSnippetInstance& code) {
  // A family alone is not asked for its own name.
  if (keywords_.size() < 2) return;
  lastHolder_.assign(keywords_.size(), 0);
  const bool areFew = keywords_.size() <= KeywordAutomaton::kFew &&
                      std::all_of(keywords_.begin(), keywords_.end(), [](std::wstring_view keyword) {
                        return keyword.size() <= KeywordAutomaton::kLong;
                      });
  std::optional<KeywordAutomaton> automaton;
  if (!areFew) automaton.emplace(keywords_);
  for (std::size_t i = 0; i < numFamilies_; ++i) {
    for (const std::uint32_t symbol : families_[i].symbols)
      findHeld(families_[i], code.getSymbol(symbol).getText(), automaton ? &*automaton : nullptr);
    std::sort(families_[i].held.begin(), families_[i].held.end());
  }
}

void SymbolRings::findHeld(SymbolFamily& family, const ScopedText& text, const KeywordAutomaton* automaton) {
  if (automaton == nullptr) {
    const std::size_t limit = scan::lengthBeforeNul(text);
    for (std::size_t i = 0; i < keywords_.size(); ++i) {
      if (scan::isSearchable(keywords_[i]) &&
          scan::findOccurrence(text.text, limit, keywords_[i], 0) != kNotFound)
        hold(family, i);
    }
    return;
  }
  const auto holder = static_cast<std::uint32_t>(&family - families_.data() + 1);
  automaton->scan(text, [&](std::size_t, KeywordAutomaton::State state) {
    // Behind a keyword that is known to be held the shorter ones are known too.
    for (; state != KeywordAutomaton::kStart && lastHolder_[automaton->keyword(state)] != holder;
         state = automaton->shorter(state))
      hold(family, automaton->keyword(state));
  });
}

void SymbolRings::hold(SymbolFamily& family, std::size_t keyword) {
  const auto holder = static_cast<std::uint32_t>(&family - families_.data() + 1);
  if (lastHolder_[keyword] == holder) return;
  lastHolder_[keyword] = holder;
  family.held.push_back(static_cast<std::uint32_t>(keyword));
}

/// Tarjan's walk, with a path of its own in place of recursion.
void SymbolRings::findRings() {
  order_.assign(numFamilies_, 0);
  lowest_.assign(numFamilies_, 0);
  std::uint32_t met = 0;
  const auto enter = [&](std::uint32_t family) {
    order_[family] = lowest_[family] = ++met;
    families_[family].ring = kNoRing;
    open_.push_back(family);
    path_.push_back({family});
  };
  for (std::uint32_t start = 0; start < numFamilies_; ++start) {
    if (order_[start] == 0) enter(start);
    while (!path_.empty()) {
      // Follow the next name that the texts of the family at the end of the path hold.
      Visit& visit = path_.back();
      const Array<std::uint32_t>& held = families_[visit.family].held;
      // Names come in front of the other keywords.
      if (visit.nextHeld < held.size() && held[visit.nextHeld] < numFamilies_) {
        const std::uint32_t other = held[visit.nextHeld++];
        if (order_[other] == 0) {
          enter(other);
        } else if (families_[other].ring == kNoRing) {
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
    families_[*family].ring = static_cast<std::uint32_t>(ringEnds_.size());
  std::sort(first, open_.end());
  ringFamilies_.insert(ringFamilies_.end(), first, open_.end());
  open_.erase(first, open_.end());
  ringEnds_.push_back(ringFamilies_.size());
}

void SymbolRings::addRule(std::size_t family, std::size_t rule) {
  rulesOf_[family].push_back(static_cast<std::uint32_t>(rule));
}

void SymbolRings::collectRules(std::size_t ring, Array<std::uint32_t>& rules) const {
  rules.clear();
  for (const std::uint32_t family : this->ring(ring)) {
    for (const std::uint32_t keyword : families_[family].held) {
      if (keyword < numFamilies_ && families_[keyword].ring == ring) continue;
      rules.insert(rules.end(), rulesOf_[keyword].begin(), rulesOf_[keyword].end());
    }
  }
  std::sort(rules.begin(), rules.end());
  rules.erase(std::unique(rules.begin(), rules.end()), rules.end());
}

}  // namespace TolmSDK::Graphics::sfg
