#include "text/keyword_automaton.h"

#include <algorithm>
#include <numeric>

#include "text/text_hash.h"

namespace TolmSDK::Graphics::sfg {

KeywordAutomaton::KeywordAutomaton(const Array<std::wstring_view>& keywords) {
  std::size_t characters = 0;
  for (const std::wstring_view keyword : keywords) characters += keyword.size();
  states_.reserve(characters + 1);
  ends_.reserve(keywords.size() + 1);
  states_.emplace_back();
  ends_.emplace_back();
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    if (scan::isSearchable(keywords[i])) add(keywords[i], static_cast<std::uint32_t>(i));
  }
  link();
}

std::size_t KeywordAutomaton::homeOf(State from, wchar_t character) const noexcept {
  const std::uint64_t hash = mixHash(from, codeOf(character));
  return static_cast<std::size_t>(hash >> 32) & (branches_.size() - 1);
}

KeywordAutomaton::State KeywordAutomaton::findBranch(State from, wchar_t character) const {
  for (std::size_t at = homeOf(from, character);; at = (at + 1) & (branches_.size() - 1)) {
    const Branch& branch = branches_[at];
    if (branch.to == kStart || (branch.from == from && branch.character == character)) return branch.to;
  }
}

void KeywordAutomaton::addBranch(const Branch& branch) {
  constexpr std::size_t kSmallest = 16;
  const auto put = [this](const Branch& entry) {
    std::size_t at = homeOf(entry.from, entry.character);
    while (branches_[at].to != kStart) at = (at + 1) & (branches_.size() - 1);
    branches_[at] = entry;
  };
  if (4 * (numBranches_ + 1) > 3 * branches_.size()) {
    Array<Branch> before(std::max(kSmallest, 2 * branches_.size()));
    before.swap(branches_);
    for (const Branch& entry : before)
      if (entry.to != kStart) put(entry);
  }
  put(branch);
  ++numBranches_;
}

KeywordAutomaton::State KeywordAutomaton::addState(State from, wchar_t character) {
  const auto added = static_cast<State>(states_.size());
  states_.push_back({.character = character, .follows = from + 1 == added});
  if (from == kStart && codeOf(character) < starts_.size()) starts_[codeOf(character)] = added;
  if (from + 1 != added) {
    states_[from].branches = true;
    addBranch({from, added, character});
  }
  return added;
}

void KeywordAutomaton::add(std::wstring_view keyword, std::uint32_t number) {
  longest_ = std::max(longest_, keyword.size());
  State state = kStart;
  for (auto character = keyword.rbegin(); character != keyword.rend(); ++character) {
    const State to = step(state, *character);
    state = to != kStart ? to : addState(state, *character);
  }
  Found& found = states_[state].found;
  if (found == kNothing) {
    found = static_cast<Found>(ends_.size());
    ends_.push_back({.length = static_cast<std::uint32_t>(keyword.size())});
  }
  ends_[found].keyword = number;
}

/// Gives every state its fallback, those of shorter texts first: each follows from that of the state before.
void KeywordAutomaton::link() {
  // The states in front of all, and how many there are of each length.
  Array<State> before(states_.size(), kStart);
  Array<std::uint32_t> depths(states_.size(), 0);
  Array<std::uint32_t> firstOfDepth(longest_ + 2, 0);
  for (const Branch& branch : branches_) before[branch.to] = branch.from;
  for (State state = 1; state < states_.size(); ++state) {
    if (states_[state].follows) before[state] = state - 1;
    depths[state] = depths[before[state]] + 1;
    ++firstOfDepth[depths[state] + 1];
  }
  std::partial_sum(firstOfDepth.begin(), firstOfDepth.end(), firstOfDepth.begin());
  Array<State> byDepth(states_.size() - 1);
  for (State state = 1; state < states_.size(); ++state) byDepth[firstOfDepth[depths[state]]++] = state;

  for (const State number : byDepth) {
    StateData& state = states_[number];
    const State from = before[number];
    if (from != kStart) state.fallback = next(states_[from].fallback, state.character);
    const Found shorter = states_[state.fallback].found;
    if (state.found == kNothing) {
      state.found = shorter;
    } else {
      ends_[state.found].shorter = shorter;
    }
  }
}

}  // namespace TolmSDK::Graphics::sfg
