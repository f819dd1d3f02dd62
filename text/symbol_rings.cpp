#include "text/symbol_rings.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "text/scan.h"
#include "text/text_hash.h"

namespace TolmSDK::Graphics::sfg {

void SymbolRings::find(const CodeSnippetInstance& code, const KeywordReplacePattern& rules) {
  const CodeSnippet* shared = rules.getKeywords().empty() ? code.getSharedSnippet().get() : nullptr;
  groups_ = shared != nullptr ? shared->findGroups() : nullptr;
  if (groups_ == nullptr) {
    group(code, rules);
    groups_ = &own_;
    if (shared != nullptr && own_.numFamilies > 1) shared->keepGroups(own_);
  } else {
    numRules_ = 0;
    rulesOf_.clear();
    rulesOf_.resize(groups_->numFamilies);
  }
}

void SymbolRings::group(const CodeSnippetInstance& code, const KeywordReplacePattern& rules) {
  if (code.getNumSymbols() == 1 && rules.getKeywords().empty() && code.getSymbol(0).hasInstanceKey())
    return groupOne(code.getSymbol(0));
  clear();
  groupSymbols(code);
  numberRules(rules);
  findHeld(code);
  findRings();
}

/// Most definitions are one symbol.
void SymbolRings::groupOne(const ShaderSymbolInstance& symbol) {
  own_.numFamilies = 1;
  if (own_.families.empty()) own_.families.emplace_back();
  SymbolFamily& family = own_.families.front();
  family.name = symbol.getName().view();
  family.nameHash = hashOfText(family.name);
  family.symbols.assign(1, 0);
  family.held.clear();
  family.ring = 0;
  own_.ringFamilies.assign(1, 0);
  own_.ringEnds.assign(1, 1);
  numRules_ = 0;
  rulesOf_.resize(1);
  rulesOf_.front().clear();
}

void SymbolRings::clear() {
  own_.numFamilies = 0;
  own_.ringFamilies.clear();
  own_.ringEnds.clear();
  keywords_.clear();
  keywordHashes_.clear();
  keywordsByText_.clear();
  rulesOf_.clear();
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
  for (std::size_t i = 0; i < code.getNumSymbols(); ++i) {
    if (!code.getSymbol(i).hasInstanceKey()) continue;
    const std::wstring_view name = code.getSymbol(i).getName().view();
    const std::size_t hash = hashOfText(name);
    std::size_t number = name.empty() ? kNotFound : numberOfKeyword(name, hash);
    if (number == kNotFound) {
      number = addKeyword(name, hash);
      own_.numFamilies = number + 1;
      if (own_.families.size() < own_.numFamilies) own_.families.emplace_back();
      own_.families[number].name = name;
      own_.families[number].nameHash = hash;
      own_.families[number].symbols.clear();
      own_.families[number].held.clear();
    }
    own_.families[number].symbols.push_back(static_cast<std::uint32_t>(i));
  }
}

void SymbolRings::numberRules(const KeywordReplacePattern& rules) {
  numRules_ = rules.getKeywords().size();
  rulesOf_.resize(own_.numFamilies);
  for (std::size_t rule = 0; rule < numRules_; ++rule) {
    const WString& keyword = rules.getKeywords()[rule];
    if (keyword.empty()) continue;
    const std::size_t hash = hashOfText(keyword);
    std::size_t number = numberOfKeyword(keyword, hash);
    if (number == kNotFound) {
      number = addKeyword(keyword, hash);
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
  for (std::size_t i = 0; i < own_.numFamilies; ++i) {
    for (const std::uint32_t symbol : own_.families[i].symbols)
      findHeld(own_.families[i], code.getSymbol(symbol).getText(), automaton ? &*automaton : nullptr);
    std::sort(own_.families[i].held.begin(), own_.families[i].held.end());
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
  const auto holder = static_cast<std::uint32_t>(&family - own_.families.data() + 1);
  automaton->scan(text, [&](std::size_t, KeywordAutomaton::State state) {
    // Behind a keyword that is known to be held the shorter ones are known too.
    for (; state != KeywordAutomaton::kStart && lastHolder_[automaton->keyword(state)] != holder;
         state = automaton->shorter(state))
      hold(family, automaton->keyword(state));
  });
}

void SymbolRings::hold(SymbolFamily& family, std::size_t keyword) {
  const auto holder = static_cast<std::uint32_t>(&family - own_.families.data() + 1);
  if (lastHolder_[keyword] == holder) return;
  lastHolder_[keyword] = holder;
  family.held.push_back(static_cast<std::uint32_t>(keyword));
}

/// Tarjan's walk, with a path of its own in place of recursion.
void SymbolRings::findRings() {
  order_.assign(own_.numFamilies, 0);
  lowest_.assign(own_.numFamilies, 0);
  std::uint32_t met = 0;
  const auto enter = [&](std::uint32_t family) {
    order_[family] = lowest_[family] = ++met;
    own_.families[family].ring = kNoRing;
    open_.push_back(family);
    path_.push_back({family});
  };
  for (std::uint32_t start = 0; start < own_.numFamilies; ++start) {
    if (order_[start] == 0) enter(start);
    while (!path_.empty()) {
      // Follow the next name that the texts of the family at the end of the path hold.
      Visit& visit = path_.back();
      const Array<std::uint32_t>& held = own_.families[visit.family].held;
      // Names come in front of the other keywords.
      if (visit.nextHeld < held.size() && held[visit.nextHeld] < own_.numFamilies) {
        const std::uint32_t other = held[visit.nextHeld++];
        if (order_[other] == 0) {
          enter(other);
        } else if (own_.families[other].ring == kNoRing) {
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
    own_.families[*family].ring = static_cast<std::uint32_t>(own_.ringEnds.size());
  std::sort(first, open_.end());
  own_.ringFamilies.insert(own_.ringFamilies.end(), first, open_.end());
  open_.erase(first, open_.end());
  own_.ringEnds.push_back(own_.ringFamilies.size());
}

void SymbolRings::addRule(std::size_t family, std::size_t rule) {
  rulesOf_[family].push_back(static_cast<std::uint32_t>(rule));
  ++numRules_;
}

void SymbolRings::collectRules(std::size_t ring, Array<std::uint32_t>& rules) const {
  rules.clear();
  if (numRules_ == 0) return;
  for (const std::uint32_t family : this->ring(ring)) {
    for (const std::uint32_t keyword : this->family(family).held) {
      if (keyword < countFamilies() && this->family(keyword).ring == ring) continue;
      rules.insert(rules.end(), rulesOf_[keyword].begin(), rulesOf_[keyword].end());
    }
  }
  std::sort(rules.begin(), rules.end());
  rules.erase(std::unique(rules.begin(), rules.end()), rules.end());
}

}  // namespace TolmSDK::Graphics::sfg
